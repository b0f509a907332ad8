#include "platform/base/document_store.h"
#include "platform/base/file_lock.h"
#include "platform/base/file_system.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/base/posix_file_system.h"
#include "tests/support/lock_files.h"
#include "tests/support/temp_root.h"

namespace cfg {
namespace {

// Fails one step of an atomic write; everything else is the real thing.
class FaultyFileSystem : public PosixFileSystem {
 public:
  bool fail_create = false;  // as a folder that cannot be written
  bool fail_write = false;   // half the data, then a full disk
  bool fail_rename = false;
  // Called just before the rename, with the temporary file's name.
  std::function<void(const std::string& temp)> before_rename;

 protected:
  Status CreateTemp(const std::string& temp, int* fd) override {
    if (fail_create) return Status::IOError("cannot create " + temp + ": Permission denied");
    return PosixFileSystem::CreateTemp(temp, fd);
  }
  Status WriteAll(int fd, std::string_view data, const std::string& path) override {
    if (!fail_write) return PosixFileSystem::WriteAll(fd, data, path);
    PosixFileSystem::WriteAll(fd, data.substr(0, data.size() / 2), path);
    return Status::IOError("cannot write " + path + ": No space left on device");
  }
  Status Rename(const std::string& from, const std::string& to) override {
    if (before_rename) before_rename(from);
    if (fail_rename) return Status::IOError("rename refused");
    return PosixFileSystem::Rename(from, to);
  }
};

// Collects what the store reports instead of printing it.
class CapturedReports {
 public:
  CapturedReports() {
    SetStoreReporter([this](const std::string& line) {
      std::lock_guard<std::mutex> guard(mutex_);
      lines_.push_back(line);
    });
  }
  ~CapturedReports() { SetStoreReporter(nullptr); }
  std::vector<std::string> Take() {
    std::lock_guard<std::mutex> guard(mutex_);
    std::vector<std::string> lines;
    lines.swap(lines_);
    return lines;
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> lines_;
};

class FileSystemTest : public ::testing::Test {
 protected:
  void TearDown() override {
    FileSystem::SetDefaultForTesting(nullptr);
    SetLockTimeout(kDefaultLockTimeout);
  }

  std::vector<std::string> Names() {
    std::vector<std::string> names;
    EXPECT_TRUE(FileSystem::Default()->ListDir(root_.path(), &names).ok());
    std::sort(names.begin(), names.end());
    return names;
  }

  testing_support::TempRoot root_;
};

bool Touch(Document& d) {
  Section* s = d.Find("s");
  d.Set(s != nullptr ? *s : d.Add("s"), "k", "touched");
  return true;
}

// A process that does nothing until told to end: its pid is a live one.
class Sleeper {
 public:
  Sleeper() {
    if (pipe(pipe_) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      alarm(60);  // never outlives a test that went wrong
      close(pipe_[1]);
      char c;
      while (read(pipe_[0], &c, 1) > 0) {
      }
      _exit(0);
    }
    close(pipe_[0]);
  }
  ~Sleeper() { End(); }
  pid_t pid() const { return pid_; }
  // Lets it end and reaps it.
  void End() {
    if (pid_ <= 0) return;
    close(pipe_[1]);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }

