// The checks of what the agent reads differently from what is written:
// block files, the line database, PSTN channels, service codes and tones.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/ring_pattern_params.h"
#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"
#include "tools/check.h"
#include "tools/agent_parsers.h"
#include "tools/check_fields.h"
#include "tools/check_pstn.h"
#include "tools/check_service_codes.h"

namespace {

using cmcfg_tool::ChannelProblem;
using testing::ElementsAre;
using testing::IsEmpty;

const char kUser[] = "telephony/extensiondb/user/";

// Every finding of a root as the text `check` prints, caret lines included.
class CheckRulesTest : public ::testing::Test {
 protected:
  CheckRulesTest() { tool_testing::EmptySettings(root_); }
  std::vector<std::string> Check() {
    std::ostringstream out;
    cmcfg_tool::PrintFindings(cmcfg_tool::FindProblems(root_.path()), out);
    return tool_testing::Lines(out.str());
  }

  testing_support::TempRoot root_;
};

std::vector<std::string> Messages(const std::vector<ChannelProblem>& problems) {
  std::vector<std::string> messages;
  for (const ChannelProblem& p : problems) messages.push_back(p.message);
  return messages;
}

TEST_F(CheckRulesTest, BlockFilesReportUnknownKeysBadValuesAndSectionsThatAreNoId) {
  root_.Write("telephony/gateways.cfg",
              "section 1\n{\nname = main\ntype = local\nadress = 10.0.0.1\n}\n"
              "section main\n{\nname = x\n}\n");
  root_.Write("telephony/ringpatterns.cfg", "section 1\n{\nname = one\ncadence = 500,4000s\n}\n");
  EXPECT_THAT(Check(),
              ElementsAre("telephony/gateways.cfg:4: warning: value \"local\" of type is not a "
                          "number; the default is kept",
                          "type = local", "       ^",
                          "telephony/gateways.cfg:5: warning: unknown key \"adress\" in section "
                          "\"1\"; it is not read",
                          "adress = 10.0.0.1", "^",
                          "telephony/gateways.cfg:7: warning: section \"main\" is not a block id; "
                          "it is ignored",
                          "section main", "        ^",
                          "telephony/ringpatterns.cfg:4: warning: value \"500,4000s\" of cadence "
                          "is not a list of numbers; the default is kept",
                          "cadence = 500,4000s", "          ^"));
}

TEST_F(CheckRulesTest, LineDatabaseEntriesTheAgentCannotBind) {
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = main\n}\n");
  root_.Write("telephony/extensiondb/user/101.cfg", "");
  root_.Write("telephony/linedb",
              "section binding 1/1\n{\nextension = 101\n}\n"
              "section fxs 1/1\n{\n}\n"
              "section binding 1/01\n{\nextension = 101\n}\n"  // the same port
              "section binding 3/1\n{\nextension = 101\n}\n"   // no gateway 3
              "section binding 1/2\n{\nextension = 101\n}\n"   // no fxs 1/2
              "section binding 1-3\n{\n}\n"
              "section bindings 1/4\n{\n}\n");
  EXPECT_THAT(Check(),
              ElementsAre("telephony/linedb:8: warning: FXS port 1/1 is bound twice; the binding "
                          "at line 1 is read",
                          "section binding 1/01", "        ^",
                          "telephony/linedb:20: warning: section \"binding 1-3\" is no "
                          "line-database entry (binding, fxs or fxo G/L); it is ignored",
                          "section binding 1-3", "        ^",
                          "telephony/linedb:23: warning: section \"bindings 1/4\" is no "
                          "line-database entry (binding, fxs or fxo G/L); it is ignored",
                          "section bindings 1/4", "        ^",
                          "telephony/linedb:12: warning: gateway 3 of \"binding 3/1\" is not in "
                          "telephony/gateways.cfg; the extension is not bound",
                          "section binding 3/1", "        ^",
                          "telephony/linedb:16: warning: no section \"fxs 1/2\" for \"binding "
                          "1/2\"; the extension is not bound",
                          "section binding 1/2", "        ^"));
}

