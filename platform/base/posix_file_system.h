#ifndef CMCFG_PLATFORM_BASE_POSIX_FILE_SYSTEM_H_
#define CMCFG_PLATFORM_BASE_POSIX_FILE_SYSTEM_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/file_system.h"
#include "platform/base/status.h"

namespace cfg {

// The largest configuration file the store reads: 64 MiB, far beyond any
// real one (a few KB; a database of 100,000 users is a few MB). A larger
// file is refused before anything of it is read, so a stray or sparse file
// cannot take the memory of the whole file and of its index.
constexpr size_t kMaxConfigFileBytes = size_t{64} << 20;

// The real file system. The steps of an atomic write that can fail on a
// full disk or a broken medium are virtual, so a test can derive from this
// class and make one of them fail while the rest stays real.
class PosixFileSystem : public FileSystem {
 public:
  // Reads only regular files: a directory, FIFO, device or socket (also
  // reached through a symbolic link), a link loop, and a file larger than
  // kMaxConfigFileBytes are an IOError whose message names the path and
  // the reason; a FIFO never blocks the call. A path under the
  // configuration root (IsUnderRootName) is read only when the file opened
  // lies inside the root: a symbolic link out of the root is an IOError,
  // and nothing outside is read. While a RootScope lives the file is opened
  // beneath the root's descriptor, where the kernel refuses such links (an
  // open, fstat, read and close); otherwise, or for an absolute link, what
  // was opened is checked with OpenedInsideRoot (a readlink more).
  Status ReadFile(const std::string& path, std::string* contents) override;
  // A file below Arena::kSmallText costs open, fstat, one read and close:
  // the read asks for one byte more than the size, and coming back short it
  // has reached the end (a second read happens only when the file changed
  // size meanwhile). Its arena is heap-only. Larger files get an arena with
  // mapped chunks. Refuses what ReadFile refuses.
  Status ReadFileToArena(const std::string& path, std::unique_ptr<Arena>* arena,
                         std::string_view* contents) override;
  // Through a temporary file named by TempPathFor. A path under the
  // configuration root that resolves outside it (IsInsideRoot) is an
  // IOError and nothing is written.
  Status WriteFileAtomic(const std::string& path, std::string_view contents) override;
  Status WriteFileAtomicVia(const std::string& path, const std::string& temp,
                            std::string_view contents) override;
  bool FileExists(const std::string& path) override;
  bool DirExists(const std::string& path) override;
  Status Stat(const std::string& path, FileInfo* info) override;
  Status CreateDirs(const std::string& path) override;
  Status ListDir(const std::string& path, std::vector<std::string>* names) override;
  Status ListDirEntries(const std::string& path, std::vector<DirEntry>* entries) override;
  Status RemoveFile(const std::string& path) override;

 protected:
  // Creates the temporary file `temp`, which must not exist yet, for
  // writing; its descriptor goes to *fd.
  virtual Status CreateTemp(const std::string& temp, int* fd);
  // Writes all of `data` to the open file `fd`.
  virtual Status WriteAll(int fd, std::string_view data, const std::string& path);
  // Flushes the open file `fd` to disk.
  virtual Status Sync(int fd, const std::string& path);
  // Renames `from` over `to`.
  virtual Status Rename(const std::string& from, const std::string& to);

 private:
  // *created tells whether `temp` was made (and must go again on failure).
  Status WriteTemp(const std::string& temp, std::string_view contents, int mode, bool* created);
};

// A name for the temporary file of an atomic write of `path`: in the same
// folder, unique to this process and call, and telling the writer's pid:
// `path` + "." + decimal pid + "." + 8 lowercase hex digits + ".tmp".
std::string TempPathFor(const std::string& path);

// The pid of the writer of `name`, a file in the folder of `path` (a name
// without folder), when TempPathFor(path) could have made it; else -1. It
// never returns 0 or less for a name, so a caller may hand it to kill().
long TempFileWriter(const std::string& path, const std::string& name);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_POSIX_FILE_SYSTEM_H_
