#include "platform/base/file_system.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <errno.h>

#include <utility>

#include "platform/base/posix_file_system.h"

namespace cfg {

namespace {

FileSystem*& Installed() {
  static FileSystem* installed = nullptr;
  return installed;
}

}  // namespace

bool FileInfo::SameVersion(const FileInfo& other) const {
  return kind == other.kind && device == other.device && inode == other.inode &&
         size == other.size && mtime_sec == other.mtime_sec && mtime_nsec == other.mtime_nsec &&
         ctime_sec == other.ctime_sec && ctime_nsec == other.ctime_nsec;
}

FileSystem::~FileSystem() = default;

FileSystem* FileSystem::Default() {
  static PosixFileSystem* posix = new PosixFileSystem();  // never destroyed: used at exit
  FileSystem* fs = Installed();
  return fs != nullptr ? fs : posix;
}

void FileSystem::SetDefaultForTesting(FileSystem* fs) { Installed() = fs; }

FileLock::FileLock(const std::string& path) {
  if (path.empty()) return;  // would lock ".lock" in whatever folder is current
  std::string lock_path = path + ".lock";
  fd_ = open(lock_path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (fd_ < 0) return;
  int rc;
  do {
    rc = flock(fd_, LOCK_EX);
  } while (rc != 0 && errno == EINTR);
  if (rc != 0) {
    close(fd_);
    fd_ = -1;
  }
}

FileLock::~FileLock() {
  if (fd_ < 0) return;
  flock(fd_, LOCK_UN);
  close(fd_);
}

Status FileSystem::ReadFileToArena(const std::string& path, std::unique_ptr<Arena>* arena,
                                   std::string_view* contents) {
  std::string text;
  Status s = ReadFile(path, &text);
  if (!s.ok()) return s;
  *arena = Arena::ForText(text.size());
  char* copy = static_cast<char*>((*arena)->Allocate(text.size() + 1, 1));
  text.copy(copy, text.size());
  *contents = std::string_view(copy, text.size());
  return s;
}

Status FileSystem::ListDirEntries(const std::string& path, std::vector<DirEntry>* entries) {
  std::vector<std::string> names;
  Status s = ListDir(path, &names);
  if (!s.ok()) return s;
  std::string prefix = path;
  if (!prefix.empty() && prefix.back() != '/') prefix += '/';
  entries->clear();
  for (std::string& name : names) {
    FileInfo info;
    DirEntry entry;
    if (Stat(prefix + name, &info).ok()) entry.kind = info.kind;
    entry.name = std::move(name);
    entries->push_back(std::move(entry));
  }
  return s;
}

Status LoadDocument(const std::string& path, Document* doc, const Syntax& syntax) {
  std::unique_ptr<Arena> arena;
  std::string_view text;
  Status s = FileSystem::Default()->ReadFileToArena(path, &arena, &text);
  if (!s.ok()) {
    *doc = Document();
    return s;
  }
  *doc = Document::Parse(std::move(arena), text, syntax);
  return s;
}

Status SaveDocument(const std::string& path, const Document& doc, const Syntax& syntax) {
  return FileSystem::Default()->WriteFileAtomic(path, doc.Serialize(syntax));
}

Status UpdateDocument(const std::string& path, const std::function<bool(Document&)>& change,
                      const Syntax& syntax) {
  FileLock lock(path);
  if (!lock.locked()) return Status::IOError("cannot lock " + path);
  Document doc;
  Status s = LoadDocument(path, &doc, syntax);
  if (!s.ok() && !s.IsNotFound()) return s;
  if (!change || !change(doc)) return Status::OK();
  return SaveDocument(path, doc, syntax);
}

}  // namespace cfg