TEST(PstnChannelsTest, ChannelListsReadAsTheAgentReadsThem) {
  cmcfg_tool::AgentParsers parsers;
  EXPECT_THAT(Messages(cmcfg_tool::ChannelListProblems("fxo_channels", "1, 2 ,3", parsers)),
              IsEmpty());
  EXPECT_THAT(Messages(cmcfg_tool::ChannelListProblems("fxo_channels", "all_channels", parsers)),
              IsEmpty());
  EXPECT_THAT(Messages(cmcfg_tool::ChannelListProblems("fxo_channels", "1,2x,,x,70000", parsers)),
              ElementsAre("channel \"2x\" in fxo_channels is not a number from 0 to 65535; it "
                          "reads as 2",
                          "channel \"\" in fxo_channels is not a number from 0 to 65535; it reads "
                          "as 0",
                          "channel \"x\" in fxo_channels is not a number from 0 to 65535; it "
                          "reads as 0",
                          "channel \"70000\" in fxo_channels is not a number from 0 to 65535; it "
                          "reads as 4464"));
  std::string many;
  for (int i = 0; i < 257; ++i) many += (i ? "," : "") + std::to_string(i);
  EXPECT_THAT(Messages(cmcfg_tool::ChannelListProblems("isdn_channels", many, parsers)),
              ElementsAre("isdn_channels lists more than 256 channels; the rest are ignored"));
  many = many.substr(0, many.rfind(','));
  EXPECT_THAT(Messages(cmcfg_tool::ChannelListProblems("isdn_channels", many, parsers)), IsEmpty());
}

TEST(PstnChannelsTest, CasSpansAndTimeSlots) {
  cmcfg_tool::AgentParsers parsers;
  EXPECT_THAT(Messages(cmcfg_tool::CasProblems("0/1-15;0/17-31", parsers)), IsEmpty());
  EXPECT_THAT(Messages(cmcfg_tool::CasProblems("1/1,2,31;all_channels", parsers)),
              ElementsAre("span \"all_channels\" in cas_channels is not a number from 0 to 65535; "
                          "it reads as 0",
                          "span group \"all_channels\" in cas_channels has no \"/\" and no time "
                          "slots"));
  EXPECT_THAT(Messages(cmcfg_tool::CasProblems("0/1,3-5;x/2;0/5-1;0/1-40;0/4,32", parsers)),
              ElementsAre("time slots \"1,3-5\" in cas_channels are neither a list nor one range; "
                          "they read as 1-5",
                          "span \"x\" in cas_channels is not a number from 0 to 65535; it reads "
                          "as 0",
                          "time slot range \"5-1\" in cas_channels is empty",
                          "time slot range \"1-40\" in cas_channels ends past 31; it is cut there",
                          "time slot 32 in cas_channels is past 31; it is dropped"));
  std::string spans;
  for (int i = 0; i < 65; ++i) spans += (i ? ";" : "") + std::to_string(i % 65) + "/1";
  EXPECT_THAT(Messages(cmcfg_tool::CasProblems(spans, parsers)),
              ElementsAre("cas_channels holds more than 64 spans; the rest are ignored"));
  // The same span twice is merged, not counted again.
  EXPECT_THAT(
      Messages(cmcfg_tool::CasProblems(spans.substr(0, spans.rfind(';')) + ";0/2", parsers)),
      IsEmpty());
}

TEST_F(CheckRulesTest, PstnChannelFindingsPointAtThePiece) {
  root_.Write("telephony/extensiondb/user/600.cfg",
              "section pstn_agent\n{\nfxo_channels = 1,two\ncas_channels = 0/1-15;0/17-33\n}\n");
  EXPECT_THAT(Check(),
              ElementsAre("telephony/extensiondb/user/600.cfg:3: warning: channel \"two\" in "
                          "fxo_channels is not a number from 0 to 65535; it reads as 0",
                          "fxo_channels = 1,two", "                 ^",
                          "telephony/extensiondb/user/600.cfg:4: warning: time slot range "
                          "\"17-33\" in cas_channels ends past 31; it is cut there",
                          "cas_channels = 0/1-15;0/17-33", "                        ^"));
}

