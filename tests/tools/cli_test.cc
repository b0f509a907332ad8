#include "tools/cli.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <chrono>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"
#include "tools/progress.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using tool_testing::Examples;

// The command line as a user types it, down to the exit status.
class CliTest : public ::testing::Test {
 protected:
  int Run(const std::vector<std::string>& args) {
    return tool_testing::RunCmcfg(args, out_, err_);
  }

  testing_support::TempRoot logs_;
  std::ostringstream out_, err_;
};

TEST_F(CliTest, ExtTakesTheNameAndTheCommonOptions) {
  ASSERT_EQ(0, Run({"ext", "109", "--root", Examples(), "--log-dir", logs_.path()})) << err_.str();
  EXPECT_EQ(0u, out_.str().find("Extension 109 (user)"));
  ASSERT_EQ(0, Run({"ext", "--json", "--root", Examples(), "--log-dir", logs_.path(), "100"}));
  EXPECT_EQ("100", nlohmann::json::parse(out_.str())["name"]);
}

TEST_F(CliTest, ExitStatusOfEachFailure) {
  EXPECT_EQ(1, Run({"ext", "nobody", "--root", Examples(), "--log-dir", logs_.path()}));
  EXPECT_EQ("cmcfg: no extension or attendant named \"nobody\" under " + Examples() + "\n",
            err_.str());
  EXPECT_EQ(2, Run({"ext", "101", "--root", logs_.Path("nowhere"), "--log-dir", logs_.path()}));
  EXPECT_EQ(2, Run({"show", "--root", logs_.Path("nowhere")}));
  // Usage errors: CLI11's message and status.
  EXPECT_GE(Run({"ext"}), 100);
  EXPECT_THAT(err_.str(), HasSubstr("name is required"));
  EXPECT_GE(Run({}), 100);
  EXPECT_GE(Run({"list"}), 100);
  EXPECT_GE(Run({"show", "--colour"}), 100);
  EXPECT_TRUE(out_.str().empty());
}

const char* const kVerbs[] = {"show",    "ext",   "dump",    "check", "diff",
                              "forward", "block", "contact", "port"};

TEST_F(CliTest, HelpListsEveryVerbOnStdout) {
  EXPECT_EQ(0, Run({"--help"}));
  for (const char* verb : kVerbs) EXPECT_THAT(out_.str(), HasSubstr("\n  " + std::string(verb)));
  EXPECT_THAT(out_.str(), HasSubstr("--version"));
  EXPECT_TRUE(err_.str().empty());
}

TEST_F(CliTest, EachVerbsHelpGivesItsUsageAndExitStatuses) {
  for (const char* verb : kVerbs) {
    SCOPED_TRACE(verb);
    EXPECT_EQ(0, Run({verb, "--help"}));
    EXPECT_THAT(out_.str(), HasSubstr(std::string("cmcfg ") + verb));
    EXPECT_THAT(out_.str(), HasSubstr("Exit status: 0 "));
    if (std::string(verb) != "diff") {
      EXPECT_THAT(out_.str(), HasSubstr("--root"));
    }
    EXPECT_TRUE(err_.str().empty());
  }
  // The inspection verbs say where the log goes when run inside the root.
  Run({"show", "--help"});
  EXPECT_THAT(out_.str(), HasSubstr("$TMPDIR or /tmp"));
}

TEST(CliDescriptions, EveryVerbAndOptionHasAHelpText) {
  EXPECT_THAT(cmcfg_tool::UndescribedParts(), IsEmpty());
}

TEST_F(CliTest, VersionIsTheProjectsOnStdout) {
  EXPECT_EQ(0, Run({"--version"}));
  EXPECT_THAT(out_.str(), MatchesRegex("cmcfg [0-9]+\\.[0-9]+\\.[0-9]+\n"));
  EXPECT_TRUE(err_.str().empty());
  // Not a verb's option.
  EXPECT_GE(Run({"show", "--version"}), 100);
}

// The progress line of a slow load; the terminal itself is not needed.
class ProgressLineTest : public ::testing::Test {
 protected:
  cmcfg_tool::ProgressLine::Sink Sink() {
    return [this](const std::string& text) { texts_.push_back(text); };
  }
  std::function<std::string()> Describe() {
    return [this] {
      ++described_;
      return std::string("loading 3 extension files\u2026");
    };
  }
  std::vector<std::string> texts_;
  int described_ = 0;
};

TEST_F(ProgressLineTest, ShownLineIsErasedWhenFinished) {
  cmcfg_tool::ProgressLine line(Describe(), Sink(), std::chrono::milliseconds(0));
  line.Finish();
  ASSERT_GE(texts_.size(), 2u);
  EXPECT_EQ("\r\033[Kloading 3 extension files\u2026", texts_.front());
  EXPECT_EQ("\r\033[K", texts_.back());
  EXPECT_EQ(1, described_);  // counted once, however long it shows
  line.Finish();
  EXPECT_EQ("\r\033[K", texts_.back());
}

TEST_F(ProgressLineTest, TaskDoneBeforeTheDelayShowsAndCountsNothing) {
  { cmcfg_tool::ProgressLine line(Describe(), Sink(), std::chrono::hours(1)); }
  EXPECT_THAT(texts_, IsEmpty());
  EXPECT_EQ(0, described_);
}

TEST(ProgressText, ElapsedSecondsAfterTheFirst) {
  EXPECT_EQ("loading", cmcfg_tool::ProgressText("loading", 0));
  EXPECT_EQ("loading 12 s", cmcfg_tool::ProgressText("loading", 12));
}

TEST(LoadProgress, NothingUnlessTheStreamIsTheProcessStderr) {
  std::ostringstream err;
  EXPECT_EQ(nullptr, cmcfg_tool::LoadProgressOnTerminal(tool_testing::Examples(), err));
}

}  // namespace
