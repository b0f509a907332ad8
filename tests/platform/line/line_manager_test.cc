#include "platform/line/line_manager.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

#include "platform/base/posix_file_system.h"
#include "tests/support/temp_root.h"

namespace {

using testing_support::TempRoot;

const char kLineDb[] =
    "section binding 1/2\n{\nextension = 102\npresentation_id = 2\n}\n"
    "section fxs 1/2\n{\nsymmetric_rtp = 1\ndisconnect_mode = 3\ndisconnect_min_ms = 200\n"
    "disconnect_max_ms = 900\ncaller_id_type = 4\nrtp_proxy = 1\n}\n"
    "section binding 1/1\n{\nextension = 101\npresentation_id = 1\n}\n"
    "section binding 1/1\n{\nextension = duplicate\n}\n"
    "section fxo 1/1\n{\nnumber = 0301234567\n}\n"
    "section binding x/1\n{\nextension = bad endpoint\n}\n"
    "section fxs 2/1\n{\n}\n";

// The real file system with whole-second timestamps, as file systems with
// a coarse clock keep them: rewrites within one second look alike.
class CoarseClock : public cfg::PosixFileSystem {
 public:
  cfg::Status Stat(const std::string& path, cfg::FileInfo* info) override {
    cfg::Status s = cfg::PosixFileSystem::Stat(path, info);
    info->mtime_nsec = info->ctime_nsec = 0;
    return s;
  }
};

class LineManagerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_.Write("telephony/linedb", kLineDb);
    cfg::FileSystem::SetDefaultForTesting(&coarse_);
  }
  void TearDown() override { cfg::FileSystem::SetDefaultForTesting(nullptr); }
  std::string Db() const { return root_.Path("telephony/linedb"); }
  // Dates the file back to a fixed day, as one unchanged for a while.
  void Settle() const {
    struct timespec past[2] = {{1600000000, 0}, {1600000000, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, Db().c_str(), past, 0));
  }
  // kLineDb with extension 101 renamed: the same size.
  void Rename101(const std::string& to) const {
    std::string text = kLineDb;
    root_.Write("telephony/linedb", text.replace(text.find("= 101"), 5, "= " + to));
  }
  CoarseClock coarse_;
  TempRoot root_;
};

TEST_F(LineManagerTest, EachTypeReadsOnlyItsSectionsInFileOrder) {
  LineManager bindings(LineManagerBase::kLineDb, Db(), true);
  const std::list<LineBase*>& lines = bindings.GetLines(false);
  ASSERT_EQ(2u, lines.size());  // the duplicate and the bad endpoint are skipped
  EXPECT_EQ("102", lines.front()->extension);
  EXPECT_EQ(2u, lines.front()->presentationId);
  EXPECT_EQ("101", lines.back()->extension);

  LineManager fxs(LineManagerBase::kFxsLines, Db(), false);
  EXPECT_EQ(2u, fxs.GetLines(false).size());
  LineManager fxo(LineManagerBase::kFxoLines, Db(), false);
  ASSERT_EQ(1u, fxo.GetLines(false).size());
  EXPECT_EQ("0301234567", fxo.GetLines(false).front()->fxoNumber);
}

TEST_F(LineManagerTest, IndexesKeepTheFirstEntryAndFileOrder) {
  root_.Write("telephony/linedb",
              "section binding 2/5\n{\nextension = 101\n}\nsection binding 5/2\n{\n"
              "extension = 102\n}\nsection binding 1/5\n{\nextension = 101\n}\n"
              "section binding 2/5\n{\nextension = 103\n}\n");
  LineManager bindings(LineManagerBase::kLineDb, Db(), true);
  const std::vector<LineBase*>& of = bindings.GetLinesOf("101", false);
  ASSERT_EQ(2u, of.size());
  EXPECT_EQ(of[0], bindings.GetLine(2, 5, false));  // not 103's duplicate
  EXPECT_EQ(of[1], bindings.GetLine(1, 5, false));
  EXPECT_EQ("102", bindings.GetLine(5, 2, false)->extension);
  EXPECT_EQ(nullptr, bindings.GetLine(5, 1, false));
  EXPECT_TRUE(bindings.GetLinesOf("103", false).empty());
  LineManager fxs(LineManagerBase::kFxsLines, Db(), true);
  EXPECT_TRUE(fxs.GetLinesOf("101", true).empty());  // bindings are type 0's
}