TEST_F(CheckRulesTest, ServiceCodesThatFormNoKeyOrCanNeverBeReached) {
  EXPECT_EQ("*72#f1", cmcfg_tool::AgentParsers().DialledKeys("*7 2#f1F"));
  root_.Write(std::string(kUser) + "101.cfg",
              "section service_codes\n{\n"
              "code_1 = *72\n"
              "code_2 = *7x3\n"
              "code_3 = *78,*721\n"
              "code_4 = ab\n"
              "code_21 = *99\n"
              "code_5 = *7\n"
              "code_6 = *80\n"
              "code_7 = *80\n"
              "}\n");
  // Attendants have no functional table.
  root_.Write("telephony/extensiondb/attendant/100.cfg",
              "section service_codes\n{\ncode_1 = x\ncode_2 = x\n}\n");
  EXPECT_THAT(
      Check(),
      ElementsAre("telephony/extensiondb/user/101.cfg:7: warning: unknown key \"code_21\" in "
                  "section \"service_codes\"; it is not read",
                  "code_21 = *99", "^",
                  "telephony/extensiondb/user/101.cfg:4: warning: service code \"*7x3\" of code_2 "
                  "holds \"x\", which forms no key; it is dialled as \"*73\"",
                  "code_2 = *7x3", "         ^",
                  "telephony/extensiondb/user/101.cfg:6: warning: service code \"ab\" of code_4 "
                  "forms no key sequence",
                  "code_4 = ab", "         ^",
                  "telephony/extensiondb/user/101.cfg:10: warning: service code \"*80\" of code_7 "
                  "dials the same keys as \"*80\" of code_6: only one of them can be reached",
                  "code_7 = *80", "         ^",
                  "telephony/extensiondb/user/101.cfg:3: warning: service code \"*72\" of code_1 "
                  "can never be reached: \"*7\" of code_5 is dialled before it ends",
                  "code_1 = *72", "         ^",
                  "telephony/extensiondb/user/101.cfg:4: warning: service code \"*7x3\" of code_2 "
                  "can never be reached: \"*7\" of code_5 is dialled before it ends",
                  "code_2 = *7x3", "         ^",
                  "telephony/extensiondb/user/101.cfg:5: warning: service code \"*78\" of code_3 "
                  "can never be reached: \"*7\" of code_5 is dialled before it ends",
                  "code_3 = *78,*721", "         ^",
                  "telephony/extensiondb/user/101.cfg:5: warning: service code \"*721\" of code_3 "
                  "can never be reached: \"*7\" of code_5 is dialled before it ends",
                  "code_3 = *78,*721", "             ^"));
}

TEST_F(CheckRulesTest, ServiceCodeHiddenBehindTheShortestPrefixOnly) {
  root_.Write(std::string(kUser) + "101.cfg",
              "section service_codes\n{\ncode_1 = *72\ncode_2 = *721,*7210\ncode_3 = *73\n}\n");
  EXPECT_THAT(Check(),
              ElementsAre("telephony/extensiondb/user/101.cfg:4: warning: service code \"*721\" "
                          "of code_2 can never be reached: \"*72\" of code_1 is dialled before it "
                          "ends",
                          "code_2 = *721,*7210", "         ^",
                          "telephony/extensiondb/user/101.cfg:4: warning: service code \"*7210\" "
                          "of code_2 can never be reached: \"*72\" of code_1 is dialled before it "
                          "ends",
                          "code_2 = *721,*7210", "              ^"));
}