 private:
  int pipe_[2] = {-1, -1};
  pid_t pid_ = -1;
};

// A pid that no process has: one of a child that has ended and been reaped.
pid_t DeadPid() {
  pid_t pid = fork();
  if (pid == 0) _exit(0);
  waitpid(pid, nullptr, 0);
  return pid;
}

std::string TempName(const std::string& target, long pid) {
  char name[128];
  snprintf(name, sizeof(name), "%s.%ld.0123abcd.tmp", target.c_str(), pid);
  return name;
}

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

TEST_F(FileSystemTest, FailedSaveLeavesOldFileNoTempAndOneReport) {
  const std::string old_text = "section s\n{\nk = old\n}\n";
  root_.Write("f.cfg", old_text);
  testing_support::WriteLock(root_, "f.cfg", "");
  const std::string path = root_.Path("f.cfg");
  Document doc;
  doc.Set(doc.Add("s"), "k", "new");
  CapturedReports reports;
  FaultyFileSystem faulty;
  FileSystem::SetDefaultForTesting(&faulty);

  enum Fault { kReadOnlyFolder, kFullDisk, kRenameRefused };
  for (Fault fault : {kReadOnlyFolder, kFullDisk, kRenameRefused}) {
    for (bool update : {true, false}) {
      SCOPED_TRACE(testing::Message() << "fault " << fault << (update ? " update" : " save"));
      // Root ignores permissions: there the refusal is injected instead.
      const bool chmod_folder = fault == kReadOnlyFolder && geteuid() != 0;
      faulty.fail_create = fault == kReadOnlyFolder && !chmod_folder;
      faulty.fail_write = fault == kFullDisk;
      faulty.fail_rename = fault == kRenameRefused;
      if (chmod_folder) chmod(root_.path().c_str(), 0555);
      Status s = update ? UpdateDocument(path, Touch) : SaveDocument(path, doc);
      if (chmod_folder) chmod(root_.path().c_str(), 0755);

      EXPECT_FALSE(s.ok());
      EXPECT_EQ(old_text, root_.Read("f.cfg"));
      EXPECT_EQ((std::vector<std::string>{"f.cfg"}), Names());
      EXPECT_EQ("", testing_support::ReadLock(root_, "f.cfg"));  // nothing left noted
      std::vector<std::string> lines = reports.Take();
      ASSERT_EQ(1u, lines.size());
      EXPECT_EQ(0u, lines[0].find("cannot save " + path + ": ")) << lines[0];
      EXPECT_NE(std::string::npos, lines[0].find(s.message())) << lines[0];
    }
  }
  faulty.fail_rename = false;
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  EXPECT_TRUE(reports.Take().empty());  // success is not reported
}

TEST_F(FileSystemTest, ReportsGoToStderrUnlessAReporterIsSet) {
  const std::string bad = root_.Path("no/such/dir.cfg");
  // The default: one line on stderr, with the store's prefix.
  fflush(stderr);
  int saved = dup(STDERR_FILENO);
  int file = open(root_.Path("stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  ASSERT_GE(file, 0);
  dup2(file, STDERR_FILENO);
  EXPECT_FALSE(UpdateDocument(bad, Touch).ok());
  dup2(saved, STDERR_FILENO);
  close(saved);
  close(file);
  const std::string err = root_.Read("stderr");
  EXPECT_EQ(0u, err.find("cmcfg store: cannot save " + bad + ": IOError: cannot lock " + bad))
      << err;
  EXPECT_EQ(1, std::count(err.begin(), err.end(), '\n'));

  // Concurrent failures each give one whole line.
  CapturedReports reports;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 25; ++i) UpdateDocument(bad, Touch);
    });
  for (std::thread& t : threads) t.join();
  std::vector<std::string> lines = reports.Take();
  EXPECT_EQ(100u, lines.size());
  for (const std::string& line : lines) EXPECT_EQ(0u, line.find("cannot save " + bad)) << line;
}

TEST_F(FileSystemTest, TempNamesTellTheWriter) {
  const std::string path = root_.Path("f.cfg");
  const std::string temp = TempPathFor(path);
  EXPECT_EQ(0u, temp.find(path + "."));
  EXPECT_EQ(getpid(), TempFileWriter(path, temp.substr(root_.path().size())));
  EXPECT_NE(temp, TempPathFor(path));
  EXPECT_EQ(42, TempFileWriter(path, "f.cfg.42.0123abcd.tmp"));
  EXPECT_EQ(42, TempFileWriter("f.cfg", "f.cfg.42.0123abcd.tmp"));
  for (const char* other : {"f.cfg", "f.cfg.lock", "g.cfg.42.0123abcd.tmp", "xf.cfg.42.0123abcd.tmp",
                            "f.cfg.0.0123abcd.tmp", "f.cfg..0123abcd.tmp", "f.cfg.-4.0123abcd.tmp",
                            "f.cfg.42.0123abc.tmp", "f.cfg.42.0123ABCD.tmp", "f.cfg.42.0123abcd",
                            "f.cfg.42.0123abcd.tmp.x", "f.cfg.1234567890.0123abcd.tmp",
                            "../f.cfg.42.0123abcd.tmp", "f.cfg.42.0123abcd.tmp/"})
    EXPECT_EQ(-1, TempFileWriter(path, other)) << other;
}

// A save under the lock notes its temporary file in the lock file for the
// whole time the temporary exists, and forgets it afterwards.
TEST_F(FileSystemTest, SavesUnderTheLockNoteTheirTemporary) {
  FaultyFileSystem faulty;
  FileSystem::SetDefaultForTesting(&faulty);
  const std::string path = root_.Path("f.cfg");
  std::vector<std::string> noted;
  faulty.before_rename = [&](const std::string& temp) {
    noted.push_back(testing_support::ReadLock(root_, "f.cfg") + "|" + temp.substr(root_.path().size()));
  };
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  {
    FileLock lock(path);  // as a MultiSectionFile opened for update holds it
    ASSERT_TRUE(lock.locked());
    ASSERT_TRUE(SaveDocument(path, Document::Parse("section x\n{\n}\n")).ok());
  }
  ASSERT_TRUE(SaveDocument(path, Document::Parse("section y\n{\n}\n")).ok());  // no lock
  ASSERT_EQ(3u, noted.size());
  for (size_t i = 0; i < 2; ++i) {
    const std::string name = noted[i].substr(noted[i].find('|') + 1);
    EXPECT_EQ(name + "\n|" + name, noted[i]);
  }
  EXPECT_EQ(0u, noted[2].find('|'));
  EXPECT_EQ("", testing_support::ReadLock(root_, "f.cfg"));
}

TEST_F(FileSystemTest, NextWriterRemovesTheTemporaryOfACrashedSave) {
  const std::string path = root_.Path("f.cfg");
  root_.Write("f.cfg", "section s\n{\nk = old\n}\n");
  // A writer dies between flushing its temporary file and the rename.
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    FaultyFileSystem dying;
    dying.before_rename = [](const std::string&) { _exit(0); };
    FileSystem::SetDefaultForTesting(&dying);
    UpdateDocument(path, Touch);
    _exit(1);
  }
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  const std::string left = TempName("f.cfg", child).substr(0, std::string("f.cfg.").size() +
                                                               std::to_string(child).size());
  ASSERT_EQ(2u, Names().size());
  EXPECT_EQ(0u, Names()[1].find(left)) << Names()[1];
  EXPECT_EQ(Names()[1] + "\n", testing_support::ReadLock(root_, "f.cfg"));

