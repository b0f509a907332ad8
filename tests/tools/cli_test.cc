#include "tools/cli.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"

namespace {

using testing::HasSubstr;
using tool_testing::Examples;

// The command line as a user types it, down to the exit status.
class CliTest : public ::testing::Test {
 protected:
  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), "cmcfg");
    std::vector<const char*> argv;
    for (const std::string& arg : args) argv.push_back(arg.c_str());
    out_.str("");
    err_.str("");
    return cmcfg_tool::RunCommandLine(static_cast<int>(argv.size()), argv.data(), out_, err_);
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

TEST_F(CliTest, HelpListsBothVerbs) {
  EXPECT_EQ(0, Run({"--help"}));
  EXPECT_THAT(out_.str(), HasSubstr("show"));
  EXPECT_THAT(out_.str(), HasSubstr("ext"));
}

}  // namespace
