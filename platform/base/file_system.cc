#include "platform/base/file_system.h"

#include <atomic>
#include <memory>
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

namespace {

std::atomic<bool> read_only{false};

// The file system that writes: the real one unless a test replaced it.
FileSystem* Writable() {
  static PosixFileSystem* posix = new PosixFileSystem();  // never destroyed: used at exit
  FileSystem* fs = Installed();
  return fs != nullptr ? fs : posix;
}

Status Refused(const std::string& path) {
  return Status::IOError("read-only mode: " + path + " is not changed");
}

// What Default() gives in read-only mode: the reads of the writable file
// system, and writes that fail before they touch anything.
class ReadOnlyView : public FileSystem {
 public:
  Status ReadFile(const std::string& path, std::string* contents) override {
    return Writable()->ReadFile(path, contents);
  }
  Status ReadFileToArena(const std::string& path, std::unique_ptr<Arena>* arena,
                         std::string_view* contents) override {
    return Writable()->ReadFileToArena(path, arena, contents);
  }
  Status WriteFileAtomic(const std::string& path, std::string_view) override {
    return Refused(path);
  }
  Status WriteFileAtomicVia(const std::string& path, const std::string&,
                            std::string_view) override {
    return Refused(path);
  }
  bool FileExists(const std::string& path) override { return Writable()->FileExists(path); }
  bool DirExists(const std::string& path) override { return Writable()->DirExists(path); }
  Status Stat(const std::string& path, FileInfo* info) override {
    return Writable()->Stat(path, info);
  }
  Status CreateDirs(const std::string& path) override { return Refused(path); }
  Status ListDir(const std::string& path, std::vector<std::string>* names) override {
    return Writable()->ListDir(path, names);
  }
  Status ListDirEntries(const std::string& path, std::vector<DirEntry>* entries) override {
    return Writable()->ListDirEntries(path, entries);
  }
  Status RemoveFile(const std::string& path) override { return Refused(path); }
};

}  // namespace

FileSystem* FileSystem::Default() {
  if (read_only.load(std::memory_order_acquire)) {
    static ReadOnlyView* view = new ReadOnlyView();  // never destroyed, as the real one
    return view;
  }
  return Writable();
}

void SetReadOnly(bool on) { read_only.store(on, std::memory_order_release); }

bool IsReadOnly() { return read_only.load(std::memory_order_acquire); }

ReadOnlyScope::ReadOnlyScope() : previous_(read_only.exchange(true)) {}

ReadOnlyScope::~ReadOnlyScope() { read_only.store(previous_); }

void FileSystem::SetDefaultForTesting(FileSystem* fs) { Installed() = fs; }

Status FileSystem::WriteFileAtomicVia(const std::string& path, const std::string& temp,
                                      std::string_view contents) {
  (void)temp;
  return WriteFileAtomic(path, contents);
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

}  // namespace cfg