TEST_F(CheckRulesTest, ToneValuesThatDoNotReadAsWritten) {
  root_.Write("telephony/regional/tonetypes.cfg",
              "section DeviceTone_LineBusy\n{\n"
              "frequency_1 = 425Hz\n"
              "frequency_2 = high\n"
              "tone_level_1 = -6\n"
              "tone_level_2 = -6.5\n"
              "is_play_wav_on = 2\n"
              "pattern = 500,5OO\n"
              "silence_duration = \n"
              "volume = 3\n"
              "}\n"
              "section DeviceTone_Busy\n{\n}\n");
  EXPECT_THAT(Check(),
              ElementsAre("telephony/regional/tonetypes.cfg:3: warning: tone value \"425Hz\" of "
                          "frequency_1 is not a number from 0 to 65535; it reads as 425",
                          "frequency_1 = 425Hz", "              ^",
                          "telephony/regional/tonetypes.cfg:4: warning: tone value \"high\" of "
                          "frequency_2 is not a number from 0 to 65535; it reads as 0",
                          "frequency_2 = high", "              ^",
                          "telephony/regional/tonetypes.cfg:6: warning: tone value \"-6.5\" of "
                          "tone_level_2 is not a whole number; it reads as -6",
                          "tone_level_2 = -6.5", "               ^",
                          "telephony/regional/tonetypes.cfg:7: warning: tone value \"2\" of "
                          "is_play_wav_on is not 0 or 1; it reads as 1",
                          "is_play_wav_on = 2", "                 ^",
                          "telephony/regional/tonetypes.cfg:8: warning: tone value \"500,5OO\" of "
                          "pattern holds \"5OO\", which is not a duration in ms; the player "
                          "receives it as written",
                          "pattern = 500,5OO", "          ^",
                          "telephony/regional/tonetypes.cfg:10: warning: unknown key \"volume\" "
                          "in section \"DeviceTone_LineBusy\"; it is not read",
                          "volume = 3", "^",
                          "telephony/regional/tonetypes.cfg:12: warning: section "
                          "\"DeviceTone_Busy\" names no tone; it is ignored",
                          "section DeviceTone_Busy", "        ^"));
}

}  // namespace

TEST_F(CheckRulesTest, SettingsFilesReportWhatTheirReadersDoNotTake) {
  root_.Write("telephony/general.cfg",
              "section system\n{\nmax_extensions = -1\nmax_extension = 10\n}\n"
              "section limits\n{\nmax_hold_calls = 70000\n}\n"
              "section sytem\n{\n}\n");
  root_.Write("telephony/fxs.cfg", "section fxs\n{\nring_cadence = 1000,long\n}\n");
  root_.Write("telephony/extensiondb/system.cfg",
              "section database\n{\nsystem_atendant = 100\n}\n");
  EXPECT_THAT(
      Check(),
      ElementsAre("telephony/general.cfg:3: warning: value \"-1\" of max_extensions is not a "
                  "number from 0 to 4294967295; the default is kept",
                  "max_extensions = -1", "                 ^",
                  "telephony/general.cfg:4: warning: unknown key \"max_extension\" in section "
                  "\"system\"; it is not read",
                  "max_extension = 10", "^",
                  "telephony/general.cfg:8: warning: value \"70000\" of max_hold_calls is not a "
                  "number from 0 to 65535; the default is kept",
                  "max_hold_calls = 70000", "                 ^",
                  "telephony/general.cfg:10: warning: section \"sytem\" is not read; it is ignored",
                  "section sytem", "        ^",
                  "telephony/fxs.cfg:3: warning: value \"1000,long\" of ring_cadence is not a list "
                  "of numbers; the default is kept",
                  "ring_cadence = 1000,long", "               ^",
                  "telephony/extensiondb/system.cfg:3: warning: unknown key \"system_atendant\" in "
                  "section \"database\"; it is not read",
                  "system_atendant = 100", "^"));
}

