// How the command line behaves, whatever the verb.
#include "tools/cli.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"

namespace {

using testing::HasSubstr;
using tool_testing::RunCmcfg;

struct Case {
  std::vector<std::string> args;  // ROOT: a copy of the example; EMPTY: a folder without telephony/
  int status;
  const char* err;  // a part of stderr ("" : stderr is empty)
};

class CliTest : public ::testing::Test {
 protected:
  CliTest() {
    tool_testing::CopyExample(root_.path());
    std::filesystem::create_directories(empty_);
  }
  int Run(std::vector<std::string> args) {
    for (std::string& arg : args) {
      if (arg.compare(0, 5, "ROOT/") == 0) arg = root_.Path(arg.substr(5));
      arg = arg == "ROOT" ? root_.path() : arg == "EMPTY" ? empty_ : arg;
    }
    return RunCmcfg(args, out_, err_);
  }

  testing_support::TempRoot root_;
  std::string empty_ = root_.path() + "telephony/regional/";
  std::ostringstream out_, err_;
};

TEST_F(CliTest, StatusesAndMessages) {
  const Case cases[] = {
      {{"--root", "ROOT", "show"}, 0, ""},
      {{"show", "--root", "ROOT", "--json"}, 0, ""},
      {{"shwo", "--root", "ROOT"}, 2, "did you mean show?"},
      {{"show", "--jsno", "--root", "ROOT"}, 2, "did you mean --json?"},
      {{}, 2, "A subcommand is required"},
      {{"ext", "--root", "ROOT"}, 2, "expected NAME"},
      {{"ext", "999", "--root", "ROOT"}, 1, "no extension or attendant named \"999\""},
      {{"port", "-1", "1", "--root", "ROOT"}, 2, "\"-1\" is not a gateway"},
      {{"port", "1", "99999999999999999999", "--root", "ROOT"}, 2, "\"99999999999999999999\""},
      {{"forward", "109", "set", "12\n3", "--root", "ROOT"}, 1, "control character"},
      {{"forward", "109", "sideways", "--root", "ROOT"}, 2, "expected EXT on|off"},
      {{"block", "109", "not a sip address", "--call-type", "sip", "--root", "ROOT"}, 1, "SIP"},
      {{"contact", "109", "add", "ab\tc", "--root", "ROOT"}, 1, "contact"},
      {{"check", "--root", "ROOT/missing"}, 2,
       "cannot read the configuration root ROOT/missing/: No such file or directory\n"},
      {{"diff", "ROOT", "ROOT", "--json"}, 2, "not expected: --json"},
      {{"--help"}, 0, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.args));
    EXPECT_EQ(Run(c.args), c.status);
    std::string err = c.err;
    if (err.find("ROOT/") != std::string::npos) err.replace(err.find("ROOT/"), 5, root_.path());
    if (err.empty())
      EXPECT_EQ(err_.str(), "");
    else
      EXPECT_THAT(err_.str(), HasSubstr(err));
  }
  // A refused value is refused before anything is loaded or written.
  EXPECT_FALSE(root_.Exists("telephony/extensiondb/user/109.cfg.lock"));
}

TEST_F(CliTest, EveryVerbRefusesAFolderThatIsNotARoot) {
  const std::vector<std::vector<std::string>> verbs = {{"show"},
                                                       {"ext", "109"},
                                                       {"dump"},
                                                       {"check"},
                                                       {"forward", "109", "on"},
                                                       {"block", "109", "123"},
                                                       {"unblock", "109", "123"},
                                                       {"contact", "109", "erase", "3"},
                                                       {"port", "1", "1"}};
  for (std::vector<std::string> args : verbs) {
    args.insert(args.end(), {"--root", "EMPTY"});
    EXPECT_EQ(Run(args), 2) << args[0];
    EXPECT_THAT(err_.str(), HasSubstr("not a configuration root")) << args[0];
  }
  EXPECT_EQ(Run({"diff", "ROOT", "EMPTY"}), 2);
}

TEST_F(CliTest, HelpGivesTheStatusTableAndEveryPartIsDescribed) {
  EXPECT_EQ(Run({"check", "--help"}), 0);
  EXPECT_THAT(out_.str(), HasSubstr("2  a usage error"));
  EXPECT_THAT(cmcfg_tool::UndescribedParts(), testing::IsEmpty());
}

TEST_F(CliTest, OutputThatCannotBeWrittenIsAnError) {
  std::ofstream full("/dev/full");
  std::vector<const char*> argv{"cmcfg", "ext", "109", "--root", root_.path().c_str()};
  std::ostringstream err;
  full << std::unitbuf;
  EXPECT_EQ(cmcfg_tool::RunCommandLine(static_cast<int>(argv.size()), argv.data(), full, err), 1);
  EXPECT_THAT(err.str(), HasSubstr("cannot write the output"));
}

TEST_F(CliTest, InspectionLeavesNoFileBehind) {
  // Logging on, run from inside the root: still nothing new anywhere.
  const auto listing = [&] {
    std::vector<std::string> names;
    for (auto& e : std::filesystem::recursive_directory_iterator(root_.path()))
      names.push_back(e.path().string());
    return names;
  };
  unsetenv("CMCFG_LOG_DIR");
  const std::vector<std::string> before = listing();
  const std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(root_.path());
  for (const char* verb : {"show", "dump", "check"}) EXPECT_EQ(Run({verb, "--root", "ROOT"}), 0);
  EXPECT_EQ(Run({"ext", "109", "--root", "ROOT"}), 0);
  EXPECT_EQ(Run({"diff", "ROOT", "ROOT"}), 0);
  std::filesystem::current_path(cwd);
  EXPECT_EQ(listing(), before);
}

}  // namespace
