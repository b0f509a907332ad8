#include "platform/base/log_stream.h"

#include <stdlib.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/support/temp_root.h"

namespace {

class LogStreamTest : public ::testing::Test {
 protected:
  static void Trace(LogStream& log, const char* format, ...) {
    va_list args;
    va_start(args, format);
    log.TRACE(0, format, args, 0);
    va_end(args);
  }

  static int CountLines(const std::string& text) {
    int n = 0;
    for (char c : text) n += c == '\n';
    return n;
  }

  testing_support::TempRoot root_;
};

TEST_F(LogStreamTest, RelativeNamesGoIntoTheLogDir) {
  EXPECT_EQ(root_.Path("cmcfg.log"), LogStream::ResolvePath("cmcfg.log"));
  EXPECT_EQ("/var/x.log", LogStream::ResolvePath("/var/x.log"));
  setenv("CMCFG_LOG_DIR", "/tmp/no-slash", 1);
  EXPECT_EQ("/tmp/no-slash/cmcfg.log", LogStream::ResolvePath("cmcfg.log"));
  unsetenv("CMCFG_LOG_DIR");
  EXPECT_EQ("cmcfg.log", LogStream::ResolvePath("cmcfg.log"));
}

TEST_F(LogStreamTest, FileAppearsOnFirstLineAndAppends) {
  root_.Write("cmcfg.log", "earlier\n");
  root_.Write("other", "");
  {
    LogStream unused("quiet.log", false, false, 2147483647, 1, 2048, false);
  }
  EXPECT_FALSE(root_.Exists("quiet.log"));
  LogStream log("cmcfg.log", false, false, 2147483647, 1, 2048, false);
  Trace(log, "GetSipData: extension %s, sip: %s@%s:%s\n", "100", "u", "h", "5060");
  EXPECT_EQ("earlier\nGetSipData: extension 100, sip: u@h:5060\n", root_.Read("cmcfg.log"));
}

TEST_F(LogStreamTest, LongTextIsCutToTheLineBuffer) {
  LogStream log("cut.log", false, false, 2147483647, 1, 16, false);
  Trace(log, "%s|%d", std::string(5000, 'a').c_str(), 42);
  EXPECT_EQ(std::string(15, 'a'), root_.Read("cut.log"));
}

TEST_F(LogStreamTest, UnwritableLocationDropsLinesQuietly) {
  LogStream log("no/such/dir/x.log", false, false, 2147483647, 1, 64, false);
  Trace(log, "dropped %d\n", 1);
  EXPECT_FALSE(root_.Exists("no"));
}

TEST_F(LogStreamTest, RotatesPastMaxBytesKeepingOldFiles) {
  LogStream log("r.log", false, false, 10, 2, 64, false);
  for (const char* line : {"aaaaaaa\n", "bbbbbbb\n", "ccccccc\n", "ddddddd\n"}) Trace(log, "%s", line);
  EXPECT_EQ("ddddddd\n", root_.Read("r.log"));
  EXPECT_EQ("ccccccc\n", root_.Read("r.log.1"));
  EXPECT_EQ("bbbbbbb\n", root_.Read("r.log.2"));
  EXPECT_FALSE(root_.Exists("r.log.3"));
}

TEST_F(LogStreamTest, TimestampPrefixesEachLine) {
  LogStream log("t.log", false, true, 2147483647, 1, 64, false);
  Trace(log, "x\n");
  std::string text = root_.Read("t.log");
  ASSERT_EQ(15u, text.size()) << text;
  EXPECT_EQ(':', text[2]);
  EXPECT_EQ(" x\n", text.substr(12));
}

TEST_F(LogStreamTest, HeldLinesAreWrittenAtFlushReleaseAndDestruction) {
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
}

TEST_F(LogStreamTest, ConcurrentWritersNeverInterleaveLines) {
  LogStream log("mt.log", false, false, 2147483647, 1, 256, false);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&log, t] {
      for (int i = 0; i < 500; ++i) Trace(log, "thread %d line %d %s\n", t, i, "payload");
    });
  }
  for (std::thread& th : threads) th.join();
  std::string text = root_.Read("mt.log");
  EXPECT_EQ(2000, CountLines(text));
  size_t start = 0;
  for (size_t end; (end = text.find('\n', start)) != std::string::npos; start = end + 1)
    ASSERT_EQ(0u, text.compare(start, 7, "thread ")) << text.substr(start, 40);
}

}  // namespace
