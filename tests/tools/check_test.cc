#include "tools/check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"
#include "tools/check_syntax.h"
#include "tools/cli.h"

namespace {

using testing::ElementsAre;
using tool_testing::CopyExample;
using tool_testing::Examples;
using tool_testing::Lines;

const char kUser[] = "telephony/extensiondb/user/";

// `cmcfg check` as typed, down to the exit status.
class CheckTest : public ::testing::Test {
 protected:
  CheckTest() { tool_testing::EmptySettings(root_); }
  int Run(const std::vector<std::string>& args) {
    return tool_testing::RunCmcfg(args, out_, err_);
  }
  int Check() { return Run({"check", "--root", root_.path()}); }

  testing_support::TempRoot root_;
  std::ostringstream out_, err_;
};

TEST_F(CheckTest, TheExampleIsCleanAndLeftUntouched) {
  ASSERT_EQ(0, Run({"check", "--root", Examples()})) << out_.str() << err_.str();
  EXPECT_EQ("", out_.str());
  EXPECT_EQ("", err_.str());
  ASSERT_EQ(0, Run({"check", "--json", "--root", Examples()}));
  const nlohmann::json found = nlohmann::json::parse(out_.str());
  EXPECT_TRUE(found.is_array() && found.empty()) << out_.str();

  // Nothing is written into the root, not even lock files.
  CopyExample(root_.path());
  std::vector<std::string> before;
  for (auto& e : std::filesystem::recursive_directory_iterator(root_.path()))
    before.push_back(e.path().string());
  ASSERT_EQ(0, Check());
  std::vector<std::string> after;
  for (auto& e : std::filesystem::recursive_directory_iterator(root_.path()))
    after.push_back(e.path().string());
  EXPECT_EQ(before, after);
}

TEST_F(CheckTest, ExitStatusTwoWhenTheRootCannotBeRead) {
  EXPECT_EQ(2, Run({"check", "--root", root_.Path("missing")}));
  EXPECT_EQ("", out_.str());
  EXPECT_EQ("cmcfg: cannot read the configuration root " + root_.Path("missing/") +
                ": No such file or directory\n",
            err_.str());
}

TEST_F(CheckTest, AFolderWithoutTelephonyIsNotARoot) {
  EXPECT_EQ(2, Run({"check", "--root", root_.Path("telephony")}));
  EXPECT_EQ("", out_.str());
  EXPECT_EQ("cmcfg: cannot read the configuration root " + root_.Path("telephony/") +
                ": not a configuration root (no telephony/ folder)\n",
            err_.str());
}

TEST_F(CheckTest, ParserDiagnosticsAreErrorsWithTheLineAndACaret) {
  // A file whose keys nothing checks, so that only the syntax speaks.
  root_.Write("telephony/dialplan.cfg",
              "section general\n{\nlog_enabled = 1\njust words\n}\n"
              "stray = 1\n"
              "section tail\n{\nx = 1\n");
  EXPECT_EQ(1, Check());
  EXPECT_THAT(Lines(out_.str()),
              ElementsAre("telephony/dialplan.cfg:4: error: expected 'key = value'",  //
                          "just words",                                             //
                          "^",                                                      //
                          "telephony/dialplan.cfg:6: error: entry outside a section",  //
                          "stray = 1",                                                 //
                          "^",                                                         //
                          "telephony/dialplan.cfg:7: error: section is not closed with '}'",
                          "section tail",  //
                          "            ^"));
}

TEST_F(CheckTest, DuplicateSectionsAreWarningsNamingTheOneRead) {
  root_.Write("telephony/linedb", "section fxs 1/1\n{\ncaller_id_type = 1\n}\n"
                                  "section fxs 1/1\n{\ncaller_id_type = 2\n}\n");
  EXPECT_EQ(0, Check());
  EXPECT_THAT(Lines(out_.str()),
              ElementsAre("telephony/linedb:5: warning: duplicate section \"fxs 1/1\"; the "
                          "one at line 1 is read",
                          "section fxs 1/1",  //
                          "        ^"));
}

TEST_F(CheckTest, ExtensionFilesWithBadNamesAreReportedAndNotRead) {
  root_.Write(std::string(kUser) + ".cfg", "garbage\n");
  root_.Write(std::string(kUser) + "a..b.cfg", "garbage\n");
  root_.Write(std::string(kUser) + "101.cfg.lock", "garbage\n");  // skipped on purpose
  root_.Write(std::string(kUser) + "101.cfg", "section extension\n{\n}\n");
  EXPECT_EQ(0, Check());
  EXPECT_THAT(Lines(out_.str()),
              ElementsAre("telephony/extensiondb/user/.cfg: warning: the file name breaks the "
                          "extension naming rules; the file is ignored",
                          "telephony/extensiondb/user/a..b.cfg: warning: the file name breaks the "
                          "extension naming rules; the file is ignored"));
  EXPECT_TRUE(cmcfg_tool::IsExtensionFileName("101.cfg"));
  EXPECT_TRUE(cmcfg_tool::IsExtensionFileName("a.b.cfg"));
  EXPECT_FALSE(cmcfg_tool::IsExtensionFileName("..cfg"));
  EXPECT_FALSE(cmcfg_tool::IsExtensionFileName("a\tb.cfg"));
  EXPECT_FALSE(cmcfg_tool::IsExtensionFileName("101.txt"));
}

TEST_F(CheckTest, UnknownCodecNamesAreWarnedAtTheName) {
  root_.Write("telephony/fax.cfg", "section T38\n{\n}\n");
  root_.Write(std::string(kUser) + "101.cfg",
              "section codecs\n{\n"
              "voice_codecs = G711A,G7299\n"
              "extra_voice_codecs = g722\n"
              "fax_codecs = T38,T39,G711U\n"
              "modem_codecs = T38\n"
              "}\n");
  EXPECT_EQ(0, Check());
  EXPECT_THAT(Lines(out_.str()),
              ElementsAre("telephony/extensiondb/user/101.cfg:3: warning: unknown codec name "
                          "\"G7299\"",
                          "voice_codecs = G711A,G7299",  //
                          "                     ^",
                          "telephony/extensiondb/user/101.cfg:4: warning: unknown codec name "
                          "\"g722\"",
                          "extra_voice_codecs = g722",  //
                          "                     ^",
                          "telephony/extensiondb/user/101.cfg:6: warning: unknown codec name "
                          "\"T38\"",
                          "modem_codecs = T38",  //
                          "               ^",
                          "telephony/extensiondb/user/101.cfg:5: warning: unknown codec or fax "
                          "encoding name \"T39\"",
                          "fax_codecs = T38,T39,G711U",  //
                          "                 ^"));
}

TEST_F(CheckTest, SpeedDialEntriesNeedANumberAndHashTwoDigitsInUserFiles) {
  root_.Write(std::string(kUser) + "101.cfg",
              "section speed_dial 1\n{\ncalling_code = #1\n}\n"
              "section speed_dial 2\n{\ncalling_code = #01\n}\n"
              "section speed_dial 3\n{\ncalling_code = *01\n}\n"
              "section speed_dial x\n{\ncalling_code = #1\n}\n"
              "section speed_dial 0x4\n{\ncalling_code = #04\n}\n");
  // Only user extensions have a speed-dial list.
  root_.Write("telephony/extensiondb/attendant/100.cfg",
              "section speed_dial 1\n{\ncalling_code = #1\n}\n");
  EXPECT_EQ(0, Check());
  EXPECT_THAT(Lines(out_.str()),
              ElementsAre("telephony/extensiondb/user/101.cfg:3: warning: speed-dial code \"#1\" "
                          "is not \"#\" and two digits; the entry is skipped",
                          "calling_code = #1",  //
                          "               ^",
                          "telephony/extensiondb/user/101.cfg:11: warning: speed-dial code "
                          "\"*01\" is not \"#\" and two digits; the entry is skipped",
                          "calling_code = *01",  //
                          "               ^",
                          "telephony/extensiondb/user/101.cfg:13: warning: section \"speed_dial "
                          "x\" has no number after \"speed_dial\"; the entry is skipped",
                          "section speed_dial x",  //
                          "        ^"));
}

TEST_F(CheckTest, ExtensionDestinationsMustNameAnExtension) {
  root_.Write("telephony/extensiondb/attendant/100.cfg", "");
  root_.Write(std::string(kUser) + "101.cfg",
              "section speed_dial 1\n{\ndest_type = 0\ndestination = 199\n}\n"
              "section speed_dial 2\n{\ndest_type = 2\ndestination = 199\n}\n"
              "section contact 1 hunting\n{\ntarget_1 = 100,15\ntarget_2 = 198,20\n}\n"
              "section contact 1 forward_busy\n{\n"
              "destination_1 = 1,0,197\n"
              "destination_2 = 0,0,196\n"   // switched off: dropped by the agent
              "destination_3 = 1,2,195\n"   // a PSTN number
              "destination_4 = 1,0,101\n"
              "}\n");
  root_.Write("telephony/linedb", "section binding 1/1\n{\nextension = 194\n}\n"
                                  "section binding 1/2\n{\nextension = 100\n}\n"
                                  "section fxs 1/1\n{\n}\nsection fxs 1/2\n{\n}\n");
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = main\n}\n");
  EXPECT_EQ(0, Check());
  EXPECT_THAT(Lines(out_.str()),
              ElementsAre("telephony/linedb:3: warning: the bound extension \"194\" names no "
                          "extension",
                          "extension = 194",  //
                          "            ^",
                          "telephony/extensiondb/user/101.cfg:4: warning: speed-dial destination "
                          "\"199\" names no extension",
                          "destination = 199",  //
                          "              ^",
                          "telephony/extensiondb/user/101.cfg:14: warning: hunting target \"198\" "
                          "names no extension",
                          "target_2 = 198,20",  //
                          "           ^",
                          "telephony/extensiondb/user/101.cfg:18: warning: forward destination "
                          "\"197\" names no extension",
                          "destination_1 = 1,0,197",  //
                          "                    ^"));
}

