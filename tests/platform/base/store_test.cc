// The store over real folders: what it reads and refuses, how a save
// replaces a file, what a failed or crashed save leaves, the lock between
// writers, the root it stays inside and its read-only mode.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "platform/base/config_root.h"
#include "platform/base/multi_section_file.h"
#include "platform/base/posix_file_system.h"
#include "tests/support/lock_files.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/tree_snapshot.h"

namespace cfg {
namespace {

using testing_support::ReadLock;
using testing_support::TreeSnapshot;

const char kOld[] = "section s\n{\nk = old\n}\n";

// Fails one step of an atomic write, or runs something just before the
// rename; everything else is the real thing.
class FaultyFileSystem : public PosixFileSystem {
 public:
  bool fail_create = false;  // as a folder that cannot be written
  bool fail_write = false;   // half the data, then a full disk
  bool fail_rename = false;
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

// A child process that runs `body` and then waits until the parent calls
// End() (or the object goes), when it is reaped.
class Child {
 public:
  template <typename Body>
  explicit Child(Body body) {
    if (pipe(release_) != 0 || (pid_ = fork()) != 0) return;
    alarm(60);  // never outlives a test that went wrong
    close(release_[1]);
    body();
    for (char c; read(release_[0], &c, 1) > 0;) {
    }
    _exit(0);
  }
  ~Child() { End(); }
  pid_t pid() const { return pid_; }
  void End() {
    if (pid_ <= 0) return;
    close(release_[0]);
    close(release_[1]);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
  }

 private:
  int release_[2] = {-1, -1};
  pid_t pid_ = -1;
};

class StoreTest : public testing_support::PlatformTest {
 protected:
  std::vector<std::string> Names(const std::string& relative = "") {
    std::vector<std::string> names;
    EXPECT_TRUE(FileSystem::Default()->ListDir(root_.Path(relative), &names).ok());
    std::sort(names.begin(), names.end());
    return names;
  }
  // Collects what the store reports instead of printing it.
  std::vector<std::string> TakeReports() {
    std::lock_guard<std::mutex> guard(mutex_);
    std::vector<std::string> lines;
    lines.swap(reports_);
    return lines;
  }
  void CaptureReports() {
    SetStoreReporter([this](const std::string& line) {
      std::lock_guard<std::mutex> guard(mutex_);
      reports_.push_back(line);
    });
  }
  static bool Touch(Document& d) {
    Section* s = d.Find("s");
    d.Set(s != nullptr ? *s : d.Add("s"), "k", "touched");
    return true;
  }
  static std::string TempName(const std::string& target, long pid) {
    return target + "." + std::to_string(pid) + ".0123abcd.tmp";
  }

