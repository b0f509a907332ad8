#ifndef CMCFG_PLATFORM_BASE_FILE_SYSTEM_H_
#define CMCFG_PLATFORM_BASE_FILE_SYSTEM_H_

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/arena.h"
#include "platform/base/document.h"
#include "platform/base/status.h"

namespace cfg {

// What stat tells about a path: its kind and what identifies the version of
// the file that is there now.
struct FileInfo {
  enum Kind { kRegular, kDirectory, kOther };
  Kind kind = kOther;
  uint64_t device = 0;
  uint64_t inode = 0;
  uint64_t size = 0;
  int64_t mtime_sec = 0;   // last modification
  int64_t mtime_nsec = 0;
  int64_t ctime_sec = 0;   // last change of contents or metadata
  int64_t ctime_nsec = 0;

  // True when both describe the same version of the same file: kind,
  // device, inode, size and both times (with nanoseconds) agree. An atomic
  // save gives the path a new inode and a rewrite in place a new time, but
  // only at the file system's timestamp granularity (a kernel tick, or
  // coarser): a same-size rewrite in the tick of the previous change can
  // look the same. A caller that keeps data by version must treat a file
  // changed less than a tick before it looked as not settled.
  bool SameVersion(const FileInfo& other) const;
};

// One entry of a folder listing. kOther covers what is neither a regular
// file nor a folder (FIFOs, sockets, devices, dangling links); a symbolic
// link counts as what it points to.
struct DirEntry {
  std::string name;
  FileInfo::Kind kind = FileInfo::kOther;
};

// Every file access of the store goes through this interface, so a test can
// put a fault-injecting version underneath (a write that fails half-way, a
// rename that fails). The default is the POSIX file system.
class FileSystem {
 public:
  virtual ~FileSystem();

  // The process-wide instance (the real file system unless a test replaced it).
  static FileSystem* Default();
  // Replaces the instance; nullptr restores the real one. Not thread-safe:
  // for tests only.
  static void SetDefaultForTesting(FileSystem* fs);

  // Whole contents of a regular file. NotFound when it does not exist,
  // IOError when it is a directory or cannot be read.
  virtual Status ReadFile(const std::string& path, std::string* contents) = 0;

  // As ReadFile, into a new arena made large enough for the text and the
  // index of its parsed document too, so that a large file and its index
  // sit in a few big chunks. The default reads with ReadFile and copies.
  virtual Status ReadFileToArena(const std::string& path, std::unique_ptr<Arena>* arena,
                                 std::string_view* contents);

  // Replaces the file atomically and durably: writes a temporary file in the
  // same folder, flushes it to disk, renames it over `path` and flushes the
  // folder. On any failure the old file is left as it was and the temporary
  // file removed.
  virtual Status WriteFileAtomic(const std::string& path, std::string_view contents) = 0;
  // The same through the temporary file `temp` the caller chose (in the
  // folder of `path`, not existing yet; see TempPathFor), so that a lock
  // holder can note its name before it exists. The default ignores `temp`
  // and calls WriteFileAtomic.
  virtual Status WriteFileAtomicVia(const std::string& path, const std::string& temp,
                                    std::string_view contents);

