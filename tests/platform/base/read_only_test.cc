#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <string>

#include "platform/base/document_store.h"
#include "platform/base/file_lock.h"
#include "platform/base/file_system.h"
#include "platform/base/multi_section_file.h"
#include "platform/base/posix_file_system.h"
#include "tests/support/lock_files.h"
#include "tests/support/temp_root.h"
#include "tests/support/tree_snapshot.h"

namespace cfg {
namespace {

using testing_support::TreeSnapshot;

constexpr char kText[] = "section net\n{\nhost = a\n}\n";

class ReadOnlyTest : public ::testing::Test {
 protected:
  void SetUp() override { root_.Write("conf/net.cfg", kText); }
  void TearDown() override { SetReadOnly(false); }

  std::string Conf() const { return root_.Path("conf"); }
  std::string Net() const { return root_.Path("conf/net.cfg"); }

  // A temporary of a save cut short, noted in the lock file as the next
  // holder would find it: this process's pid, which cannot be writing.
  std::string LeaveStaleTemporary() const {
    const std::string temp = TempPathFor(Net());
    const std::string name = temp.substr(temp.rfind('/') + 1);
    root_.Write("conf/" + name, "half a sav");
    testing_support::WriteLock(root_, "conf/net.cfg", name + "\n");
    return "conf/" + name;
  }

  static bool SetHost(Document& doc, const std::string& host) {
    Section* section = doc.Find("net");
    if (section == nullptr) section = &doc.Add("net");
    doc.Set(*section, "host", host);
    return true;
  }

  testing_support::TempRoot root_;
};

TEST_F(ReadOnlyTest, UpdateRunsTheChangeOnTheFileButWritesNothing) {
  const TreeSnapshot before(Conf());
  ReadOnlyScope readOnly;
  std::string seen;
  Status s = UpdateDocument(Net(), [&](Document& doc) {
    const Section* section = doc.Find("net");
    const Entry* host = section ? section->Find("host") : nullptr;
    seen = host ? std::string(host->value) : "<none>";
    return SetHost(doc, "b");
  });
  EXPECT_TRUE(s.ok()) << s.ToString();
  EXPECT_EQ("a", seen);  // the change saw what is on disk
  // A missing file is an empty document, and is not created either.
  bool called = false;
  s = UpdateDocument(Conf() + "/new.cfg",
                     [&](Document& doc) { return called = SetHost(doc, "c"); });
  EXPECT_TRUE(s.ok()) << s.ToString();
  EXPECT_TRUE(called);
  EXPECT_EQ("", TreeSnapshot(Conf()).DifferencesFrom(before));
}

TEST_F(ReadOnlyTest, SaveSucceedsWithoutWriting) {
  Document doc;
  SetHost(doc, "b");
  const TreeSnapshot before(Conf());
  ReadOnlyScope readOnly;
  EXPECT_TRUE(SaveDocument(Net(), doc).ok());
  EXPECT_TRUE(SaveDocument(Conf() + "/new.cfg", doc).ok());
  EXPECT_EQ("", TreeSnapshot(Conf()).DifferencesFrom(before));
}

TEST_F(ReadOnlyTest, LockHoldsNothingAndOnlyWhileTheModeLasts) {
  const TreeSnapshot before(Conf());
  std::unique_ptr<FileLock> lock;
  {
    ReadOnlyScope readOnly;
    lock.reset(new FileLock(Net()));
    EXPECT_TRUE(lock->locked());
    EXPECT_TRUE(lock->status().ok());
    EXPECT_EQ("", TreeSnapshot(Conf()).DifferencesFrom(before));
  }
  // Out of the mode it guards no write: it never had the lock.
  EXPECT_FALSE(lock->locked());
  // A real lock can be had meanwhile, which the nominal one would not allow
  // had it taken anything.
  FileLock real(Net(), std::chrono::milliseconds(0));
  EXPECT_TRUE(real.locked()) << real.status().ToString();
}

TEST_F(ReadOnlyTest, StaleTemporariesStayUntilAWriterComes) {
  const std::string temp = LeaveStaleTemporary();
  const TreeSnapshot before(Conf());
  {
    ReadOnlyScope readOnly;
    UpdateDocument(Net(), [](Document& doc) { return SetHost(doc, "b"); });
    FileLock lock(Net());
    EXPECT_EQ("", TreeSnapshot(Conf()).DifferencesFrom(before));
  }
  // The same update out of the mode clears it and saves.
  EXPECT_TRUE(UpdateDocument(Net(), [](Document& doc) { return SetHost(doc, "b"); }).ok());
  EXPECT_FALSE(root_.Exists(temp));
  EXPECT_NE(std::string::npos, root_.Read("conf/net.cfg").find("host = b"));
}

TEST_F(ReadOnlyTest, DefaultFileSystemRefusesEveryWriteButReads) {
  const TreeSnapshot before(Conf());
  ReadOnlyScope readOnly;
  FileSystem* fs = FileSystem::Default();
  std::string text;
  EXPECT_TRUE(fs->ReadFile(Net(), &text).ok());
  EXPECT_EQ(kText, text);
  EXPECT_TRUE(fs->FileExists(Net()));
  const Status refusals[] = {fs->WriteFileAtomic(Net(), "x"),
                             fs->WriteFileAtomicVia(Net(), TempPathFor(Net()), "x"),
                             fs->CreateDirs(Conf() + "/sub/deeper"), fs->RemoveFile(Net())};
  for (const Status& s : refusals) {
    EXPECT_EQ(Status::kIOError, s.code());
    EXPECT_NE(std::string::npos, s.message().find("read-only mode")) << s.message();
  }
  EXPECT_EQ("", TreeSnapshot(Conf()).DifferencesFrom(before));
}

TEST_F(ReadOnlyTest, SectionFileForUpdateSavesInMemoryOnly) {
  const TreeSnapshot before(Conf());
  ReadOnlyScope readOnly;
  Configuration::MultiSectionFile file(Net(), true, false, true, "section", "{\n", "}\n", "=",
                                       "#", nullptr);
  ASSERT_TRUE(file.GotoSection("net"));
  ASSERT_TRUE(file.SetSectionEntry("host", "b"));
  EXPECT_TRUE(file.Save(true));
  char host[8];
  EXPECT_TRUE(file.GetSectionEntry("host", host, sizeof(host)));
  EXPECT_STREQ("b", host);
  EXPECT_EQ("", TreeSnapshot(Conf()).DifferencesFrom(before));
}

TEST_F(ReadOnlyTest, ScopesNestAndTheModeIsOffByDefault) {
  EXPECT_FALSE(IsReadOnly());
  {
    ReadOnlyScope outer;
    {
      ReadOnlyScope inner;
      EXPECT_TRUE(IsReadOnly());
    }
    EXPECT_TRUE(IsReadOnly());  // the inner scope put back the outer state
  }
  EXPECT_FALSE(IsReadOnly());
  // Off, the store writes as it always did: the file, under its lock.
  EXPECT_TRUE(UpdateDocument(Net(), [](Document& doc) { return SetHost(doc, "b"); }).ok());
  EXPECT_NE(std::string::npos, root_.Read("conf/net.cfg").find("host = b"));
  EXPECT_TRUE(std::ifstream(testing_support::LockOf(root_, "conf/net.cfg")).good());
  Document doc;
  SetHost(doc, "c");
  EXPECT_TRUE(SaveDocument(Conf() + "/new.cfg", doc).ok());
  EXPECT_TRUE(root_.Exists("conf/new.cfg"));
}

}  // namespace
}  // namespace cfg
