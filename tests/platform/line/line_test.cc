// The line database (telephony/linedb) and the codec and fax tables.
#include "platform/line/line_manager.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

#include "platform/base/posix_file_system.h"
#include "platform/line/codecs.h"
#include "tests/support/platform_fixture.h"

namespace {

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

class LineTest : public testing_support::PlatformTest {
 protected:
  void SetUp() override {
    root_.Write("telephony/linedb", kLineDb);
    cfg::FileSystem::SetDefaultForTesting(&coarse_);
  }
  std::string Db() const { return root_.Path("telephony/linedb"); }
  // Dates the file back to a fixed day, as one unchanged for a while.
  void Settle() const {
    struct timespec past[2] = {{1600000000, 0}, {1600000000, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, Db().c_str(), past, 0));
  }
  // kLineDb with extension 101 renamed: the same size.
  std::string Renamed(const std::string& to) const {
    std::string text = kLineDb;
    return text.replace(text.find("= 101"), 5, "= " + to);
  }
  CoarseClock coarse_;
};

// The cases are data: tables/line_sections.in, answered in .out.
TEST_F(LineTest, SectionNamesAreAKindAndTwoNumbers) {
  testing_support::ExpectGoldenTable("platform/line/tables/line_sections",
                                     [](const std::string& name) {
    int kind = -1;
    uint32_t gateway = 0, line = 0;
    if (!ParseLineSection(name, &kind, &gateway, &line)) return std::string("not a line section");
    return std::string(LineSectionKind(kind)) + " " + std::to_string(gateway) + "/" + std::to_string(line);
  });
  EXPECT_STREQ("", LineSectionKind(3));
  EXPECT_STREQ("", LineSectionKind(-1));
}

TEST_F(LineTest, EachTypeReadsItsSectionsInFileOrderKeepingTheFirstOfAnEndpoint) {
  LineManager bindings(LineManagerBase::kLineDb, Db(), true);
  const std::list<LineBase*>& lines = bindings.GetLines(false);
  ASSERT_EQ(2u, lines.size());  // the duplicate and the bad endpoint are skipped
  EXPECT_EQ("102", lines.front()->extension);
  EXPECT_EQ(2u, lines.front()->presentationId);
  EXPECT_EQ("101", bindings.GetLine(1, 1, false)->extension);
  EXPECT_EQ(std::vector<LineBase*>{lines.back()}, bindings.GetLinesOf("101", false));
  EXPECT_EQ(nullptr, bindings.GetLine(2, 1, false));  // an fxs endpoint
  EXPECT_TRUE(bindings.GetLinesOf("duplicate", false).empty());
  LineManager fxs(LineManagerBase::kFxsLines, Db(), false);
  EXPECT_EQ(2u, fxs.GetLines(false).size());
  EXPECT_TRUE(fxs.GetLinesOf("101", true).empty());  // bindings are type 0's
  LineBase* line = fxs.GetLine(1, 2, false);
  ASSERT_NE(nullptr, line);
  EXPECT_EQ(std::make_tuple(1, 1, 4), std::make_tuple(line->symmetricRtp, line->rtpProxy, line->fxsExtra));
  EXPECT_EQ((std::vector<int32_t>{3, 200, 900, 5}), std::vector<int32_t>(line->disconnect, line->disconnect + 4));
  EXPECT_EQ(5, fxs.GetLine(2, 1, false)->disconnect[3]);  // the default
  LineManager fxo(LineManagerBase::kFxoLines, Db(), false);
  ASSERT_EQ(1u, fxo.GetLines(false).size());
  EXPECT_EQ("0301234567", fxo.GetLines(false).front()->fxoNumber);
}

TEST_F(LineTest, ReloadReadsOnlyAChangedFile) {
  LineManager bindings(LineManagerBase::kLineDb, Db(), true);
  // Rewritten within the second it was written, size, inode and times
  // agree: only its age tells that it may have changed.
  for (const char* next : {"201", "301"}) {
    root_.Write("telephony/linedb", Renamed(next));
    EXPECT_EQ(next, bindings.GetLine(1, 1, true)->extension);
  }
  root_.Write("telephony/linedb", kLineDb);
  Settle();
  LineBase* entry = bindings.GetLine(1, 1, true);
  entry->extension = "marked";  // a re-read would make a fresh entry
  EXPECT_EQ(entry, bindings.GetLine(1, 1, true));
  EXPECT_EQ(entry, bindings.GetLines(true).back());
  EXPECT_EQ(std::vector<LineBase*>{entry}, bindings.GetLinesOf("101", true));
  root_.Write("telephony/linedb", Renamed("201"));  // in place, same size: a new time
  EXPECT_EQ("201", bindings.GetLine(1, 1, true)->extension);
  Settle();
  EXPECT_EQ(1u, bindings.GetLinesOf("201", true).size());
  // Saved atomically, same size, same times to the second: a new inode.
  ASSERT_TRUE(cfg::FileSystem::Default()->WriteFileAtomic(Db(), Renamed("301")).ok());
  Settle();
  EXPECT_EQ(1u, bindings.GetLinesOf("301", true).size());
  std::remove(Db().c_str());
  EXPECT_EQ(nullptr, bindings.GetLine(1, 1, true));
  root_.Write("telephony/linedb", kLineDb);
  EXPECT_EQ(1u, bindings.GetLinesOf("101", true).size());
  // One entry re-read on its own sees the file as it is now.
  LineBase* one = bindings.GetLine(1, 1, false);
  root_.Write("telephony/linedb", "section binding 1/1\n{\nextension = 105\npresentation_id = 9\n}\n");
  EXPECT_TRUE(one->Load());
  EXPECT_EQ(std::make_tuple(std::string("105"), 9u), std::make_tuple(one->extension, one->presentationId));
  EXPECT_EQ(2u, bindings.GetLines(false).size());  // until reloaded
  EXPECT_EQ(1u, bindings.GetLines(true).size());
  root_.Write("telephony/linedb", "");
  EXPECT_FALSE(bindings.GetLines(false).front()->Load());  // the entry is gone
}

TEST_F(LineTest, ManagersShareTheFileButNotTheirEntries) {
  Settle();
  LineManager first(LineManagerBase::kLineDb, Db(), true);
  first.GetLine(1, 1, false)->extension = "changed";
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 50; ++i) {
        LineManager temporary(LineManagerBase::kLineDb, Db(), false);
        const std::vector<LineBase*>& of = temporary.GetLinesOf("101", true);
        if (of.size() != 1 || of[0]->extension != "101") ++wrong;
      }
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, wrong.load());
  EXPECT_EQ("changed", first.GetLine(1, 1, true)->extension);
}

