#include "platform/base/posix_file_system.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include "platform/base/config_root.h"

namespace cfg {

namespace {

Status ErrnoStatus(const std::string& context, int error) {
  std::string msg = context + ": " + std::strerror(error);
  return error == ENOENT ? Status::NotFound(msg) : Status::IOError(msg);
}

std::string DirName(const std::string& path) {
  size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Durability of the rename itself; a folder that cannot be opened or
// synced (some file systems refuse) does not undo the write.
void SyncDir(const std::string& dir) {
  int fd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  fsync(fd);
  close(fd);
}

// The file grew past the bound after it was opened.
Status TooLargeWhileRead(const std::string& path) {
  return Status::IOError(path + " grew past the bound of " + std::to_string(kMaxConfigFileBytes) +
                         " bytes (64 MiB) for one configuration file while it was read; not read");
}

Status ReadAll(int fd, const std::string& path, size_t size_hint, std::string* contents) {
  std::string data;
  data.resize(size_hint + 1);  // one more byte to see the end without a second read
  size_t used = 0;
  for (;;) {
    if (used == data.size()) data.resize(data.size() * 2 + 4096);
    size_t wanted = data.size() - used;
    ssize_t n = read(fd, &data[used], wanted);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return ErrnoStatus("cannot read " + path, errno);
    if (n == 0) break;
    used += static_cast<size_t>(n);
    if (used > kMaxConfigFileBytes) return TooLargeWhileRead(path);
    // A regular file reads short only at its end.
    if (static_cast<size_t>(n) < wanted && used == size_hint) break;
  }
  data.resize(used);
  contents->swap(data);
  return Status::OK();
}

}  // namespace

std::string TempPathFor(const std::string& path) {
  static std::atomic<unsigned> counter{0};
  static const unsigned seed = std::random_device{}();
  unsigned long noise = seed ^ (counter.fetch_add(1) * 2654435761u) ^
                        static_cast<unsigned long>(
                            std::chrono::steady_clock::now().time_since_epoch().count());
  char suffix[64];
  snprintf(suffix, sizeof(suffix), ".%ld.%08lx.tmp", static_cast<long>(getpid()),
           noise & 0xFFFFFFFFul);
  return path + suffix;
}

long TempFileWriter(const std::string& path, const std::string& name) {
  size_t slash = path.rfind('/');
  const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  // base "." pid "." 8 hex ".tmp"
  const std::string_view suffix = ".tmp";
  std::string_view rest(name);
  if (base.empty() || rest.size() <= base.size() + 1 || rest.compare(0, base.size(), base) != 0 ||
      rest[base.size()] != '.')
    return -1;
  rest.remove_prefix(base.size() + 1);
  if (rest.size() < suffix.size() || rest.substr(rest.size() - suffix.size()) != suffix) return -1;
  rest.remove_suffix(suffix.size());
  size_t dot = rest.find('.');
  if (dot == std::string_view::npos || dot == 0 || dot > 9 || rest.size() - dot - 1 != 8) return -1;
  long pid = 0;
  for (char c : rest.substr(0, dot)) {
    if (c < '0' || c > '9') return -1;
    pid = pid * 10 + (c - '0');
  }
  for (char c : rest.substr(dot + 1))
    if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) return -1;
  return pid > 0 ? pid : -1;
}

namespace {

// What stands at a path where a configuration file should be, for messages.
const char* KindName(mode_t mode) {
  if (S_ISDIR(mode)) return "a directory";
  if (S_ISFIFO(mode)) return "a FIFO";
  if (S_ISCHR(mode) || S_ISBLK(mode)) return "a device";
  if (S_ISSOCK(mode)) return "a socket";
  return "something other than a regular file";
}

// Opens a regular file of at most kMaxConfigFileBytes for reading, inside
// the configuration root when its name is; its size goes to *size.
Status OpenRegular(const std::string& path, int* fd, size_t* size) {
  // O_NONBLOCK: a FIFO where a file should be must not hang the reader;
  // O_NOCTTY: a terminal linked in must not become ours. Both are checked
  // away below before anything is read.
  const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  // Beneath the root's descriptor the kernel keeps the walk inside the
  // root; otherwise what was opened is checked below.
  bool beneath = false;
  *fd = OpenUnderRoot(path, flags, &beneath);
  if (!beneath) *fd = open(path.c_str(), flags);
  if (*fd < 0) return ErrnoStatus("cannot open " + path, errno);
  struct stat st = {};
  Status s;
  if (fstat(*fd, &st) != 0) {
    s = ErrnoStatus("cannot stat " + path, errno);
  } else if (!S_ISREG(st.st_mode)) {
    s = Status::IOError(path + " is " + KindName(st.st_mode) + ", not a configuration file");
  } else if (static_cast<uint64_t>(st.st_size) > kMaxConfigFileBytes) {
    s = Status::IOError(path + " has " + std::to_string(st.st_size) +
                        " bytes, more than the bound of " + std::to_string(kMaxConfigFileBytes) +
                        " bytes (64 MiB) for one configuration file; not read");
  } else if (!beneath && IsUnderRootName(path) && !OpenedInsideRoot(*fd, path)) {
    s = Status::IOError(path + " leads outside the configuration root " + ConfigRoot() +
                        " through a symbolic link; not read");
  }
  if (!s.ok()) {
    close(*fd);
    *fd = -1;
  }
  *size = static_cast<size_t>(st.st_size);
  return s;
}

}  // namespace

Status PosixFileSystem::ReadFile(const std::string& path, std::string* contents) {
  int fd = -1;
  size_t size = 0;
  Status s = OpenRegular(path, &fd, &size);
  if (!s.ok()) return s;
  s = ReadAll(fd, path, size, contents);
  close(fd);
  return s;
}

Status PosixFileSystem::ReadFileToArena(const std::string& path, std::unique_ptr<Arena>* arena,
                                        std::string_view* contents) {
  int fd = -1;
  size_t size = 0;
  Status s = OpenRegular(path, &fd, &size);
  if (!s.ok()) return s;
  std::unique_ptr<Arena> fresh = Arena::ForText(size);
  // One byte more than the size, to see the end without a second read.
  char* data = static_cast<char*>(fresh->Allocate(size + 1, 1));
  size_t used = 0;
  while (used <= size) {
    size_t wanted = size + 1 - used;
    ssize_t n = read(fd, data + used, wanted);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      s = ErrnoStatus("cannot read " + path, errno);
      break;
    }
    if (n == 0) break;
    used += static_cast<size_t>(n);
    // A regular file reads short only at its end: all `size` bytes are in.
    if (static_cast<size_t>(n) < wanted && used == size) break;
  }
  close(fd);
  if (!s.ok()) return s;
  // The file grew while we read it: take it the slow way, whole.
  if (used > size) return FileSystem::ReadFileToArena(path, arena, contents);
  *arena = std::move(fresh);
  *contents = std::string_view(data, used);
  return s;
}