TEST_F(LineManagerTest, ReloadReadsOnlyAChangedFile) {
  LineManager bindings(LineManagerBase::kLineDb, Db(), true);
  // Rewritten within the second it was written, size, inode and times
  // agree: only its age tells that it may have changed.
  for (const char* next : {"201", "301"}) {
    Rename101(next);
    EXPECT_EQ(next, bindings.GetLine(1, 1, true)->extension);
  }
  Rename101("101");
  Settle();
  LineBase* entry = bindings.GetLine(1, 1, true);
  entry->extension = "marked";  // a re-read would make a fresh entry
  EXPECT_EQ(entry, bindings.GetLine(1, 1, true));
  EXPECT_EQ(entry, bindings.GetLines(true).back());
  EXPECT_EQ(std::vector<LineBase*>{entry}, bindings.GetLinesOf("101", true));

  Rename101("201");  // in place, same size: a new modification time
  EXPECT_EQ("201", bindings.GetLine(1, 1, true)->extension);
  // Saved atomically, same size, same times to the second: a new inode.
  Settle();
  EXPECT_EQ(1u, bindings.GetLinesOf("201", true).size());
  std::string text = kLineDb;
  text.replace(text.find("= 101"), 5, "= 301");
  ASSERT_TRUE(cfg::FileSystem::Default()->WriteFileAtomic(Db(), text).ok());
  Settle();
  EXPECT_EQ(1u, bindings.GetLinesOf("301", true).size());

  std::remove(Db().c_str());
  EXPECT_EQ(nullptr, bindings.GetLine(1, 1, true));
  root_.Write("telephony/linedb", kLineDb);
  EXPECT_EQ(1u, bindings.GetLinesOf("101", true).size());
}

TEST_F(LineManagerTest, ManagersShareTheFileButNotTheirEntries) {
  Settle();
  LineManager first(LineManagerBase::kLineDb, Db(), true);
  first.GetLine(1, 1, false)->extension = "changed";
  // Managers opened one after the other and from several threads at once.
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 50; ++i) {
        LineManager temporary(LineManagerBase::kLineDb, Db(), false);
        const std::vector<LineBase*>& of = temporary.GetLinesOf("101", true);
        if (of.size() != 1 || of[0]->extension != "101") ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, wrong.load());
  EXPECT_EQ("changed", first.GetLine(1, 1, true)->extension);
}

TEST_F(LineManagerTest, FxsLinesCarryTheirSettingsAndDefaults) {
  LineManager fxs(LineManagerBase::kFxsLines, Db(), false);
  LineBase* line = fxs.GetLine(1, 2, false);
  ASSERT_NE(nullptr, line);
  EXPECT_EQ(1, line->symmetricRtp);
  EXPECT_EQ(1, line->rtpProxy);
  EXPECT_EQ(4, line->fxsExtra);
  EXPECT_EQ((std::vector<int32_t>{3, 200, 900, 5}),
            std::vector<int32_t>(line->disconnect, line->disconnect + 4));
  LineBase* bare = fxs.GetLine(2, 1, false);
  ASSERT_NE(nullptr, bare);
  EXPECT_EQ(5, bare->disconnect[3]);
  EXPECT_EQ(nullptr, fxs.GetLine(9, 9, false));
}

TEST_F(LineManagerTest, ReloadAndLoadSeeTheFileAsItIsNow) {
  LineManager bindings(LineManagerBase::kLineDb, Db(), true);
  LineBase* entry = bindings.GetLine(1, 1, false);
  ASSERT_NE(nullptr, entry);
  root_.Write("telephony/linedb", "section binding 1/1\n{\nextension = 105\npresentation_id = 9\n}\n");
  EXPECT_TRUE(entry->Load());
  EXPECT_EQ("105", entry->extension);
  EXPECT_EQ(9u, entry->presentationId);
  EXPECT_EQ(2u, bindings.GetLines(false).size());  // until reloaded
  EXPECT_EQ(1u, bindings.GetLines(true).size());

  root_.Write("telephony/linedb", "");
  EXPECT_FALSE(bindings.GetLines(false).front()->Load());  // the entry is gone
}

TEST_F(LineManagerTest, BadFilesHaveNoLines) {
  root_.Write("telephony/garbage", std::string("\0\x01section binding 1/1\n{\n", 24));
  LineManager garbage(LineManagerBase::kLineDb, root_.Path("telephony/garbage"), true);
  EXPECT_LE(garbage.GetLines(false).size(), 1u);
  LineManager missing(LineManagerBase::kLineDb, root_.Path("telephony/none"), true);
  EXPECT_TRUE(missing.GetLines(true).empty());
  LineManager folder(LineManagerBase::kLineDb, root_.Path("telephony"), true);
  EXPECT_TRUE(folder.GetLines(true).empty());
}

TEST(LineDbName, IsSetAndUnsetProcessWide) {
  LineManager::SetLineDB("/x/telephony/linedb");
  EXPECT_EQ("/x/telephony/linedb", LineManager::GetLineDB());
  LineManager::UnsetLineDB();
  EXPECT_EQ("", LineManager::GetLineDB());
  EXPECT_EQ(0xFFFFFFFFu, gUndefinedLine);
}

}  // namespace
