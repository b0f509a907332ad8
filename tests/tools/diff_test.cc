#include "tools/diff.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"
#include "tools/cli.h"

namespace {

using cmcfg_tool::DiffDumps;
using nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using tool_testing::CopyExample;
using tool_testing::Lines;

class DiffTest : public ::testing::Test {
 protected:
  int Run(const std::string& a, const std::string& b) {
    out_.str("");
    err_.str("");
    cmcfg_tool::DiffOptions options;
    options.rootA = a;
    options.rootB = b;
    options.logDir = logs_.path();
    return cmcfg_tool::RunDiff(options, out_, err_);
  }
  testing_support::TempRoot logs_;
  std::ostringstream out_, err_;
};

TEST_F(DiffTest, TheSameRootTwiceIsEqual) {
  // Each load gives the SIP user names new time digits; they do not count.
  EXPECT_EQ(0, Run(tool_testing::Examples(), tool_testing::Examples())) << out_.str();
  EXPECT_TRUE(out_.str().empty());
  EXPECT_TRUE(err_.str().empty());
}

TEST_F(DiffTest, ChangedForwardAddedExtensionAndPrefix) {
  testing_support::TempRoot changed;
  CopyExample(changed.path());
  const std::string file = "telephony/extensiondb/user/101.cfg";
  std::string text = changed.Read(file);
  const std::string from = "destination_1 = 1,0,102";
  ASSERT_NE(std::string::npos, text.find(from));
  text.replace(text.find(from), from.size(), "destination_1 = 1,0,107");
  changed.Write(file, text);
  changed.Write("telephony/extensiondb/user/113.cfg",
                changed.Read("telephony/extensiondb/user/105.cfg"));

  ASSERT_EQ(1, Run(tool_testing::Examples(), changed.path())) << err_.str();
  const std::vector<std::string> lines = Lines(out_.str());
  // In the dump's order: the table, then changed and removed records, then
  // added ones. The new extension takes a slot of its own; the root's own
  // paths are not a difference.
  EXPECT_THAT(lines, testing::ElementsAre("extension table: slots: 82 -> 83",
                                          "extension 101: contact *: forward no answer: "
                                          "destinations: number 102 -> number 107",
                                          "extension 113: added"));

  // And back: the reverse reads the other way round.
  ASSERT_EQ(1, Run(changed.path(), tool_testing::Examples()));
  EXPECT_THAT(Lines(out_.str()), testing::Contains("extension 113: removed"));
}

TEST_F(DiffTest, AnUnreadableRootIsStatusTwo) {
  EXPECT_EQ(2, Run(tool_testing::Examples(), logs_.Path("nowhere")));
  EXPECT_TRUE(out_.str().empty());
  EXPECT_THAT(err_.str(), HasSubstr("cannot read the configuration root " + logs_.Path("nowhere/")));
  EXPECT_EQ(2, Run(logs_.Path("nowhere"), tool_testing::Examples()));
}

TEST_F(DiffTest, FromTheCommandLine) {
  const std::string examples = tool_testing::Examples();
  const char* argv[] = {"cmcfg", "diff", examples.c_str(), examples.c_str(), "--log-dir",
                        logs_.path().c_str()};
  std::ostringstream out, err;
  EXPECT_EQ(0, cmcfg_tool::RunCommandLine(6, argv, out, err)) << err.str();
  const char* missing[] = {"cmcfg", "diff", examples.c_str()};
  EXPECT_GE(cmcfg_tool::RunCommandLine(3, missing, out, err), 100);
}

TEST(DiffDumps, NamesObjectsInWords) {
  const ordered_json a = {
      {"extensions",
       {{{"name", "105"}, {"sip", {{"host", "a"}}}, {"speed_dial", ordered_json::array()}},
        {{"name", "106"}}}},
      {"general", {{"system_prefix", "a"}, {"caller_id", {{"ip", ""}}}}},
      {"tones", {{{"name", "Busy"}, {"frequency", {425, 0}}}}}};
  const ordered_json b = {
      {"extensions",
       {{{"name", "107"}},
        {{"name", "105"},
         {"sip", {{"host", "b"}}},
         {"speed_dial", {{{"code", "#03"}, {"destination", {{"text", "number 101"}}}}}}}}},
      {"general", {{"system_prefix", "b"}, {"caller_id", {{"ip", "x"}}}}},
      {"tones", {{{"name", "Busy"}, {"frequency", {440, 0}}}}}};
  EXPECT_THAT(DiffDumps(a, b),
              ElementsAre("extension 105: sip: host: a -> b", "extension 105: speed dial #03: added",
                          "extension 106: removed", "extension 107: added",
                          "general: system prefix: a -> b", "general: caller id: ip: \"\" -> x",
                          "tone Busy: frequency: 425, 0 -> 440, 0"));
  EXPECT_THAT(DiffDumps(a, a), IsEmpty());
}

TEST(DiffDumps, ListsWithoutNamesByPositionOrAsAWhole) {
  const ordered_json a = {{"voice", {{{"name", "G711A"}, {"rate", 8000}}}},
                          {"destinations", {{{"type", "number"}, {"text", "number 102"}}}},
                          {"members", {"1", "2"}}};
  const ordered_json b = {{"voice", {{{"name", "G711A"}, {"rate", 16000}}}},
                          {"destinations", ordered_json::array()},
                          {"members", {"1", "2", "3"}}};
  EXPECT_THAT(DiffDumps(a, b), ElementsAre("voice: #1: rate: 8000 -> 16000",
                                           "destinations: number 102 -> none",
                                           "members: 1, 2 -> 1, 2, 3"));
}

TEST(DiffDumps, StabiliseDropsTheDigitsOfExtensionUserNamesOnly) {
  ordered_json dump = {{"extensions", {{{"name", "105"}, {"sip", {{"user", "office-1051234"}}}}}},
                       {"attendants", {{{"name", "100"}, {"sip", {{"user", "100"}}}}}},
                       {"paths", {"/r/a/telephony/x", "/other/r/a/y"}}};
  cmcfg_tool::StabiliseDump(&dump, "/r/a/");
  EXPECT_EQ("ROOT/telephony/x", dump["paths"][0]);
  EXPECT_EQ("/other/r/a/y", dump["paths"][1]);
  EXPECT_EQ("office-", dump["extensions"][0]["sip"]["user"]);
  EXPECT_EQ("100", dump["attendants"][0]["sip"]["user"]);
}

}  // namespace
