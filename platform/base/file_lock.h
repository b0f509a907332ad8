#ifndef CMCFG_PLATFORM_BASE_FILE_LOCK_H_
#define CMCFG_PLATFORM_BASE_FILE_LOCK_H_

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/file_system.h"
#include "platform/base/status.h"

namespace cfg {

// How long a FileLock waits for a lock another writer holds, unless told
// otherwise: long enough for any sane save, short enough that a call-manager
// thread is not held up for good by a stuck writer.
constexpr std::chrono::milliseconds kDefaultLockTimeout{5000};

// The process-wide wait of FileLock(path) and UpdateDocument. Negative
// counts as zero (a single try). Thread-safe; takes effect for locks taken
// afterwards.
void SetLockTimeout(std::chrono::milliseconds timeout);
std::chrono::milliseconds LockTimeout();

// Where the store's locks live: outside the configuration root, so that a
// write leaves no file in the root but the one it writes. $CMCFG_LOCK_DIR
// when set; else /run/lock/cmcfg where /run/lock is writable; else
// $TMPDIR (or /tmp) + "/cmcfg-locks". Every writer of one root must see the
// same folder; it is created world-writable with the sticky bit, so writers
// of every user share it, and cleared with the run-time folder at boot.
std::string LockFolder();

// The lock file of `path` in LockFolder() (created when missing): named by
// the device and inode of path's folder and path's base name, so that every
// spelling of the path (relative, through a link) finds the same lock.
// IOError when path's folder is not there or the lock folder cannot be made.
Status LockPathFor(const std::string& path, std::string* lock_path);

// An exclusive advisory lock that guards a read-modify-write of one file
// against other processes and other threads. It locks a companion file
// (LockPathFor), never the target itself, because an atomic save replaces
// the target's inode. It waits at most its timeout, polling the lock (a
// wait cannot be bounded otherwise); a lock whose holder died is free at
// once, since the kernel drops it with the holder.
//
// The lock file also notes the temporary file of a save in progress under
// the lock (SaveDocument and UpdateDocument do it), so that a save cut short
// by a crash leaves no temporary file for long: the next holder removes the
// noted temporaries whose writer is dead (no process of its pid) or had its
// own pid (a process of the same pid cannot be writing, since the holder
// holds the lock). A temporary whose pid belongs to a live process stays,
// and stays noted for a later holder. Each name is checked against the
// temporary-file pattern of the target first, so the lock file can never
// make the store remove anything else.
class FileLock {
 public:
  // Waits up to LockTimeout().
  explicit FileLock(const std::string& path);
  // Waits up to `timeout`; zero or less tries once.
  FileLock(const std::string& path, std::chrono::milliseconds timeout);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  // False when the lock was not had; the caller then goes on unguarded only
  // if it does not write. A lock made in read-only mode holds nothing and
  // counts as had while the mode lasts (nothing can be written meanwhile).
  bool locked() const { return fd_ >= 0 || (nominal_ && IsReadOnly()); }
  // Why it was not had: TimedOut when another writer held it past the
  // timeout; IOError when the lock file cannot be opened (a missing folder
  // of the target, a lock folder that cannot be written) or locked;
  // InvalidArgument for an empty path. OK when locked.
  const Status& status() const { return status_; }

 private:
  friend class LockedSave;  // saves under the lock: note and forget temporaries
  void RemoveStaleTemps();
  Status WriteNotes(const std::string& extra);

  std::string path_;
  std::string lock_path_;
  int fd_ = -1;
  bool nominal_ = false;  // made in read-only mode: no file, no lock
  Status status_;
  std::vector<std::string> kept_;  // noted temporaries of live pids, kept noted
};

// Replaces the file atomically and durably through FileSystem::Default().
// When the calling thread holds the FileLock of `path`, the temporary file
// is noted in the lock before it exists and forgotten once it is gone, so a
// crash at any instant leaves it noted for the next holder.
Status WriteNotingTemporary(const std::string& path, std::string_view text);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_FILE_LOCK_H_