Status PosixFileSystem::WriteFileAtomic(const std::string& path, std::string_view contents) {
  return WriteFileAtomicVia(path, TempPathFor(path), contents);
}

Status PosixFileSystem::WriteFileAtomicVia(const std::string& path, const std::string& temp,
                                           std::string_view contents) {
  // The rule of reads holds for writes: a folder or link on the way that
  // leads out of the root is not followed. (A missing folder fails below,
  // as it always did.)
  if (IsUnderRootName(path) && DirExists(DirName(path)) && !IsInsideRoot(path))
    return Status::IOError(path + " leads outside the configuration root " + ConfigRoot() +
                           " through a symbolic link; not written");
  // Keep the permission bits of the file being replaced.
  struct stat st;
  int mode = stat(path.c_str(), &st) == 0 ? static_cast<int>(st.st_mode & 07777) : -1;
  bool created = false;
  Status s = WriteTemp(temp, contents, mode, &created);
  if (s.ok()) s = Rename(temp, path);
  if (!s.ok()) {
    // Only what this call made: a name that was taken is someone else's.
    if (created) unlink(temp.c_str());
    return s;
  }
  SyncDir(DirName(path));
  return s;
}

Status PosixFileSystem::CreateTemp(const std::string& temp, int* fd) {
  *fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (*fd < 0) return ErrnoStatus("cannot create " + temp, errno);
  return Status::OK();
}

Status PosixFileSystem::WriteTemp(const std::string& temp, std::string_view contents, int mode,
                                  bool* created) {
  int fd = -1;
  Status s = CreateTemp(temp, &fd);
  if (!s.ok()) return s;
  *created = true;
  if (mode >= 0 && fchmod(fd, static_cast<mode_t>(mode)) != 0)
    s = ErrnoStatus("cannot set the mode of " + temp, errno);
  if (s.ok()) s = WriteAll(fd, contents, temp);
  if (s.ok()) s = Sync(fd, temp);
  if (close(fd) != 0 && s.ok()) s = ErrnoStatus("cannot close " + temp, errno);
  return s;
}