TEST_F(CheckRulesTest, ExtensionSectionsReportWhatTheStoreSkips) {
  root_.Write(std::string(kUser) + "101.cfg",
              "section sip\n{\nsip_keepalive = 1\n}\n"                              // 1-4
              "section busy_redial\n{\ninterval = -5\n}\n"                          // 5-8
              "section access_list\n{\nentry_1 = 1,1,0,105\nentry_2 = high,1,0,105\n"
              "entry = 1\n}\n"                                                      // 9-14
              "section contact 5\n{\nname = 105\n}\n"                               // 15-18
              "section contact 5 hunting\n{\ntarget_1 = 102,20\ntarget_2 = 103,long\n}\n"
              "section contact 5 forward_busy\n{\ndestination_1 = 1,0\n}\n"         // 24-27
              "section contact 5 forward_all\n{\n}\n"                               // 28-30
              "section contact 05\n{\nname = 106\n}\n"                              // 31-34
              "section speed_dial 1\n{\ncalling_code = #01\n}\n"                    // 35-38
              "section speed_dial 0x1\n{\ncalling_code = #02\n}\n");                // 39-42
  for (const char* other : {"102", "103", "105", "106"})
    root_.Write(std::string(kUser) + other + ".cfg", "");
  EXPECT_THAT(
      Check(),
      ElementsAre(
          "telephony/extensiondb/user/101.cfg:3: warning: unknown key \"sip_keepalive\" in "
          "section \"sip\"; it is not read",
          "sip_keepalive = 1", "^",
          "telephony/extensiondb/user/101.cfg:7: warning: value \"-5\" of interval is not a "
          "number from 0 to 4294967295; the default is kept",
          "interval = -5", "           ^",
          "telephony/extensiondb/user/101.cfg:12: warning: value \"high,1,0,105\" of entry_2 is "
          "not \"priority,enabled,type,address\"; the entry is skipped",
          "entry_2 = high,1,0,105", "          ^",
          "telephony/extensiondb/user/101.cfg:13: warning: unknown key \"entry\" in section "
          "\"access_list\"; it is not read",
          "entry = 1", "^",
          "telephony/extensiondb/user/101.cfg:22: warning: value \"103,long\" of target_2 is not "
          "\"number\" or \"number,ring time\"; the entry is skipped",
          "target_2 = 103,long", "           ^",
          "telephony/extensiondb/user/101.cfg:26: warning: value \"1,0\" of destination_1 is not "
          "\"enabled,type,address\"; the entry is skipped",
          "destination_1 = 1,0", "                ^",
          "telephony/extensiondb/user/101.cfg:28: warning: section \"contact 5 forward_all\" is "
          "not read; it is ignored",
          "section contact 5 forward_all", "        ^",
          "telephony/extensiondb/user/101.cfg:31: warning: section \"contact 05\" repeats "
          "contact 5 of section \"contact 5\" (line 15); it is ignored",
          "section contact 05", "        ^",
          "telephony/extensiondb/user/101.cfg:39: warning: section \"speed_dial 0x1\" repeats "
          "speed dial 1 of section \"speed_dial 1\" (line 35)",
          "section speed_dial 0x1", "        ^"));
}

TEST_F(CheckRulesTest, LineDatabaseKeysFollowItsOwnNumberRules) {
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = local\n}\n");
  root_.Write(std::string(kUser) + "101.cfg", "");
  root_.Write("telephony/linedb",
              "section binding 1/1\n{\nextension = 101\npresentation_id = first\n}\n"
              "section fxs 1/1\n{\nrtp_proxy = 0x10\ndisconnect_delay_s = 010\n"
              "disconect_mode = 1\n}\n");
  EXPECT_THAT(Check(),
              ElementsAre("telephony/linedb:4: warning: value \"first\" of presentation_id is not "
                          "a number; the default is kept",
                          "presentation_id = first", "                  ^",
                          "telephony/linedb:10: warning: unknown key \"disconect_mode\" in section "
                          "\"fxs 1/1\"; it is not read",
                          "disconect_mode = 1", "^"));
}