TEST_F(CheckTest, JsonGivesTheSameFindings) {
  root_.Write(std::string(kUser) + "101.cfg",
              "section codecs\n{\nvoice_codecs = G7299\n}\nnonsense\n");
  EXPECT_EQ(1, Run({"check", "--json", "--root", root_.path()}));
  nlohmann::json expected = nlohmann::json::parse(R"([
    {"file": "telephony/extensiondb/user/101.cfg", "line": 5, "column": 0,
     "severity": "error", "code": "syntax", "message": "expected 'key = value'"},
    {"file": "telephony/extensiondb/user/101.cfg", "line": 3, "column": 15,
     "severity": "warning", "code": "unknown-codec", "message": "unknown codec name \"G7299\""}
  ])");
  EXPECT_EQ(expected, nlohmann::json::parse(out_.str()));
}

// A copy of the example with one mistake of each kind, each reported at
// its file and line.
TEST_F(CheckTest, OneMistakeOfEachKindInACopyOfTheExample) {
  CopyExample(root_.path());
  // Makes the replacements in the copy's file and returns its new text.
  auto edit = [this](const std::string& file,
                     std::vector<std::pair<std::string, std::string>> replacements) {
    std::string text = root_.Read(file);
    for (const auto& r : replacements) {
      size_t at = text.find(r.first);
      EXPECT_NE(std::string::npos, at) << file << ": " << r.first;
      if (at != std::string::npos) text.replace(at, r.first.size(), r.second);
    }
    root_.Write(file, text);
    return text;
  };
  // The line of `text` where `needle` first (or last) occurs, as text.
  auto lineOf = [](const std::string& text, const std::string& needle, bool last = false) {
    const std::vector<std::string> lines = tool_testing::Lines(text);
    std::string found = "?";
    for (size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].find(needle) == std::string::npos) continue;
      found = std::to_string(i + 1);
      if (!last) break;
    }
    return found;
  };
  const std::string file109 = std::string(kUser) + "109.cfg";
  const std::string text109 =
      edit(file109, {{"voice_codecs = G711A,G711U,G729", "voice_codecs = G711A,G7299,G729"},
                     {"calling_code = #03", "calling_code = #3"},
                     {"section busy_redial\n{\n", "section busy_redial\n{\ninterval 45\n"},
                     {"section auto_call", "section timeouts\n{\n}\n\nsection auto_call"},
                     {"code_1 = *72", "code_1 = *7a2"},
                     {"code_5 = *91", "code_5 = *901"},
                     {"code_7 = *67", "code_7 = *80"},
                     {"display_name = Ines Costa", "displayname = Ines Costa"}});
  const std::string general = edit("telephony/general.cfg",
                                   {{"max_extensions = 64", "max_extensions = 64 slots"}});
  root_.Write(std::string(kUser) + "a..b.cfg", "");
  const std::string gateways = edit("telephony/gateways.cfg",
                                    {{"type = 2", "type = remote"}, {"name = warehouse", "label = x"}});
  const std::string linedb = edit("telephony/linedb", {{"section binding 1/7", "section binding 9/7"}});
  const std::string file600 = std::string(kUser) + "600.cfg";
  const std::string text600 = edit(file600, {{"fxo_channels = 1,2", "fxo_channels = 1,2x"}});
  const std::string tones = "telephony/regional/tonetypes.cfg";
  const std::string toneText = edit(tones, {{"frequency_1 = 425", "frequency_1 = 425Hz"}});

  EXPECT_EQ(1, Check());
  std::vector<std::string> headings;
  for (const std::string& line : Lines(out_.str()))
    if (line.compare(0, 10, "telephony/") == 0) headings.push_back(line);
  const std::string at = file109 + ":";
  EXPECT_THAT(
      headings,
      ElementsAre(
          // The settings files first, then each extension file in turn.
          "telephony/extensiondb/user/a..b.cfg: warning: the file name breaks the "
          "extension naming rules; the file is ignored",
          "telephony/gateways.cfg:" + lineOf(gateways, "label = x") +
              ": warning: unknown key \"label\" in section \"2\"; it is not read",
          "telephony/gateways.cfg:" + lineOf(gateways, "type = remote") +
              ": warning: value \"remote\" of type is not a number; the default is kept",
          "telephony/general.cfg:" + lineOf(general, "64 slots") +
              ": warning: value \"64 slots\" of max_extensions is not a number from 0 to "
              "4294967295; the default is kept",
          "telephony/linedb:" + lineOf(linedb, "binding 9/7") +
              ": warning: gateway 9 of \"binding 9/7\" is not in telephony/gateways.cfg; the "
              "extension is not bound",
          tones + ":" + lineOf(toneText, "425Hz") +
              ": warning: tone value \"425Hz\" of frequency_1 is not a number from 0 to 65535; "
              "it reads as 425",
          at + lineOf(text109, "interval 45") + ": error: expected 'key = value'",
          at + lineOf(text109, "section timeouts", true) +
              ": warning: duplicate section \"timeouts\"; the one at line " +
              lineOf(text109, "section timeouts") + " is read",
          at + lineOf(text109, "G7299") + ": warning: unknown codec name \"G7299\"",
          at + lineOf(text109, "#3") + ": warning: speed-dial code \"#3\" is not \"#\" "
                                       "and two digits; the entry is skipped",
          at + lineOf(text109, "displayname") +
              ": warning: unknown key \"displayname\" in section \"sip\"; it is not read",
          at + lineOf(text109, "*7a2") + ": warning: service code \"*7a2\" of code_1 holds "
                                         "\"a\", which forms no key; it is dialled as \"*72\"",
          at + lineOf(text109, "code_7") + ": warning: service code \"*80\" of code_7 dials the "
                                           "same keys as \"*80\" of code_6: only one of them "
                                           "can be reached",
          at + lineOf(text109, "*901") + ": warning: service code \"*901\" of code_5 can never "
                                         "be reached: \"*90\" of code_4 is dialled before it ends",
          file600 + ":" + lineOf(text600, "fxo_channels") +
              ": warning: channel \"2x\" in fxo_channels is not a number from 0 to 65535; it "
              "reads as 2"));
}

}  // namespace
