#ifndef CMCFG_PLATFORM_BASE_FILE_SYSTEM_H_
#define CMCFG_PLATFORM_BASE_FILE_SYSTEM_H_

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/arena.h"
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

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_FILE_SYSTEM_H_