  std::mutex mutex_;
  std::vector<std::string> reports_;
};

// Every way the store reads a file refuses what it must not read, with an
// IOError naming the file and why, and fills nothing it was given.
TEST_F(StoreTest, WhatIsNoReadableConfigurationFileIsRefused) {
  auto make_sparse = [&](const std::string& name, off_t size) {
    int fd = open(root_.Path(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ASSERT_EQ(0, ftruncate(fd, size));
    close(fd);
  };
  make_sparse("huge.cfg", off_t{1} << 30);
  make_sparse("just_over.cfg", static_cast<off_t>(kMaxConfigFileBytes) + 1);
  root_.MakeDir("dir.cfg");
  ASSERT_EQ(0, mkfifo(root_.Path("fifo.cfg").c_str(), 0644));  // a read would wait for ever
  ASSERT_EQ(0, symlink(root_.Path("fifo.cfg").c_str(), root_.Path("to_fifo.cfg").c_str()));
  ASSERT_EQ(0, symlink("/dev/zero", root_.Path("zero.cfg").c_str()));  // endless
  ASSERT_EQ(0, symlink(root_.Path("b.cfg").c_str(), root_.Path("a.cfg").c_str()));
  ASSERT_EQ(0, symlink(root_.Path("a.cfg").c_str(), root_.Path("b.cfg").c_str()));
  root_.Write("secret.cfg", "x");
  chmod(root_.Path("secret.cfg").c_str(), 0);
  const std::pair<const char*, const char*> refused[] = {
      {"huge.cfg", "64 MiB"}, {"just_over.cfg", "67108864"}, {"dir.cfg", "a directory"},
      {"fifo.cfg", "a FIFO"}, {"to_fifo.cfg", "a FIFO"}, {"zero.cfg", "a device"},
      {"a.cfg", "symbolic links"}, {"secret.cfg", geteuid() == 0 ? nullptr : "Permission"}};
  PosixFileSystem fs;
  for (const auto& [name, reason] : refused) {
    if (reason == nullptr) continue;  // root reads whatever the mode
    SCOPED_TRACE(name);
    const std::string path = root_.Path(name);
    std::string contents = "untouched";
    Status s = fs.ReadFile(path, &contents);
    EXPECT_EQ(Status::kIOError, s.code()) << s.ToString();
    EXPECT_NE(std::string::npos, s.message().find(path)) << s.message();
    EXPECT_NE(std::string::npos, s.message().find(reason)) << s.message();
    EXPECT_EQ("untouched", contents);
    std::unique_ptr<Arena> arena;
    std::string_view view = "untouched";
    EXPECT_EQ(Status::kIOError, fs.ReadFileToArena(path, &arena, &view).code());
    EXPECT_EQ(nullptr, arena);
    EXPECT_EQ("untouched", view);
    Document doc = Document::Parse(kOld);
    EXPECT_EQ(Status::kIOError, LoadDocument(path, &doc).code());
    EXPECT_TRUE(doc.empty());
  }
  std::string contents;
  EXPECT_TRUE(fs.ReadFile(root_.Path("none.cfg"), &contents).IsNotFound());
  Document doc = Document::Parse(kOld);
  EXPECT_TRUE(LoadDocument(root_.Path("none.cfg"), &doc).IsNotFound());
  EXPECT_TRUE(doc.empty());
}

TEST_F(StoreTest, ReadsGiveTheWholeFile) {
  PosixFileSystem fs;
  // Around the small-file bound, and the largest file allowed: a short read
  // must end only at the end.
  for (size_t size : {size_t{0}, size_t{1}, Arena::kSmallText - 1, Arena::kSmallText,
                      size_t{100001}, kMaxConfigFileBytes}) {
    std::string text(size, '#');
    if (size > 0) text.back() = '\n';
    root_.Write("f.cfg", text);
    for (bool copying : {false, true}) {
      std::unique_ptr<Arena> arena;
      std::string_view read;
      Status s = copying ? fs.FileSystem::ReadFileToArena(root_.Path("f.cfg"), &arena, &read)
                         : fs.ReadFileToArena(root_.Path("f.cfg"), &arena, &read);
      ASSERT_TRUE(s.ok()) << size << ": " << s.ToString();
      EXPECT_TRUE(read == text) << size;
    }
  }
  // A file that holds more than its size tells (as those of /proc) is read whole.
  std::unique_ptr<Arena> arena;
  std::string_view view;
  std::string text;
  ASSERT_TRUE(fs.ReadFileToArena("/proc/self/status", &arena, &view).ok());
  ASSERT_TRUE(fs.ReadFile("/proc/self/status", &text).ok());
  EXPECT_EQ(0u, view.find("Name:"));
  EXPECT_EQ(0u, text.find("Name:"));
  root_.Write("f.cfg", "section s\n{\nk = v\n");  // no closer: read, with a diagnostic
  Document doc;
  ASSERT_TRUE(LoadDocument(root_.Path("f.cfg"), &doc).ok());
  EXPECT_EQ("v", doc[0].Get("k"));
  EXPECT_EQ(1u, doc.diagnostics().size());
}

TEST_F(StoreTest, SavesReplaceTheFileKeepItsModeAndWriteOnlyWhenAsked) {
  root_.Write("f.cfg", "old");
  chmod(root_.Path("f.cfg").c_str(), 0600);
  ASSERT_TRUE(FileSystem::Default()->WriteFileAtomic(root_.Path("f.cfg"), "new text").ok());
  EXPECT_EQ("new text", root_.Read("f.cfg"));
  struct stat st;
  ASSERT_EQ(0, stat(root_.Path("f.cfg").c_str(), &st));
  EXPECT_EQ(0600u, st.st_mode & 07777);
  const std::string path = root_.Path("u.cfg");
  ASSERT_TRUE(UpdateDocument(path, [](Document&) { return false; }).ok());
  EXPECT_FALSE(root_.Exists("u.cfg"));
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  EXPECT_EQ("section s\n{\nk = touched\n}\n", root_.Read("u.cfg"));
  EXPECT_EQ((std::vector<std::string>{"f.cfg", "u.cfg"}), Names());  // locks live elsewhere
}

TEST_F(StoreTest, FailedSaveLeavesTheOldFileNoTemporaryAndOneReport) {
  root_.Write("f.cfg", kOld);
  testing_support::WriteLock(root_, "f.cfg", "");
  const std::string path = root_.Path("f.cfg");
  Document doc;
  doc.Set(doc.Add("s"), "k", "new");
  CaptureReports();
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
      EXPECT_EQ(kOld, root_.Read("f.cfg"));
      EXPECT_EQ(std::vector<std::string>{"f.cfg"}, Names());
      EXPECT_EQ("", ReadLock(root_, "f.cfg"));  // nothing left noted
      EXPECT_EQ(std::vector<std::string>{"cannot save " + path + ": " + s.ToString()}, TakeReports());
    }
  }
  faulty.fail_rename = false;
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  EXPECT_TRUE(TakeReports().empty());  // success is not reported
  EXPECT_FALSE(UpdateDocument(root_.Path("no/such/dir.cfg"), Touch).ok());
  EXPECT_EQ(1u, TakeReports().size());
}

TEST_F(StoreTest, ReportsGoToStderrUnlessAReporterIsSet) {
  const std::string bad = root_.Path("no/such/dir.cfg");
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
  EXPECT_EQ(0u, err.find("cmcfg store: cannot save " + bad + ": IOError: cannot lock " + bad)) << err;
  EXPECT_EQ(1, std::count(err.begin(), err.end(), '\n'));
}

TEST_F(StoreTest, TemporaryNamesTellTheWriter) {
  const std::string path = root_.Path("f.cfg");
  const std::string temp = TempPathFor(path);
  EXPECT_EQ(0u, temp.find(path + "."));
  EXPECT_EQ(getpid(), TempFileWriter(path, temp.substr(root_.path().size())));
  EXPECT_NE(temp, TempPathFor(path));
  // As the writer of f.cfg, each name is the pid it tells, or -1.
  testing_support::ExpectGoldenTable("platform/base/tables/temp_names",
                                     [&](const std::string& name) {
    return std::to_string(TempFileWriter(path, name)) + " " + std::to_string(TempFileWriter("f.cfg", name));
  });
  EXPECT_EQ(-1, TempFileWriter(root_.path(), ".42.0123abcd.tmp"));  // no file name
}

TEST_F(StoreTest, OnlyNotedTemporariesOfEndedWritersAreRemoved) {
  const std::string path = root_.Path("f.cfg");
  root_.Write("f.cfg", kOld);
  Child live([] {});
  ASSERT_GT(live.pid(), 0);
  auto dead_pid = [] {
    pid_t pid = fork();
    if (pid == 0) _exit(0);
    waitpid(pid, nullptr, 0);
    return pid;
  };
  const pid_t dead = dead_pid();
  const std::string of_dead = TempName("f.cfg", dead);
  const std::string of_self = TempName("f.cfg", getpid());  // a crashed process of our pid
  const std::string of_live = TempName("f.cfg", live.pid());
  const std::string unnoted = TempName("f.cfg", dead_pid());
  const std::string of_other = TempName("g.cfg", dead);
  for (const std::string& name : {of_dead, of_self, of_live, unnoted, of_other, std::string("g.cfg")})
    root_.Write(name, "partial");
  // What the lock file names is checked before anything is removed.
  testing_support::WriteLock(root_, "f.cfg",
                             of_dead + "\n" + of_self + "\n" + of_live + "\n" + of_other +
                                 "\ng.cfg\n../" + of_dead + "\n" + root_.Path(of_dead) + "\n\ngarbage");
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  std::vector<std::string> expected = {"f.cfg", "g.cfg", of_live, of_other, unnoted};
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(expected, Names());
  EXPECT_EQ(of_live + "\n", ReadLock(root_, "f.cfg"));  // noted for a later writer
  live.End();
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  expected.erase(std::find(expected.begin(), expected.end(), of_live));
  EXPECT_EQ(expected, Names());
  EXPECT_EQ("", ReadLock(root_, "f.cfg"));
}

TEST_F(StoreTest, ConcurrentProcessesLoseNoUpdate) {
  const std::string path = root_.Path("count.cfg");
  auto increment = [&path] {
    for (int i = 0; i < 200; ++i)
      UpdateDocument(path, [](Document& d) {
        Section* s = d.Find("counter");
        if (s == nullptr) s = &d.Add("counter");
        return d.Set(*s, "value", std::to_string(std::stoi("0" + std::string(s->Get("value"))) + 1));
      });
  };
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    increment();
    _exit(0);
  }
  increment();
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  Document doc;
  ASSERT_TRUE(LoadDocument(path, &doc).ok());
  EXPECT_EQ("400", doc.Find("counter")->Get("value"));
}

TEST_F(StoreTest, LockWaitIsBounded) {
  EXPECT_EQ(std::chrono::milliseconds(5000), LockTimeout());
  const std::string path = root_.Path("f.cfg");
  root_.Write("f.cfg", kOld);
  CaptureReports();
  int ready[2];
  ASSERT_EQ(0, pipe(ready));
  Child holder([&] {  // another process holds the lock until told to let go
    std::string lock;
    int fd = LockPathFor(path, &lock).ok() ? open(lock.c_str(), O_RDWR | O_CREAT, 0644) : -1;
    char c = fd >= 0 && flock(fd, LOCK_EX) == 0 ? 'y' : 'n';
    if (write(ready[1], &c, 1) != 1) _exit(1);
  });
  char c = 'n';
  ASSERT_TRUE(read(ready[0], &c, 1) == 1 && c == 'y');
  FileLock once(path, std::chrono::milliseconds(0));
  EXPECT_FALSE(once.locked());
  EXPECT_TRUE(once.status().IsTimedOut()) << once.status().ToString();
  SetLockTimeout(std::chrono::milliseconds(200));
  bool called = false;
  const auto start = std::chrono::steady_clock::now();
  Status s = UpdateDocument(path, [&](Document& d) { return called = Touch(d); });
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
  EXPECT_TRUE(s.IsTimedOut()) << s.ToString();
  EXPECT_NE(std::string::npos, s.message().find(testing_support::LockOf(root_, "f.cfg")));
  EXPECT_FALSE(called);
  EXPECT_EQ(kOld, root_.Read("f.cfg"));
  EXPECT_EQ(std::vector<std::string>{"cannot save " + path + ": " + s.ToString()}, TakeReports());
  holder.End();
  ASSERT_TRUE(UpdateDocument(path, Touch).ok());
  EXPECT_EQ("section s\n{\nk = touched\n}\n", root_.Read("f.cfg"));
  close(ready[0]);
  close(ready[1]);
}

TEST_F(StoreTest, LocksNeedAFolderAndAnEmptyLockFolderNameMeansTheDefault) {
  FileLock missing(root_.Path("missing-dir/f.cfg"));
  EXPECT_FALSE(missing.locked());
  EXPECT_EQ(Status::kIOError, missing.status().code());
  FileLock empty("");
  EXPECT_EQ(Status::kInvalidArgument, empty.status().code());
  setenv("CMCFG_LOCK_DIR", "", 1);  // as unset: the system's lock folder
  EXPECT_EQ('/', LockFolder()[0]);
  EXPECT_NE(std::string::npos, LockFolder().find("cmcfg")) << LockFolder();
  EXPECT_TRUE(UpdateDocument(root_.Path("f.cfg"), Touch).ok());
}

// The store stays inside the configuration root: links out of it are
// neither read nor written through, with or without the root's descriptor.
TEST_F(StoreTest, LinksOutOfTheRootAreNeitherReadNorWritten) {
  testing_support::TempRoot outside;  // now the configuration root
  const std::string secret = "section secret\n{\n}\n";
  root_.Write("secret.cfg", secret);
  root_.Write("folder/ext.cfg", secret);
  const std::string sibling = root_.path().substr(root_.path().rfind('/', root_.path().size() - 2) + 1);
  outside.Write("real/a.cfg", "section a\n{\n}\n");
  outside.MakeDir("sub");
  auto link = [&](const std::string& target, const char* name) {
    ASSERT_EQ(0, symlink(target.c_str(), outside.Path(name).c_str())) << name;
  };
  link(root_.Path("secret.cfg"), "abs.cfg");
  link("../" + sibling + "secret.cfg", "rel.cfg");
  link(root_.Path("folder"), "ext");
  link(outside.Path("real/a.cfg"), "in-abs.cfg");
  link("real/a.cfg", "in-rel.cfg");
  link(outside.Path("real"), "in-folder");
  PosixFileSystem fs;
  for (bool scoped : {false, true}) {
    std::unique_ptr<RootScope> scope(scoped ? new RootScope : nullptr);
    for (const std::string& name : {std::string("abs.cfg"), std::string("rel.cfg"),
                                    std::string("ext/ext.cfg"), "sub/../../" + sibling + "secret.cfg"}) {
      std::string contents = "untouched";
      Status s = fs.ReadFile(outside.Path(name), &contents);
      EXPECT_NE(std::string::npos, s.message().find("outside the configuration root")) << name;
      EXPECT_EQ("untouched", contents);
    }
    for (const char* name : {"in-abs.cfg", "in-rel.cfg", "in-folder/a.cfg", "sub/../real/a.cfg"}) {
      std::string contents;
      EXPECT_TRUE(fs.ReadFile(outside.Path(name), &contents).ok()) << name;
      EXPECT_EQ("section a\n{\n}\n", contents) << name;
    }
    std::string contents;
    EXPECT_TRUE(fs.ReadFile(outside.Path("missing.cfg"), &contents).IsNotFound());
    // Paths not under the root are read as given (a tool comparing roots).
    EXPECT_TRUE(fs.ReadFile(root_.Path("secret.cfg"), &contents).ok());
  }
  const Document doc = Document::Parse("section mine\n{\n}\n");
  for (const char* name : {"ext/new.cfg", "ext/ext.cfg", "abs.cfg"})
    EXPECT_EQ(Status::kIOError, SaveDocument(outside.Path(name), doc).code()) << name;
  EXPECT_FALSE(UpdateDocument(outside.Path("ext/ext.cfg"), [](Document&) { return true; }).ok());
  EXPECT_EQ(secret, root_.Read("secret.cfg"));
  EXPECT_EQ(secret, root_.Read("folder/ext.cfg"));
  EXPECT_EQ(std::vector<std::string>{"ext.cfg"}, Names("folder"));
  EXPECT_TRUE(SaveDocument(outside.Path("own.cfg"), doc).ok());
  // The root reached through a link holds the same rule.
  const std::string alias = root_.Path("alias");
  ASSERT_EQ(0, symlink(outside.path().c_str(), alias.c_str()));
  setenv("ORBA_PATH", (alias + "/").c_str(), 1);
  std::string contents;
  EXPECT_TRUE(fs.ReadFile(alias + "/own.cfg", &contents).ok());
  EXPECT_EQ(Status::kIOError, fs.ReadFile(alias + "/abs.cfg", &contents).code());
}

TEST_F(StoreTest, RootNamesAreAboutTheTextOnly) {
  EXPECT_TRUE(IsUnderRootName(root_.Path("a.cfg")));
  EXPECT_TRUE(IsUnderRootName(root_.Path("../elsewhere")));  // resolved later, when opened
  EXPECT_FALSE(IsUnderRootName(root_.path()));
  EXPECT_FALSE(IsUnderRootName("/etc/passwd"));
  const std::string bare = root_.path().substr(0, root_.path().size() - 1);
  setenv("ORBA_PATH", bare.c_str(), 1);
  EXPECT_TRUE(IsUnderRootName(bare + "/a.cfg"));
  EXPECT_FALSE(IsUnderRootName(bare + "x/a.cfg"));  // a sibling that shares the prefix
  EXPECT_FALSE(IsUnderRootName(bare + "/"));
  // A sibling file sharing the root's name as a prefix is read as itself,
  // also through the root's descriptor.
  const std::string sibling = bare + "xa.cfg";
  std::ofstream(sibling) << "sibling";
  root_.Write("a.cfg", "inside");
  for (bool scoped : {false, true}) {
    std::unique_ptr<RootScope> scope(scoped ? new RootScope : nullptr);
    std::string contents;
    EXPECT_TRUE(FileSystem::Default()->ReadFile(sibling, &contents).ok());
    EXPECT_EQ("sibling", contents);
  }
  std::remove(sibling.c_str());
  for (const char* good : {"101", "a.b", "..x", "x..", "name with blanks", "-"})
    EXPECT_TRUE(IsPlainFileName(good)) << good;
  for (const std::string& bad : {std::string(), std::string("."), std::string(".."), std::string("../x"),
                                 std::string("/abs"), std::string("a/b"), std::string("x\n"),
                                 std::string("a\0b", 3), std::string("\x7f")})
    EXPECT_FALSE(IsPlainFileName(bad)) << bad;
}

// In read-only mode the store computes what it would write and writes
// nothing: not the file, not a temporary, not a lock, not a folder.
TEST_F(StoreTest, ReadOnlyModeChangesNothingOnDisk) {
  root_.Write("conf/net.cfg", kOld);
  const std::string net = root_.Path("conf/net.cfg");
  const std::string temp = TempPathFor(net);
  const std::string stale = "conf/" + temp.substr(temp.rfind('/') + 1);
  root_.Write(stale, "half a sav");  // of a save cut short, noted for the next writer
  testing_support::WriteLock(root_, "conf/net.cfg", stale.substr(5) + "\n");
  const TreeSnapshot before(root_.Path("conf"));
  std::unique_ptr<FileLock> lock;
  {
    ReadOnlyScope outer;
    {
      ReadOnlyScope inner;
    }
    EXPECT_TRUE(IsReadOnly());  // scopes nest
    std::string seen;
    EXPECT_TRUE(UpdateDocument(net, [&](Document& doc) {
                  seen = std::string(doc[0].Get("k"));  // the change sees what is on disk
                  return Touch(doc);
                }).ok());
    EXPECT_EQ("old", seen);
    bool called = false;
    EXPECT_TRUE(UpdateDocument(root_.Path("conf/new.cfg"), [&](Document& d) { return called = Touch(d); }).ok());
    EXPECT_TRUE(called);
    EXPECT_TRUE(SaveDocument(root_.Path("conf/new.cfg"), Document::Parse(kOld)).ok());
    lock.reset(new FileLock(net));
    EXPECT_TRUE(lock->locked());
    FileSystem* fs = FileSystem::Default();
    std::string text;
    EXPECT_TRUE(fs->ReadFile(net, &text).ok());
    for (const Status& s : {fs->WriteFileAtomic(net, "x"), fs->WriteFileAtomicVia(net, temp, "x"),
                            fs->CreateDirs(root_.Path("conf/sub/deeper")), fs->RemoveFile(net)})
      EXPECT_NE(std::string::npos, s.message().find("read-only mode")) << s.ToString();
    Configuration::MultiSectionFile file(net, true, false, true, "section", "{\n", "}\n", "=", "#", nullptr);
    ASSERT_TRUE(file.GotoSection("s"));
    ASSERT_TRUE(file.SetSectionEntry("k", "b"));
    EXPECT_TRUE(file.Save(true));
    char k[8];
    EXPECT_TRUE(file.GetSectionEntry("k", k, sizeof(k)));
    EXPECT_STREQ("b", k);  // saved in memory only
    EXPECT_EQ("", TreeSnapshot(root_.Path("conf")).DifferencesFrom(before));
  }
  EXPECT_FALSE(IsReadOnly());
  // The nominal lock held nothing, and guards nothing once the mode is over.
  EXPECT_FALSE(lock->locked());
  EXPECT_TRUE(FileLock(net, std::chrono::milliseconds(0)).locked());
  // Out of the mode the same update clears up and saves.
  EXPECT_TRUE(UpdateDocument(net, Touch).ok());
  EXPECT_FALSE(root_.Exists(stale));
  EXPECT_EQ("section s\n{\nk = touched\n}\n", root_.Read("conf/net.cfg"));
}

}  // namespace
}  // namespace cfg