Status PosixFileSystem::WriteAll(int fd, std::string_view data, const std::string& path) {
  while (!data.empty()) {
    ssize_t n = write(fd, data.data(), data.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return ErrnoStatus("cannot write " + path, errno);
    data.remove_prefix(static_cast<size_t>(n));
  }
  return Status::OK();
}

Status PosixFileSystem::Sync(int fd, const std::string& path) {
  if (fsync(fd) != 0) return ErrnoStatus("cannot sync " + path, errno);
  return Status::OK();
}

Status PosixFileSystem::Rename(const std::string& from, const std::string& to) {
  if (rename(from.c_str(), to.c_str()) != 0)
    return Status::IOError("cannot rename " + from + " to " + to + ": " + std::strerror(errno));
  return Status::OK();
}

bool PosixFileSystem::FileExists(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

bool PosixFileSystem::DirExists(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

namespace {

FileInfo::Kind KindOf(mode_t mode) {
  if (S_ISREG(mode)) return FileInfo::kRegular;
  return S_ISDIR(mode) ? FileInfo::kDirectory : FileInfo::kOther;
}

}  // namespace

Status PosixFileSystem::Stat(const std::string& path, FileInfo* info) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0) return ErrnoStatus("cannot stat " + path, errno);
  FileInfo out;
  out.kind = KindOf(st.st_mode);
  out.device = static_cast<uint64_t>(st.st_dev);
  out.inode = static_cast<uint64_t>(st.st_ino);
  out.size = static_cast<uint64_t>(st.st_size);
  out.mtime_sec = static_cast<int64_t>(st.st_mtim.tv_sec);
  out.mtime_nsec = static_cast<int64_t>(st.st_mtim.tv_nsec);
  out.ctime_sec = static_cast<int64_t>(st.st_ctim.tv_sec);
  out.ctime_nsec = static_cast<int64_t>(st.st_ctim.tv_nsec);
  *info = out;
  return Status::OK();
}

Status PosixFileSystem::CreateDirs(const std::string& path) {
  if (path.empty()) return Status::InvalidArgument("empty path");
  for (size_t pos = 1; pos <= path.size(); ++pos) {
    if (pos != path.size() && path[pos] != '/') continue;
    std::string prefix = path.substr(0, pos);
    if (mkdir(prefix.c_str(), 0755) != 0 && errno != EEXIST)
      return ErrnoStatus("cannot create " + prefix, errno);
  }
  if (!DirExists(path)) return Status::IOError(path + " is not a directory");
  return Status::OK();
}

Status PosixFileSystem::ListDir(const std::string& path, std::vector<std::string>* names) {
  DIR* dir = opendir(path.c_str());
  if (dir == nullptr) return ErrnoStatus("cannot list " + path, errno);
  names->clear();
  while (struct dirent* entry = readdir(dir)) {
    std::string name = entry->d_name;
    if (name != "." && name != "..") names->push_back(std::move(name));
  }
  closedir(dir);
  return Status::OK();
}

Status PosixFileSystem::ListDirEntries(const std::string& path, std::vector<DirEntry>* entries) {
  DIR* dir = opendir(path.c_str());
  if (dir == nullptr) return ErrnoStatus("cannot list " + path, errno);
  entries->clear();
  while (struct dirent* found = readdir(dir)) {
    DirEntry entry;
    entry.name = found->d_name;
    if (entry.name == "." || entry.name == "..") continue;
    switch (found->d_type) {
      case DT_REG: entry.kind = FileInfo::kRegular; break;
      case DT_DIR: entry.kind = FileInfo::kDirectory; break;
      case DT_LNK:
      case DT_UNKNOWN: {
        // A link counts as what it points to; some file systems record no
        // kinds at all.
        struct stat st;
        if (fstatat(dirfd(dir), found->d_name, &st, 0) == 0) entry.kind = KindOf(st.st_mode);
        break;
      }
      default: break;  // FIFOs, sockets, devices
    }
    entries->push_back(std::move(entry));
  }
  closedir(dir);
  return Status::OK();
}

Status PosixFileSystem::RemoveFile(const std::string& path) {
  if (unlink(path.c_str()) != 0) return ErrnoStatus("cannot remove " + path, errno);
  return Status::OK();
}

}  // namespace cfg