TEST_F(LineTest, BadFilesHaveNoLines) {
  root_.Write("telephony/garbage", testing_support::Bytes("\0\x01section binding 1/1\n{\n"));
  EXPECT_LE(LineManager(LineManagerBase::kLineDb, root_.Path("telephony/garbage"), true).GetLines(false).size(), 1u);
  EXPECT_TRUE(LineManager(LineManagerBase::kLineDb, root_.Path("telephony/none"), true).GetLines(true).empty());
  EXPECT_TRUE(LineManager(LineManagerBase::kLineDb, root_.Path("telephony"), true).GetLines(true).empty());
  LineManager::SetLineDB("/x/telephony/linedb");
  EXPECT_EQ("/x/telephony/linedb", LineManager::GetLineDB());
  LineManager::UnsetLineDB();
  EXPECT_EQ("", LineManager::GetLineDB());
}

TEST_F(LineTest, CodecsAndFaxEncodings) {
  EXPECT_NE(GetDspCodecByName("G729"), GetDspCodecByName("G729a"));
  EXPECT_EQ(GetRtpCodecByDspCodec(GetDspCodecByName("G729")), GetRtpCodecByDspCodec(GetDspCodecByName("G729a")));
  EXPECT_EQ(8, GetRtpCodecByDspCodec(GetDspCodecByName("G711A")));
  EXPECT_EQ(0, GetRtpCodecByDspCodec(GetDspCodecByName("G711U")));
  EXPECT_EQ(16000, GetSamplingRate(GetDspCodecByName("G722")));
  EXPECT_EQ(-1, GetDspCodecByName("T38"));    // a fax relay encoding
  EXPECT_EQ(-1, GetDspCodecByName("g711a"));  // names are exact
  EXPECT_EQ(0, GetRtpCodecByDspCodec(-1));
  EXPECT_EQ(0, GetSamplingRate(999));
  root_.Write("fax.cfg",
              "section T38\n{\nversion = 3\nmax_bit_rate = 14400\ntranscoding_jbig = 1\n"
              "max_buffer = junk\n}\nsection T38-ECM\n{\nerror_correction = 2\n}\n");
  EncodingManager encodings("", root_.Path("fax.cfg"), false);
  const FaxEncoding* t38 = encodings.GetFaxEncoding("T38", true);
  ASSERT_NE(nullptr, t38);
  EXPECT_EQ((std::vector<uint32_t>{3, 14400, 0, 0, 0, 0, 0, 0, 0, 0, 1}),
            std::vector<uint32_t>(t38->values, t38->values + 11));
  EXPECT_EQ(nullptr, encodings.GetFaxEncoding("t38", true));
  EXPECT_EQ(t38, encodings.GetFaxEncoding("t38", false));
  EXPECT_EQ(2u, encodings.GetFaxEncoding("T38-ECM", true)->values[5]);
  EXPECT_EQ(nullptr, EncodingManager("", root_.Path("missing.cfg"), true).GetFaxEncoding("T38", true));
}

}  // namespace