  virtual bool FileExists(const std::string& path) = 0;   // a regular file
  virtual bool DirExists(const std::string& path) = 0;
  // What is at `path`, following symbolic links. NotFound when nothing is
  // there; IOError when it cannot be examined (*info is then unchanged).
  virtual Status Stat(const std::string& path, FileInfo* info) = 0;
  virtual Status CreateDirs(const std::string& path) = 0;
  // Names of the entries of a folder (no "." or ".."), unsorted.
  virtual Status ListDir(const std::string& path, std::vector<std::string>* names) = 0;
  // The same with each entry's kind. The POSIX version takes the kind from
  // the folder itself where the file system records it, so a listing costs
  // no system call per entry (a stat only for links and file systems that
  // do not record kinds). The default lists with ListDir and stats each
  // entry.
  virtual Status ListDirEntries(const std::string& path, std::vector<DirEntry>* entries);
  virtual Status RemoveFile(const std::string& path) = 0;
};

// Read-only mode, for programs that only inspect a root (off by default,
// so the call manager writes as it always did). While it is on, nothing in
// the store creates, renames or removes a file: SaveDocument and
// UpdateDocument compute what they would write, write nothing and return
// OK, so the operations built on them go on as if they had saved; a
// FileLock takes no lock and creates no lock file; the writes of
// FileSystem::Default() (WriteFileAtomic, WriteFileAtomicVia, CreateDirs,
// RemoveFile) fail with IOError "read-only mode: ..." without touching the
// disk. Reads are unchanged. Process-wide and thread-safe; takes effect for
// calls that start afterwards.
void SetReadOnly(bool on);
bool IsReadOnly();

// Turns read-only mode on for its lifetime and puts the previous state back
// afterwards, so scopes nest.
class ReadOnlyScope {
 public:
  ReadOnlyScope();
  ~ReadOnlyScope();
  ReadOnlyScope(const ReadOnlyScope&) = delete;
  ReadOnlyScope& operator=(const ReadOnlyScope&) = delete;

 private:
  bool previous_;
};

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
  friend class LockedSave;  // the store's saves: note and forget temporaries
  void RemoveStaleTemps();
  Status WriteNotes(const std::string& extra);

  std::string path_;
  std::string lock_path_;
  int fd_ = -1;
  bool nominal_ = false;  // made in read-only mode: no file, no lock
  Status status_;
  std::vector<std::string> kept_;  // noted temporaries of live pids, kept noted
};

// Where the store reports a write that failed: one line without a newline,
// "cannot save PATH: " followed by the Status (kind and reason). The default
// writes it to stderr, prefixed "cmcfg store: ", in one write, so lines of
// concurrent writers do not mix.
using StoreReporter = std::function<void(const std::string& line)>;

// Installs `reporter` for the whole process; an empty one restores the
// default. Thread-safe: reports are made one at a time under a mutex, so the
// reporter needs no lock of its own, and once this returns the old one is
// not called any more. A failed save from inside the reporter goes to the
// default instead of re-entering it.
void SetStoreReporter(StoreReporter reporter);

// Reports through the installed reporter that `path` was not saved and why
// ("cannot save PATH: " and the Status), for writers that refuse a change
// before it reaches the file. Thread-safe.
void ReportStoreFailure(const std::string& path, const Status& s);

// Reads and parses a multi-section file. NotFound when missing; IOError when
// unreadable or not a regular file. Parse problems are not errors: they are
// in doc->diagnostics().
Status LoadDocument(const std::string& path, Document* doc, const Syntax& syntax = Syntax());

// Writes the document atomically, over the text it was read from where it
// was read from a file (see RenderEdited: only the lines of what changed
// differ). No lock is taken here; when the calling
// thread holds the FileLock of `path`, the temporary file is noted in it (see
// FileLock), so a crash mid-way leaves nothing behind for long. A failure is
// also reported through the StoreReporter.
// In read-only mode it writes nothing and returns OK.
Status SaveDocument(const std::string& path, const Document& doc, const Syntax& syntax = Syntax());

// Read-modify-write under FileLock (waiting at most LockTimeout()): loads
// the file (a missing file is an empty document), calls `change`, and saves
// when it returns true. A lock not had in time gives TimedOut and nothing is
// written. Every failure (lock, read, save) is also reported once through
// the StoreReporter, after the lock is released. In read-only mode it takes
// no lock, loads and calls `change` all the same, writes nothing and returns
// OK (a read error other than a missing file is still returned).
Status UpdateDocument(const std::string& path, const std::function<bool(Document&)>& change,
                      const Syntax& syntax = Syntax());

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_FILE_SYSTEM_H_
