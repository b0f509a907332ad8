#include "platform/base/file_system.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/base/posix_file_system.h"
#include "tests/support/temp_root.h"

namespace cfg {
namespace {

// Fails one step of an atomic write; everything else is the real thing.
class FaultyFileSystem : public PosixFileSystem {
 public:
  bool fail_write = false;
  bool fail_rename = false;

 protected:
  Status WriteAll(int fd, std::string_view data, const std::string& path) override {
    if (!fail_write) return PosixFileSystem::WriteAll(fd, data, path);
    PosixFileSystem::WriteAll(fd, data.substr(0, data.size() / 2), path);
    return Status::IOError("disk full");
  }
  Status Rename(const std::string& from, const std::string& to) override {
    if (fail_rename) return Status::IOError("rename refused");
    return PosixFileSystem::Rename(from, to);
  }
};

class FileSystemTest : public ::testing::Test {
 protected:
  void TearDown() override { FileSystem::SetDefaultForTesting(nullptr); }

  std::vector<std::string> Names() {
    std::vector<std::string> names;
    EXPECT_TRUE(FileSystem::Default()->ListDir(root_.path(), &names).ok());
    return names;
  }

  testing_support::TempRoot root_;
};

TEST_F(FileSystemTest, ReadFileTellsMissingFromUnreadable) {
  std::string contents = "untouched";
  FileSystem* fs = FileSystem::Default();
  EXPECT_TRUE(fs->ReadFile(root_.Path("missing"), &contents).IsNotFound());
  root_.MakeDir("dir");
  Status dir = fs->ReadFile(root_.Path("dir"), &contents);
  EXPECT_EQ(Status::kIOError, dir.code()) << dir.ToString();
  ASSERT_EQ(0, mkfifo(root_.Path("fifo").c_str(), 0644));
  EXPECT_EQ(Status::kIOError, fs->ReadFile(root_.Path("fifo"), &contents).code());
  if (geteuid() != 0) {
    root_.Write("secret", "x");
    chmod(root_.Path("secret").c_str(), 0);
    EXPECT_EQ(Status::kIOError, fs->ReadFile(root_.Path("secret"), &contents).code());
  }
  EXPECT_EQ("untouched", contents);
}

TEST_F(FileSystemTest, ReadingIntoAnArenaGivesTheWholeFile) {
  PosixFileSystem fs;
  // Around the small-file bound: a short read must end only at the end.
  for (size_t size : {size_t{1}, Arena::kSmallText - 1, Arena::kSmallText}) {
    std::string text(size, '#');
    text.back() = '\n';
    root_.Write("f.cfg", text);
    std::unique_ptr<Arena> arena;
    std::string_view read;
    ASSERT_TRUE(fs.ReadFileToArena(root_.Path("f.cfg"), &arena, &read).ok());
    EXPECT_TRUE(read == text) << size;
    // Tables that outgrow the first chunk (many tiny sections) get more: a
    // small file's arena still takes it from the heap, a large one maps.
    for (int i = 0; i < 3; ++i) arena->Allocate(size_t{4} << 20, 8);
    EXPECT_EQ(size >= Arena::kSmallText, arena->mapped_chunks() > 0) << size;
  }
  std::string text = "section a\n{\nk = v\n}\n" + std::string(100000, '#') + "\n";
  root_.Write("f.cfg", text);
  root_.Write("empty.cfg", "");
  for (bool copying : {false, true}) {
    std::unique_ptr<Arena> arena;
    std::string_view read;
    Status s = copying ? fs.FileSystem::ReadFileToArena(root_.Path("f.cfg"), &arena, &read)
                       : fs.ReadFileToArena(root_.Path("f.cfg"), &arena, &read);
    ASSERT_TRUE(s.ok()) << s.ToString();
    EXPECT_EQ(text, read);
    ASSERT_TRUE(fs.ReadFileToArena(root_.Path("empty.cfg"), &arena, &read).ok());
    EXPECT_TRUE(read.empty());
  }
  std::unique_ptr<Arena> arena;
  std::string_view read;
  root_.MakeDir("dir.cfg");
  EXPECT_EQ(Status::kIOError, fs.ReadFileToArena(root_.Path("dir.cfg"), &arena, &read).code());
  EXPECT_TRUE(fs.ReadFileToArena(root_.Path("none.cfg"), &arena, &read).IsNotFound());
}

TEST_F(FileSystemTest, StatTellsKindSizeAndVersion) {
  FileSystem* fs = FileSystem::Default();
  FileInfo info, again;
  EXPECT_TRUE(fs->Stat(root_.Path("none"), &info).IsNotFound());
  root_.Write("f.cfg", "12345");
  ASSERT_TRUE(fs->Stat(root_.Path("f.cfg"), &info).ok());
  EXPECT_EQ(FileInfo::kRegular, info.kind);
  EXPECT_EQ(5u, info.size);
  ASSERT_TRUE(fs->Stat(root_.Path("f.cfg"), &again).ok());
  EXPECT_TRUE(info.SameVersion(again));
  struct timespec times[2] = {{info.mtime_sec, 0}, {info.mtime_sec, info.mtime_nsec ^ 1}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, root_.Path("f.cfg").c_str(), times, 0));
  ASSERT_TRUE(fs->Stat(root_.Path("f.cfg"), &again).ok());
  EXPECT_FALSE(info.SameVersion(again));  // nanoseconds count
}

TEST_F(FileSystemTest, WriteFileAtomicReplacesContentsAndKeepsMode) {
  root_.Write("f.cfg", "old");
  chmod(root_.Path("f.cfg").c_str(), 0600);
  ASSERT_TRUE(FileSystem::Default()->WriteFileAtomic(root_.Path("f.cfg"), "new text").ok());
  EXPECT_EQ("new text", root_.Read("f.cfg"));
  struct stat st;
  ASSERT_EQ(0, stat(root_.Path("f.cfg").c_str(), &st));
  EXPECT_EQ(0600u, st.st_mode & 07777);
  EXPECT_EQ(std::vector<std::string>{"f.cfg"}, Names());
}

TEST_F(FileSystemTest, FailedWriteOrRenameLeavesOldFileAndNoTemp) {
  FaultyFileSystem faulty;
  FileSystem::SetDefaultForTesting(&faulty);
  root_.Write("f.cfg", "section s\n{\nk = old\n}\n");
  Document doc;
  doc.Set(doc.Add("s"), "k", "new");

  faulty.fail_write = true;
  EXPECT_FALSE(SaveDocument(root_.Path("f.cfg"), doc).ok());
  faulty.fail_write = false;
  faulty.fail_rename = true;
  EXPECT_FALSE(SaveDocument(root_.Path("f.cfg"), doc).ok());

  EXPECT_EQ("section s\n{\nk = old\n}\n", root_.Read("f.cfg"));
  EXPECT_EQ(std::vector<std::string>{"f.cfg"}, Names());
}

TEST_F(FileSystemTest, LoadDocumentReportsErrorsAndLeavesEmptyDocument) {
  Document doc = Document::Parse("section stale\n{\n}\n");
  EXPECT_TRUE(LoadDocument(root_.Path("none.cfg"), &doc).IsNotFound());
  EXPECT_TRUE(doc.empty());
  root_.Write("ok.cfg", "section s\n{\nk = v\n");
  ASSERT_TRUE(LoadDocument(root_.Path("ok.cfg"), &doc).ok());
  EXPECT_EQ("v", doc[0].Get("k"));
  EXPECT_EQ(1u, doc.diagnostics().size());
}

TEST_F(FileSystemTest, UpdateDocumentCreatesAndSavesOnlyWhenAsked) {
  const std::string path = root_.Path("u.cfg");
  ASSERT_TRUE(UpdateDocument(path, [](Document&) { return false; }).ok());
  EXPECT_FALSE(root_.Exists("u.cfg"));
  ASSERT_TRUE(UpdateDocument(path, [](Document& d) {
                d.Set(d.Add("s"), "k", "v");
                return true;
              }).ok());
  EXPECT_EQ("section s\n{\nk = v\n}\n", root_.Read("u.cfg"));
  EXPECT_TRUE(root_.Exists("u.cfg.lock"));
  EXPECT_FALSE(UpdateDocument(root_.Path("no/such/dir.cfg"), [](Document&) { return true; }).ok());
}

void Increment(const std::string& path, int times) {
  for (int i = 0; i < times; ++i) {
    UpdateDocument(path, [](Document& d) {
      Section* s = d.Find("counter");
      if (s == nullptr) s = &d.Add("counter");
      d.Set(*s, "value", std::to_string(std::stoi("0" + std::string(s->Get("value"))) + 1));
      return true;
    });
  }
}

TEST_F(FileSystemTest, ConcurrentProcessesLoseNoUpdate) {
  const std::string path = root_.Path("count.cfg");
  const int kTimes = 200;
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    Increment(path, kTimes);
    _exit(0);
  }
  Increment(path, kTimes);
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  Document doc;
  ASSERT_TRUE(LoadDocument(path, &doc).ok());
  EXPECT_EQ(std::to_string(2 * kTimes), doc.Find("counter")->Get("value"));
}

TEST_F(FileSystemTest, FileLockFailsWhereLockFileCannotBeMade) {
  FileLock lock(root_.Path("missing-dir/f.cfg"));
  EXPECT_FALSE(lock.locked());
  FileLock empty("");
  EXPECT_FALSE(empty.locked());
}

TEST_F(FileSystemTest, CreateDirsMakesEveryLevel) {
  FileSystem* fs = FileSystem::Default();
  ASSERT_TRUE(fs->CreateDirs(root_.Path("a/b/c")).ok());
  EXPECT_TRUE(fs->DirExists(root_.Path("a/b/c")));
  EXPECT_FALSE(fs->FileExists(root_.Path("a/b/c")));
  root_.Write("plain", "x");
  EXPECT_FALSE(fs->CreateDirs(root_.Path("plain/sub")).ok());
}

}  // namespace
}  // namespace cfg
