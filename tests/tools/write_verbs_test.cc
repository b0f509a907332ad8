// The changing verbs: what they write, what --dry-run shows, and that a
// change that did not reach the file is never reported as made.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/base/file_lock.h"
#include "tests/support/golden.h"
#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"

namespace {

using testing::HasSubstr;
using tool_testing::RunCmcfg;

const char kFile[] = "telephony/extensiondb/user/109.cfg";

class WriteVerbsTest : public ::testing::Test {
 protected:
  WriteVerbsTest() { tool_testing::CopyExample(root_.path()); }
  int Run(std::vector<std::string> args) {
    args.insert(args.end(), {"--root", root_.path()});
    return RunCmcfg(args, out_, err_);
  }

  testing_support::TempRoot root_;
  std::ostringstream out_, err_;
};

// Each verb's dry run shows a diff and writes nothing; the verb itself then
// changes the file. The dry runs, one after another's change, and the file
// they end with are pinned by a golden file.
TEST_F(WriteVerbsTest, DryRunShowsWhatTheVerbWrites) {
  const std::vector<std::vector<std::string>> verbs = {
      {"forward", "109", "set", "0612345678"},
      {"forward", "109", "toggle"},
      {"forward", "109", "off"},
      {"block", "109", "0900123", "--outgoing"},
      {"unblock", "109", "0900*", "--call-type", "pstn"},
      {"contact", "109", "add", "0800123"},
      {"contact", "109", "change", "3", "102"},
      {"contact", "109", "erase", "4"},
      {"contact", "109", "erase", "6"},
      {"contact", "109", "add", "0800124"},
      {"forward", "109", "clear"}};
  std::string shown;
  for (std::vector<std::string> verb : verbs) {
    SCOPED_TRACE(testing::PrintToString(verb));
    const std::string before = root_.Read(kFile);
    verb.push_back("--dry-run");
    ASSERT_EQ(Run(verb), 0) << err_.str();
    shown += "$ cmcfg " + testing::PrintToString(verb) + "\n" + out_.str();
    EXPECT_EQ(root_.Read(kFile), before);
    verb.pop_back();
    ASSERT_EQ(Run(verb), 0) << err_.str();
    EXPECT_NE(root_.Read(kFile), before);
  }
  testing_support::ExpectGolden("tools/golden/write-verbs.txt",
                                shown + "$ cat " + kFile + "\n" + root_.Read(kFile));
}

TEST_F(WriteVerbsTest, AnExtensionWithoutAnyCallerContactIsToldHowToAddOne) {
  EXPECT_EQ(Run({"forward", "105", "on"}), 1);
  EXPECT_THAT(err_.str(), HasSubstr("cmcfg contact 105 add '*'"));
  EXPECT_EQ(Run({"contact", "105", "add", "*"}), 0) << err_.str();
  EXPECT_EQ(Run({"forward", "105", "on"}), 0) << err_.str();
  EXPECT_EQ(Run({"forward", "105", "set", "0612345678"}), 0) << err_.str();
}

TEST_F(WriteVerbsTest, ALockHeldElsewhereIsAFailure) {
  cfg::SetLockTimeout(std::chrono::milliseconds(100));
  std::mutex mutex;
  std::condition_variable changed;
  bool held = false, done = false;
  std::thread holder([&] {
    cfg::FileLock lock(root_.Path(kFile));
    std::unique_lock<std::mutex> guard(mutex);
    held = true;
    changed.notify_all();
    changed.wait(guard, [&] { return done; });
  });
  {
    std::unique_lock<std::mutex> guard(mutex);
    changed.wait(guard, [&] { return held; });
  }
  const std::string before = root_.Read(kFile);
  EXPECT_EQ(Run({"forward", "109", "toggle"}), 1);
  EXPECT_EQ(Run({"contact", "109", "erase", "3"}), 1);
  EXPECT_EQ(root_.Read(kFile), before);
  {
    std::lock_guard<std::mutex> guard(mutex);
    done = true;
  }
  changed.notify_all();
  holder.join();
  cfg::SetLockTimeout(cfg::kDefaultLockTimeout);
}

TEST_F(WriteVerbsTest, AnEditedFileWithErrorsReplacesNothing) {
  const std::string edited = root_.Path("edited.cfg");
  root_.Write("edited.cfg", "section contact 3\n{\nname = 101\njust words\n");
  const std::string before = root_.Read(kFile);
  EXPECT_EQ(Run({"contact", "109", "change", "3", "--edited", edited}), 1);
  EXPECT_THAT(err_.str(), HasSubstr("is refused"));
  EXPECT_EQ(root_.Read(kFile), before);
}

}  // namespace