  // The next writer gets the lock at once and clears up, even when it
  // changes nothing.
  SetLockTimeout(std::chrono::milliseconds(0));
  ASSERT_TRUE(UpdateDocument(path, [](Document&) { return false; }).ok());
  EXPECT_EQ((std::vector<std::string>{"f.cfg"}), Names());
  EXPECT_EQ("", testing_support::ReadLock(root_, "f.cfg"));
  EXPECT_EQ("section s\n{\nk = old\n}\n", root_.Read("f.cfg"));
}

TEST_F(FileSystemTest, OnlyNotedTemporariesOfEndedWritersAreRemoved) {
  const std::string path = root_.Path("f.cfg");
  root_.Write("f.cfg", "section s\n{\n}\n");
  Sleeper live;
  ASSERT_GT(live.pid(), 0);
  const pid_t dead = DeadPid();
  const std::string of_dead = TempName("f.cfg", dead);
  const std::string of_self = TempName("f.cfg", getpid());  // a crashed process of our pid
  const std::string of_live = TempName("f.cfg", live.pid());
  const std::string unnoted = TempName("f.cfg", DeadPid());
  const std::string of_other = TempName("g.cfg", dead);
  for (const std::string& name : {of_dead, of_self, of_live, unnoted, of_other, std::string("g.cfg")})
    root_.Write(name, "partial");
  // What the lock file names is checked before anything is removed.
  testing_support::WriteLock(root_, "f.cfg", of_dead + "\n" + of_self + "\n" + of_live + "\n" + of_other +
                                "\ng.cfg\n../" + of_dead + "\n" + root_.Path(of_dead) +
                                "\n\ngarbage");

  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  std::vector<std::string> expected = {"f.cfg", "g.cfg", of_live, of_other, unnoted};
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(expected, Names());
  EXPECT_EQ(of_live + "\n", testing_support::ReadLock(root_, "f.cfg"));  // noted for a later writer

  // Once the live writer has ended, the next writer removes its temporary.
  live.End();
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  expected.erase(std::find(expected.begin(), expected.end(), of_live));
  EXPECT_EQ(expected, Names());
  EXPECT_EQ("", testing_support::ReadLock(root_, "f.cfg"));
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
  EXPECT_FALSE(root_.Exists("u.cfg.lock"));  // locks live outside the root
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
  EXPECT_EQ(Status::kIOError, lock.status().code());
  FileLock empty("");
  EXPECT_FALSE(empty.locked());
  EXPECT_EQ(Status::kInvalidArgument, empty.status().code());
}

// Another process holds the lock until told to let go.
class LockHolder {
 public:
  explicit LockHolder(const std::string& path) {
    if (pipe(ready_) != 0 || pipe(release_) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      alarm(60);  // never outlives a test that went wrong
      close(ready_[0]);
      close(release_[1]);
      std::string lock;
      int fd = LockPathFor(path, &lock).ok() ? open(lock.c_str(), O_RDWR | O_CREAT, 0644) : -1;
      char c = fd >= 0 && flock(fd, LOCK_EX) == 0 ? 'y' : 'n';
      if (write(ready_[1], &c, 1) != 1) _exit(1);
      while (read(release_[0], &c, 1) > 0) {
      }
      _exit(0);
    }
    close(ready_[1]);
    close(release_[0]);
    char c = 'n';
    holding_ = read(ready_[0], &c, 1) == 1 && c == 'y';
    close(ready_[0]);
  }
  ~LockHolder() { Release(); }
  bool holding() const { return holding_; }
  void Release() {
    if (pid_ <= 0) return;
    close(release_[1]);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }

