#include "tools/show.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"

namespace {

using cmcfg_tool::RunShow;
using cmcfg_tool::ShowOptions;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using tool_testing::Block;
using tool_testing::Examples;
using tool_testing::FailureLines;
using tool_testing::Value;

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

// The first word of each row of a block.
std::vector<std::string> FirstWords(const std::vector<std::string>& rows) {
  std::vector<std::string> words;
  for (const std::string& row : rows) {
    std::istringstream in(row);
    std::string word;
    in >> word;
    words.push_back(word);
  }
  return words;
}

// Every figure below is one the example's files set away from its default,
// so a loader that skips a key, a section or a file shows here.
TEST_F(ShowTest, SummarisesTheExampleOffice) {
  ShowOptions options;
  options.root = Examples();
  options.logDir = logs_.path();
  ASSERT_EQ(0, Run(options)) << err_.str();
  const std::string text = out_.str();
  EXPECT_TRUE(err_.str().empty());

  // 64 empty slots, then users, pickup, call park and paging in that order;
  // the two attendants have a table of their own.
  EXPECT_THAT(text, HasSubstr("\nExtension table: 82 slots, 64 empty "));
  EXPECT_EQ((std::vector<std::string>{"101", "102", "103", "104", "105", "106", "107", "108",
                                      "109", "110", "111", "112", "600", "601", "602", "300",
                                      "400", "500"}),
            FirstWords(Block(text, "Extension table:")));
  EXPECT_EQ((std::vector<std::string>{"100", "120"}), FirstWords(Block(text, "Attendants:")));
  EXPECT_THAT(text, HasSubstr("\nSystem attendant: 100\n"));

  EXPECT_EQ("office-", Value(text, "General data:", "system prefix"));
  EXPECT_EQ("G711A,G711U,G729,G722", Value(text, "General data:", "default voice codecs"));
  EXPECT_EQ("100", Value(text, "General data:", "operator number"));
  EXPECT_EQ("local \"%a\", IP \"%d <%u@%h>\", PSTN \"%u\"",
            Value(text, "General data:", "caller ID templates"));
  EXPECT_EQ("conference 8, parked 16, waiting 5, per extension 2",
            Value(text, "General data:", "limits"));
  EXPECT_EQ("dial 10, inter-digit 5, no answer 30, park 180",
            Value(text, "General data:", "timers (s)"));
  EXPECT_EQ("on", Value(text, "General data:", "log"));

  EXPECT_THAT(text, HasSubstr("\nCall records: on\n"));
  EXPECT_THAT(Value(text, "Call records:", "stated"), EndsWith("CDR_db [2000/10]"));
  EXPECT_THAT(Value(text, "Call records:", "missed"), EndsWith("missed_calls_db [500/5]"));
  EXPECT_THAT(Value(text, "Call records:", "failed"), EndsWith("unsuccess_calls_db [500/5]"));

  EXPECT_THAT(text, ContainsRegex("\nExternal users in [^\n]*externaluserdb: 3\n"));
  EXPECT_THAT(text, HasSubstr(" hamburg2@203.0.113.21:5062 \"Hamburg Sales\" registered "
                              "1795003600\n"));
  EXPECT_THAT(text, HasSubstr("\nAuto-login phones: 2\n"));
  EXPECT_THAT(text, ContainsRegex("\n  00:04:13:2a:10:02 +type 2 extension 104 user Dmitri Olsen "
                                  "lines 4\n"));

  // Tones from the regional file: a pattern as given, one built from its
  // durations; the level the file leaves out keeps the default.
  EXPECT_THAT(text, HasSubstr("\nTones: 66\n"));
  EXPECT_THAT(text, ContainsRegex("\n  DeviceTone_InsideDial +1000,0 +mode 0  425/0 Hz  -6/0\n"));
  EXPECT_THAT(text, ContainsRegex("\n  DeviceTone_LineBusy +500,500 +mode 0  425/0 Hz  -6/0\n"));

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
