#include "tools/show.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <sstream>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"

namespace {

using cmcfg_tool::RunShow;
using cmcfg_tool::ShowOptions;
using testing::ContainsRegex;
using testing::IsEmpty;
using testing::StartsWith;
using tool_testing::Examples;
using tool_testing::FailureLines;

class ShowTest : public ::testing::Test {
 protected:
  int Run(ShowOptions options) {
    out_.str("");
    err_.str("");
    return RunShow(options, out_, err_);
  }
  testing_support::TempRoot logs_;  // also keeps ORBA_PATH pointed away from /etc
  std::ostringstream out_, err_;
};

TEST_F(ShowTest, SummarisesTheExampleOffice) {
  ShowOptions options;
  options.root = Examples();
  options.logDir = logs_.path();
  ASSERT_EQ(0, Run(options)) << err_.str();
  const std::string text = out_.str();
  for (const char* expected : {"Extension table: ", "Attendants: ", "System attendant: 100",
                               "General data:", "Call records: on", "External users in ",
                               "Auto-login phones: ", "Tones: 66", "DeviceTone_InsideDial"})
    EXPECT_NE(std::string::npos, text.find(expected)) << expected;
  EXPECT_TRUE(err_.str().empty());
  // Logging is on in the example: the log went where it was told.
  std::string log = logs_.Read("cmcfg.log");
  EXPECT_NE(std::string::npos, log.find("destoying all temporary instances"));
}

TEST_F(ShowTest, ExtensionsWithSipAddressBindingAndCodecCounts) {
  ShowOptions options;
  options.root = Examples();
  options.logDir = logs_.path();
  ASSERT_EQ(0, Run(options)) << err_.str();
  const std::string text = out_.str();
  // A local and a remote port at once; the SIP user as the agent made it.
  EXPECT_THAT(text, ContainsRegex("\n  106     user       sip office-106[0-9]+@192\\.168\\.10\\.1:"
                                  "5060  local MG\\{1\\}<5>  remote MG\\{2\\}<3>  "
                                  "codecs 3/1/0/0  \"Farid Haddad, Support\"\n"));
  EXPECT_THAT(text, ContainsRegex("\n  109     user       sip office-109[0-9]+@192\\.168\\.10\\.1:"
                                  "5060  local MG\\{1\\}<3>  remote -  codecs 4/2/1/1  "));
  EXPECT_THAT(text, ContainsRegex("\n  110     user       sip office-110[0-9]+@pbx\\.office\\."
                                  "example:5060  local -  remote MG\\{2\\}<1>  codecs 2/1/0/0  "));
  EXPECT_THAT(text, ContainsRegex("\n  105     user       sip [^ ]+  local -  remote -  "));
  EXPECT_THAT(text, ContainsRegex("\n  600     user       sip kaIfArIkNiCkoffice-[0-9]+@192\\.168"
                                  "\\.10\\.1:5060  local -  remote -  codecs 1/0/0/0  FXO 1,2  "));
  // Attendants keep the configured user name; 120 has no codecs section
  // and offers the system's default list.
  EXPECT_THAT(text, ContainsRegex("\n  100      sip 100@192\\.168\\.10\\.1:5060  codecs 4/1/0/1  "
                                  "voice G711A,G711U,G729,G722  \"Reception\"\n"));
  EXPECT_THAT(text, ContainsRegex("\n  120      sip 120@192\\.168\\.10\\.1:5060  codecs 4/0/0/0  "
                                  "voice G711A,G711U,G729,G722  \"Back office\"\n"));
}

// The example is complete: loading it logs no failure of any loader.
TEST_F(ShowTest, TheExampleLoadsWithoutAFailureLine) {
  ShowOptions options;
  options.root = Examples();
  options.logDir = logs_.path();
  ASSERT_EQ(0, Run(options));
  const std::string log = logs_.Read("cmcfg.log");
  ASSERT_THAT(log, testing::HasSubstr(
                       "GetLineData: extension 109 is attached to FXS endpoint MG{1}<3>"));
  EXPECT_THAT(FailureLines(log), IsEmpty());
}

TEST_F(ShowTest, JsonHoldsTheSameTables) {
  ShowOptions options;
  options.root = Examples();
  options.logDir = logs_.path();
  options.json = true;
  ASSERT_EQ(0, Run(options));
  nlohmann::json j = nlohmann::json::parse(out_.str());
  EXPECT_EQ(66u, j["tones"].size());
  EXPECT_EQ("100", j["system_attendant"]);
  EXPECT_GE(j["extensions"].size(), 12u);
  EXPECT_EQ(3u, j["external_users"]["users"].size());

  const nlohmann::json* farid = nullptr;
  for (const nlohmann::json& e : j["extensions"])
    if (e["name"] == "106") farid = &e;
  ASSERT_NE(nullptr, farid);
  EXPECT_EQ("MG{1}<5>", (*farid)["local"]);
  EXPECT_EQ("MG{2}<3>", (*farid)["remote"]);
  EXPECT_THAT((*farid)["sip"]["user"].get<std::string>(), StartsWith("office-106"));
  EXPECT_EQ("192.168.10.1", (*farid)["sip"]["host"]);
  EXPECT_EQ("5060", (*farid)["sip"]["port"]);
  EXPECT_EQ(3u, (*farid)["codec_counts"]["voice"]);
  EXPECT_EQ(1u, (*farid)["codec_counts"]["fax_relay"]);
  ASSERT_EQ(2u, j["attendants"].size());
  EXPECT_EQ("120", j["attendants"][1]["name"]);
  EXPECT_EQ(4u, j["attendants"][1]["codec_counts"]["voice"]);
  EXPECT_TRUE(j["attendants"][1]["sip"].is_object());
}

TEST_F(ShowTest, MissingRootIsOneMessageAndStatusTwo) {
  ShowOptions options;
  options.root = logs_.Path("nowhere");
  EXPECT_EQ(2, Run(options));
  EXPECT_TRUE(out_.str().empty());
  const std::string err = err_.str();
  EXPECT_EQ(0u, err.find("cmcfg: cannot read the configuration root " + logs_.Path("nowhere/")));
  EXPECT_EQ(1, std::count(err.begin(), err.end(), '\n'));

  logs_.Write("file", "");
  options.root = logs_.Path("file");
  EXPECT_EQ(2, Run(options));
}

TEST(ResolveRoot, AddsTheSlashAndFallsBack) {
  EXPECT_EQ("/data/", cmcfg_tool::ResolveRoot("/data"));
  setenv("ORBA_PATH", "/from/env", 1);
  EXPECT_EQ("/from/env/", cmcfg_tool::ResolveRoot(""));
  unsetenv("ORBA_PATH");
  EXPECT_EQ("/etc/orba-conf/", cmcfg_tool::ResolveRoot(""));
}

}  // namespace