 private:
  int ready_[2] = {-1, -1};
  int release_[2] = {-1, -1};
  pid_t pid_ = -1;
  bool holding_ = false;
};

TEST_F(FileSystemTest, LockWaitIsBounded) {
  EXPECT_EQ(std::chrono::milliseconds(5000), LockTimeout());
  const std::string path = root_.Path("f.cfg");
  root_.Write("f.cfg", "section s\n{\nk = old\n}\n");
  CapturedReports reports;
  LockHolder holder(path);
  ASSERT_TRUE(holder.holding());

  FileLock once(path, std::chrono::milliseconds(0));
  EXPECT_FALSE(once.locked());
  EXPECT_TRUE(once.status().IsTimedOut()) << once.status().ToString();

  SetLockTimeout(std::chrono::milliseconds(200));
  bool called = false;
  const auto start = std::chrono::steady_clock::now();
  Status s = UpdateDocument(path, [&](Document& d) { return called = Touch(d); });
  const auto waited = std::chrono::steady_clock::now() - start;
  EXPECT_TRUE(s.IsTimedOut()) << s.ToString();
  EXPECT_NE(std::string::npos, s.message().find(testing_support::LockOf(root_, "f.cfg")))
      << s.message();
  EXPECT_GE(waited, std::chrono::milliseconds(200));  // it did wait, then gave up
  EXPECT_FALSE(called);
  EXPECT_EQ("section s\n{\nk = old\n}\n", root_.Read("f.cfg"));
  std::vector<std::string> lines = reports.Take();
  ASSERT_EQ(1u, lines.size());
  EXPECT_EQ("cannot save " + path + ": " + s.ToString(), lines[0]);

  holder.Release();
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  EXPECT_EQ("section s\n{\nk = touched\n}\n", root_.Read("f.cfg"));
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
