// The older interfaces the call manager still uses over the store: the
// section cursor of MultiSectionFile, the path helpers and the trace log.
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/base/config_root.h"
#include "platform/base/file_utility.h"
#include "platform/base/log_stream.h"
#include "platform/base/multi_section_file.h"
#include "tests/support/platform_fixture.h"

namespace {

using Configuration::MultiSectionFile;

class LegacyApiTest : public testing_support::PlatformTest {
 protected:
  // As the external-user reader opens its file (update) and the tone reader
  // (shared).
  std::unique_ptr<MultiSectionFile> Open(const std::string& name, bool update, bool create = false) {
    return std::make_unique<MultiSectionFile>(root_.Path(name), update, !update, create, "section",
                                              "{\n", "}\n", "=", "#", nullptr);
  }
  static std::string Entry(const MultiSectionFile& f, const char* key, size_t size = 64) {
    std::string buffer(size, 'X');
    f.GetSectionEntry(key, buffer.data(), size);
    return buffer.c_str();
  }
  static void Trace(LogStream& log, const char* format, ...) {
    va_list args;
    va_start(args, format);
    log.TRACE(0, format, args, 0);
    va_end(args);
  }
  void WriteUsers() {
    root_.Write("users.cfg",
                "section one\n{\nuser_name = alice\n}\nsection two\n{\nuser_name = bob\nempty =\n}\n"
                "section three\n{\nuser_name = carol\n}\n");
  }
};

TEST_F(LegacyApiTest, CursorWalksSectionsAndCutsEntriesToTheBuffer) {
  WriteUsers();
  auto f = Open("users.cfg", false);
  ASSERT_TRUE(f->IsOpen());
  EXPECT_EQ(3u, f->GetSectionCount());
  EXPECT_EQ("", f->GetSectionName());
  EXPECT_EQ("", Entry(*f, "user_name"));
  std::string names;
  for (f->Restart(); f->GotoNextSection();) names += f->GetSectionName() + ",";
  EXPECT_EQ("one,two,three,", names);
  EXPECT_EQ("three", f->GetSectionName());  // the cursor stays on the last
  ASSERT_TRUE(f->GotoSection("two"));
  EXPECT_FALSE(f->GotoSection("four"));
  EXPECT_EQ("two", f->GetSectionName());
  char buffer[4] = "abc";
  EXPECT_TRUE(f->GetSectionEntry("empty", buffer, sizeof(buffer)));
  EXPECT_STREQ("", buffer);
  std::strcpy(buffer, "abc");
  EXPECT_FALSE(f->GetSectionEntry("absent", buffer, sizeof(buffer)));
  EXPECT_STREQ("", buffer);
  EXPECT_TRUE(f->GetSectionEntry("user_name", buffer, sizeof(buffer)));
  EXPECT_STREQ("bob", buffer);  // exactly fills the buffer
  EXPECT_EQ("bo", Entry(*f, "user_name", 3));
  EXPECT_EQ("b", Entry(*f, "user_name", 2));
  EXPECT_FALSE(f->GetSectionEntry("user_name", buffer, 0));
}

TEST_F(LegacyApiTest, DeletingMovesTheCursorAndSavingNeedsUpdateMode) {
  WriteUsers();
  {
    auto f = Open("users.cfg", true);
    ASSERT_TRUE(f->GotoNextSection());
    ASSERT_TRUE(f->DeleteSection());
    EXPECT_EQ("", f->GetSectionName());  // before the start
    ASSERT_TRUE(f->GotoNextSection());
    EXPECT_EQ("two", f->GetSectionName());
    ASSERT_TRUE(f->GotoLastSection());
    ASSERT_TRUE(f->DeleteSection());
    EXPECT_EQ("two", f->GetSectionName());
    ASSERT_TRUE(f->Save(true));
  }
  auto shared = Open("users.cfg", false);
  ASSERT_EQ(1u, shared->GetSectionCount());
  ASSERT_TRUE(shared->GotoLastSection());
  EXPECT_EQ("bob", Entry(*shared, "user_name"));
  ASSERT_TRUE(shared->DeleteSection());
  EXPECT_FALSE(shared->Save(true));
  EXPECT_FALSE(Open("new.cfg", true)->Save(true));
  EXPECT_FALSE(root_.Exists("new.cfg"));
  auto created = Open("new.cfg", true, true);
  EXPECT_FALSE(created->SetSectionEntry("k", "v"));  // no current section yet
  ASSERT_TRUE(created->AddSection("fresh"));
  EXPECT_FALSE(created->SetSectionEntry("bad=key", "v"));
  ASSERT_TRUE(created->SetSectionEntry("k", "two\nlines"));
  ASSERT_TRUE(created->Save(false));
  created.reset();
  auto f = Open("new.cfg", false);
  ASSERT_TRUE(f->GotoSection("fresh"));
  EXPECT_EQ("two\nlines", Entry(*f, "k"));
}

TEST_F(LegacyApiTest, UnusablePathsOpenWithNoSections) {
  root_.MakeDir("dir.cfg");
  root_.Write("empty.cfg", "");
  for (const char* name : {"dir.cfg", "missing.cfg", "empty.cfg"}) {
    auto f = Open(name, true);
    EXPECT_EQ(0u, f->GetSectionCount()) << name;
    EXPECT_FALSE(f->GotoNextSection()) << name;
    EXPECT_FALSE(f->GotoLastSection()) << name;
    EXPECT_FALSE(f->DeleteSection()) << name;
  }
  EXPECT_FALSE(Open("dir.cfg", false)->IsOpen());
  MultiSectionFile none("", true, false, true, "section", "{\n", "}\n", "=", "#", nullptr);
  EXPECT_FALSE(none.IsOpen());
  EXPECT_FALSE(none.Save(true));
}

TEST_F(LegacyApiTest, PathHelpers) {
  const char* cases[][2] = {{"C:\\orba\\\\telephony\\x.cfg", "C:/orba/telephony/x.cfg"},
                            {"//etc///orba-conf/", "/etc/orba-conf/"}, {"", ""}, {"plain", "plain"}};
  for (const auto& c : cases) {
    std::string path = c[0];
    FileUtility::AdjustPathForUnix(path);
    EXPECT_EQ(c[1], path);
  }
  root_.Write("telephony/f.cfg", "x");
  EXPECT_TRUE(FileUtility::IsFileExist(root_.Path("telephony/f.cfg").c_str()));
  EXPECT_FALSE(FileUtility::IsDirExist(root_.Path("telephony/f.cfg").c_str()));
  EXPECT_TRUE(FileUtility::IsDirExist(root_.Path("telephony").c_str()));
  EXPECT_FALSE(FileUtility::IsFileExist(root_.Path("telephony").c_str()));
  EXPECT_FALSE(FileUtility::IsFileExist(nullptr));
  EXPECT_FALSE(FileUtility::IsDirExist(""));
  EXPECT_EQ(root_.Path("telephony/fax.cfg"), cfg::TelephonyPath("fax.cfg"));
  setenv("ORBA_PATH", "/elsewhere", 1);  // read afresh each time
  EXPECT_EQ("/elsewheretelephony/x", cfg::TelephonyPath("x"));
  unsetenv("ORBA_PATH");
  EXPECT_EQ("/etc/orba-conf/", cfg::ConfigRoot());
}

TEST_F(LegacyApiTest, LogFileAppearsOnTheFirstLineAndAppends) {
  EXPECT_EQ(root_.Path("cmcfg.log"), LogStream::ResolvePath("cmcfg.log"));
  EXPECT_EQ("/var/x.log", LogStream::ResolvePath("/var/x.log"));
  setenv("CMCFG_LOG_DIR", "/tmp/no-slash", 1);
  EXPECT_EQ("/tmp/no-slash/cmcfg.log", LogStream::ResolvePath("cmcfg.log"));
  unsetenv("CMCFG_LOG_DIR");
  EXPECT_EQ("cmcfg.log", LogStream::ResolvePath("cmcfg.log"));
  setenv("CMCFG_LOG_DIR", root_.path().c_str(), 1);
  root_.Write("cmcfg.log", "earlier\n");
  { LogStream unused("quiet.log", false, false, 2147483647, 1, 2048, false); }
  EXPECT_FALSE(root_.Exists("quiet.log"));
  LogStream log("cmcfg.log", false, false, 2147483647, 1, 2048, false);
  Trace(log, "GetSipData: extension %s, sip: %s@%s:%s\n", "100", "u", "h", "5060");
  EXPECT_EQ("earlier\nGetSipData: extension 100, sip: u@h:5060\n", root_.Read("cmcfg.log"));
  LogStream cut("cut.log", false, false, 2147483647, 1, 16, false);
  Trace(cut, "%s|%d", std::string(5000, 'a').c_str(), 42);
  EXPECT_EQ(std::string(15, 'a'), root_.Read("cut.log"));  // cut to the line buffer
  LogStream nowhere("no/such/dir/x.log", false, false, 2147483647, 1, 64, false);
  Trace(nowhere, "dropped %d\n", 1);  // quietly
  EXPECT_FALSE(root_.Exists("no"));
  LogStream stamped("t.log", false, true, 2147483647, 1, 64, false);
  Trace(stamped, "x\n");
  const std::string text = root_.Read("t.log");
  ASSERT_EQ(15u, text.size()) << text;
  EXPECT_EQ(':', text[2]);
  EXPECT_EQ(" x\n", text.substr(12));
}

TEST_F(LegacyApiTest, LogRotatesOnlyPastMaxBytes) {
  root_.Write("r.log", "old\n");
  LogStream log("r.log", false, false, 16, 2, 64, false);
  Trace(log, "%s", "a-long-first-line-of-its-own\n");  // the first line never rotates
  Trace(log, "%s", "bbbbbbb\n");
  Trace(log, "%s", "ccccccc\n");  // exactly 16 with b's line: no rotation yet
  Trace(log, "%s", "d\n");
  Trace(log, "%s", "eeeeeee\n");
  EXPECT_EQ("old\na-long-first-line-of-its-own\n", root_.Read("r.log.2"));
  EXPECT_EQ("bbbbbbb\nccccccc\n", root_.Read("r.log.1"));
  EXPECT_EQ("d\neeeeeee\n", root_.Read("r.log"));
  EXPECT_FALSE(root_.Exists("r.log.3"));
}

TEST_F(LegacyApiTest, HeldLinesAreWrittenWhenEnoughAreHeldAndAtFlushReleaseAndEnd) {
  {
    LogStream log("held.log", false, false, 2147483647, 1, 64, false);
    log.Hold();
    Trace(log, "one\n");
    EXPECT_EQ("", root_.Read("held.log"));
    log.Flush();
    EXPECT_EQ("one\n", root_.Read("held.log"));
    Trace(log, "two\n");
    log.Release();
    Trace(log, "three\n");  // written as it comes again
    EXPECT_EQ("one\ntwo\nthree\n", root_.Read("held.log"));
    log.Hold();
    Trace(log, "four\n");
  }
  EXPECT_EQ("one\ntwo\nthree\nfour\n", root_.Read("held.log"));
  LogStream log("big.log", false, false, 2147483647, 1, 1024, false);
  log.Hold();
  const std::string line(1023, 'x');
  const size_t lines = LogStream::kHoldBytes / line.size();
  for (size_t i = 0; i < lines; ++i) Trace(log, "%s", line.c_str());
  EXPECT_EQ("", root_.Read("big.log"));
  Trace(log, "%s", std::string(LogStream::kHoldBytes - lines * line.size() - 1, 'y').c_str());
  EXPECT_EQ("", root_.Read("big.log"));  // one byte short of the bound
  Trace(log, "z");
  EXPECT_EQ(LogStream::kHoldBytes, root_.Read("big.log").size());
}

TEST_F(LegacyApiTest, ConcurrentLogWritersNeverInterleaveLines) {
  LogStream log("mt.log", false, false, 2147483647, 1, 256, false);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&log, t] {
      for (int i = 0; i < 500; ++i) Trace(log, "thread %d line %d %s\n", t, i, "payload");
    });
  for (std::thread& th : threads) th.join();
  const std::string text = root_.Read("mt.log");
  size_t start = 0, lines = 0;
  for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1, ++lines)
    ASSERT_EQ(0u, text.compare(start, 7, "thread ")) << text.substr(start, 40);
  EXPECT_EQ(2000u, lines);
}

}  // namespace
