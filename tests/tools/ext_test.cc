#include "tools/ext.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"

namespace {

using cmcfg_tool::ExtOptions;
using cmcfg_tool::RunExt;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using tool_testing::Block;
using tool_testing::Examples;
using tool_testing::Value;

class ExtTest : public ::testing::Test {
 protected:
  // Runs "cmcfg ext NAME" over `root` (the example by default).
  int Run(const std::string& name, bool json = false, std::string root = "") {
    ExtOptions options;
    options.name = name;
    options.root = root.empty() ? Examples() : root;
    options.logDir = logs_.path();
    options.json = json;
    out_.str("");
    err_.str("");
    return RunExt(options, out_, err_);
  }
  std::string Text(const std::string& name) {
    EXPECT_EQ(0, Run(name)) << err_.str();
    return out_.str();
  }
  nlohmann::json Json(const std::string& name) {
    EXPECT_EQ(0, Run(name, true)) << err_.str();
    return nlohmann::json::parse(out_.str());
  }

  testing_support::TempRoot logs_;  // the log goes here, never into the example
  std::ostringstream out_, err_;
};

// ---- the manager, 109: every service of the example

TEST_F(ExtTest, ManagerSipAndPersonalDataAreThoseOfHerFile) {
  const std::string text = Text("109");
  EXPECT_EQ(0u, text.find("Extension 109 (user) \"Ines Costa, Management\"\n"));
  // The agent makes the user name unique: prefix, name, then digits.
  EXPECT_THAT(Value(text, "SIP", "address"),
              MatchesRegex("office-109[0-9]+@192\\.168\\.10\\.1:5060"));
  EXPECT_EQ("ines", Value(text, "SIP", "auth name"));
  EXPECT_EQ("set", Value(text, "SIP", "password"));  // never the password itself
  EXPECT_EQ(std::string::npos, text.find("Ine-4396"));
  EXPECT_EQ("edge.office.example", Value(text, "SIP", "outbound proxy"));
  EXPECT_EQ("tcp", Value(text, "SIP", "transport"));
  EXPECT_EQ("on, expiry 3600 s, keep-alive 20 s", Value(text, "SIP", "registration"));
  // "4709*1": six keys.
  EXPECT_EQ("6 (policy 2)", Value(text, "Personal", "password keys"));
  EXPECT_EQ("1", Value(text, "Personal", "user class"));
}

TEST_F(ExtTest, ManagerServicesAndTimeouts) {
  const std::string text = Text("109");
  EXPECT_EQ("mode 2 (on), rings 4, mailbox mailbox-109", Value(text, "Services", "voice mail"));
  EXPECT_EQ("every 45 s for 900 s", Value(text, "Services", "auto-redial"));  // minutes to s
  EXPECT_EQ("off, destination 101", Value(text, "Services", "auto-call"));
  EXPECT_EQ("timeout 90 s", Value(text, "Services", "call park"));
  EXPECT_EQ("20 s", Value(text, "Services", "no answer"));
  EXPECT_EQ("allowed 1, max parties 6", Value(text, "Services", "conference"));
  EXPECT_EQ("allowed 0, level 2", Value(text, "Services", "intrusion"));
  EXPECT_EQ("modes 0/1 (on), tone detection 1, forced 0, profile T38-ECM",
            Value(text, "Services", "fax"));
}

TEST_F(ExtTest, ManagerLineIsTheLocalPortThreeWithItsSettings) {
  const std::string text = Text("109");
  EXPECT_EQ("MG{1}<3>, presentation id 3", Value(text, "Line", "local"));
  EXPECT_EQ("-", Value(text, "Line", "remote"));
  EXPECT_EQ("2/250/900/4 (mode/min ms/max ms/delay s)", Value(text, "Line", "disconnect"));
  EXPECT_EQ("2", Value(text, "Line", "caller ID type"));
  EXPECT_EQ("signalling 0x68, media 0xB8", Value(text, "Line", "TOS"));  // profile "voice"
  EXPECT_EQ(
      "size 3, mode 2, accepting, overflow, announcement 4 \"Please hold for Ines Costa\" "
      "every 20 s",
      Value(text, "Line", "call queue"));
}

TEST_F(ExtTest, ManagerHasAllFourMediaLists) {
  const std::string text = Text("109");
  EXPECT_EQ("G711A,G711U,G729,G722", Value(text, "Media", "voice"));  // extra codecs last
  EXPECT_EQ("version 0, 14400 bit/s; version 3, 33600 bit/s", Value(text, "Media", "fax relay"));
  EXPECT_EQ("G711A", Value(text, "Media", "fax in band"));
  EXPECT_EQ("G711U", Value(text, "Media", "modem"));
  EXPECT_EQ("1", Value(text, "Media", "codec option"));
}

TEST_F(ExtTest, FunctionalTableRendersKeysAndServiceKeys) {
  const std::string text = Text("109");
  EXPECT_THAT(text, HasSubstr("Functional table: 21\n"));
  EXPECT_EQ("0x801", Value(text, "Functional table", "*72"));
  EXPECT_EQ("0x803", Value(text, "Functional table", "*78"));
  EXPECT_EQ("0x803", Value(text, "Functional table", "*79"));
  EXPECT_EQ("0x800", Value(text, "Functional table", "*80"));   // code 6 comes first
  EXPECT_EQ("0x809", Value(text, "Functional table", "*60"));  // codes 9 and 10 trade keys
  EXPECT_EQ("0x808", Value(text, "Functional table", "*61"));
  EXPECT_EQ("0xA80F", Value(text, "Functional table", "*86"));  // 16 and 17 carry 0xA000
  EXPECT_EQ("0xA810", Value(text, "Functional table", "*87"));
  EXPECT_EQ("0x812", Value(text, "Functional table", "#9"));
  EXPECT_EQ("0x813", Value(text, "Functional table", "f4"));
  // Ascending by key values: '#' 0x123 < '*' 0x12A < flash 0x8F0.
  std::vector<std::string> rows = Block(text, "Functional table");
  ASSERT_EQ(21u, rows.size());
  EXPECT_THAT(rows.front(), MatchesRegex("  #9 +0x812"));
  EXPECT_THAT(rows.back(), MatchesRegex("  f4 +0x813"));
}

TEST_F(ExtTest, SpeedDialIsSortedAndKeepsBothKindsOfDestination) {
  const std::string text = Text("109");
  std::vector<std::string> rows = Block(text, "Speed dial");
  ASSERT_EQ(3u, rows.size());
  EXPECT_THAT(rows[0], MatchesRegex("  #01 +PSTN 0215550100"));
  EXPECT_THAT(rows[1], MatchesRegex("  #02 +number 101"));
  EXPECT_THAT(rows[2], MatchesRegex("  #03 +SIP orders@supplier\\.example:5080"));
}

TEST_F(ExtTest, AddressBookInStoredOrderWithServicesAndDestinations) {
  const std::string text = Text("109");
  std::vector<std::string> contacts;
  for (const std::string& row : Block(text, "Address book"))
    if (row.compare(0, 4, "    ") != 0) contacts.push_back(row.substr(2, row.find(' ', 2) - 2));
  // Numbers first, then the patterns most specific first, call type by
  // call type in order of first appearance: not the file's order.
  EXPECT_THAT(contacts, ElementsAre("101", "10?", "*", "0900*", "0049*"));

  EXPECT_THAT(text, HasSubstr("number, id 1, armed no (any service yes), intercom mode 1, active: "
                              "CLIR, blocking out, hunting, forward no answer, forward busy\n"));
  EXPECT_THAT(text, HasSubstr("    forward unconditional (off) \"In a meeting\": number 101\n"));
  EXPECT_THAT(text, HasSubstr("    forward no answer (on): number 101, PSTN 0612345678\n"));
  // The switched-off second destination (108) is not loaded.
  EXPECT_THAT(text, HasSubstr("    forward busy (on): SIP ines@mobile.example:5062\n"));
  EXPECT_THAT(text, HasSubstr("    hunting (on) mode 1: 101 (15 s), 107 (20 s)\n"));
  EXPECT_THAT(text, HasSubstr("    blocking out mode 2\n"));
  // Blocking arms a contact even without the other services.
  EXPECT_THAT(text, HasSubstr("PSTN, id 2, armed yes (any service yes), intercom mode 2, active: "
                              "blocking in\n"));
  EXPECT_THAT(text,
              HasSubstr("    dist. ringing \"assistant\", pattern short, cadence 500,4000\n"));
  EXPECT_THAT(text, HasSubstr("    M.E.R. (on): 101,107\n"));
  EXPECT_THAT(text, HasSubstr("    forward unconditional (on): PSTN trunk\n"));
  EXPECT_THAT(text, HasSubstr("number, id 3, armed no (any service no), intercom mode 0"));
}

TEST_F(ExtTest, ManagerAsJson) {
  nlohmann::json j = Json("109");
  EXPECT_EQ("MG{1}<3>", j["line"]["local"]);
  EXPECT_TRUE(j["line"]["remote"].is_null());
  EXPECT_EQ(21u, j["functional_table"].size());
  EXPECT_EQ("#9", j["functional_table"][0]["keys"]);
  EXPECT_EQ("0x812", j["functional_table"][0]["service"]);
  EXPECT_EQ("orders", j["speed_dial"][2]["destination"]["user"]);
  EXPECT_EQ("5080", j["speed_dial"][2]["destination"]["port"]);
  const nlohmann::json& any = j["address_book"][2];
  EXPECT_EQ("*", any["name"]);
  EXPECT_FALSE(any["armed"].get<bool>());
  EXPECT_TRUE(any["armed_any"].get<bool>());
  EXPECT_EQ("mobile.example", any["forward_busy"]["destinations"][0]["host"]);
  EXPECT_EQ(2u, j["media"]["fax_relay"].size());
  EXPECT_EQ(33600u, j["media"]["fax_relay"][1][1]);
  EXPECT_FALSE(j["sip"]["password_set"].is_null());
  EXPECT_EQ(std::string::npos, out_.str().find("Ine-4396"));
}

// ---- the other kinds of extension

TEST_F(ExtTest, LocalAndRemoteBindings) {
  std::string text = Text("106");
  EXPECT_EQ("MG{1}<5>, presentation id 5", Value(text, "Line", "local"));
  EXPECT_EQ("MG{2}<3>, RTP proxy off, symmetric RTP on", Value(text, "Line", "remote"));
  text = Text("110");
  EXPECT_EQ("-", Value(text, "Line", "local"));
  EXPECT_EQ("MG{2}<1>, RTP proxy on, symmetric RTP on", Value(text, "Line", "remote"));
  text = Text("105");  // a SIP phone: no port at all
  EXPECT_EQ("-", Value(text, "Line", "local"));
  EXPECT_EQ("-", Value(text, "Line", "remote"));
}

TEST_F(ExtTest, TrunksListTheirChannels) {
  std::string text = Text("600");
  EXPECT_EQ("1,2", Value(text, "PSTN channels", "FXO"));
  EXPECT_EQ("-", Value(text, "PSTN channels", "CAS"));
  // No SIP user in the file: the agent forms one.
  EXPECT_THAT(Value(text, "SIP", "address"),
              MatchesRegex("kaIfArIkNiCkoffice-[0-9]+@192\\.168\\.10\\.1:5060"));
  EXPECT_EQ("0/1-15,17-31", Value(Text("601"), "PSTN channels", "CAS"));
  EXPECT_EQ("0", Value(Text("602"), "PSTN channels", "ISDN"));
}

TEST_F(ExtTest, GroupsAndCallPark) {
  std::string text = Text("500");
  EXPECT_EQ(0u, text.find("Extension 500 (paging)"));
  EXPECT_THAT(text, HasSubstr("Group members: 110,111\n"));
  // Highest priority first; equal priorities keep the file's order.
  std::vector<std::string> rows = Block(text, "Access list");
  ASSERT_EQ(4u, rows.size());
  EXPECT_THAT(rows[0], MatchesRegex("  priority 10 +number 100"));
  EXPECT_THAT(rows[1], MatchesRegex("  priority 5 +number 109"));
  EXPECT_THAT(rows[2], MatchesRegex("  priority 5 +SIP sip:ines@mobile.example \\(disabled\\)"));
  EXPECT_THAT(rows[3], MatchesRegex("  priority 1 +number 104"));
  EXPECT_THAT(Text("300"), HasSubstr("Group members: 101,102,103,104\n"));
  EXPECT_EQ("timeout 180 s", Value(Text("400"), "Services", "call park"));  // minutes to s
}

TEST_F(ExtTest, Attendants) {
  std::string text = Text("100");
  EXPECT_EQ(0u, text.find("Attendant 100 (system attendant)\n"));
  EXPECT_EQ("100@192.168.10.1:5060", Value(text, "SIP", "address"));  // no suffix for attendants
  EXPECT_EQ("20 s", Value(text, "Console", "ring timeout"));
  EXPECT_EQ("*", Value(text, "Console", "night destination"));
  EXPECT_EQ("G711A", Value(text, "Media", "modem"));
  // Neither attendant names voice codecs: both get the system's defaults,
  // 120 even without a codecs section.
  EXPECT_EQ("G711A,G711U,G729,G722", Value(text, "Media", "voice"));
  text = Text("120");
  EXPECT_EQ(0u, text.find("Attendant 120\n"));
  EXPECT_EQ("G711A,G711U,G729,G722", Value(text, "Media", "voice"));
  EXPECT_EQ("-", Value(text, "Media", "fax relay"));
  EXPECT_EQ("signalling 0x00, media 0x00", Value(text, "Console", "TOS"));
  nlohmann::json j = Json("120");
  EXPECT_FALSE(j["system_attendant"].get<bool>());
  EXPECT_EQ(4u, j["media"]["voice"].size());
}

// ---- failures

TEST_F(ExtTest, UnknownNameIsOneMessageAndStatusOne) {
  EXPECT_EQ(1, Run("999"));
  EXPECT_TRUE(out_.str().empty());
  EXPECT_EQ("cmcfg: no extension or attendant named \"999\" under " + Examples() + "\n",
            err_.str());
  EXPECT_EQ(1, Run("10"));  // a prefix of names is no name
  EXPECT_EQ(1, Run("999", true));
  EXPECT_TRUE(out_.str().empty());
}

TEST_F(ExtTest, MissingRootIsStatusTwo) {
  EXPECT_EQ(2, Run("101", false, logs_.Path("nowhere")));
  EXPECT_TRUE(out_.str().empty());
  EXPECT_EQ(0u, err_.str().find("cmcfg: cannot read the configuration root "));
}

// ---- a root of its own: key sequences that the example does not use

TEST_F(ExtTest, KeySequencesAreRenderedBackAsTyped) {
  testing_support::TempRoot root;
  root.Write("telephony/general.cfg", "section logging\n{\nlog_enabled = 1\n}\n");
  root.Write("telephony/extensiondb/user/201.cfg",
             "section service_codes\n{\ncode_1 = #9f\ncode_2 = 0*#\ncode_20 = ff\n}\n");
  EXPECT_EQ(0, Run("201", false, root.path()));
  const std::string text = out_.str();
  EXPECT_EQ("0x801", Value(text, "Functional table", "#9f"));
  EXPECT_EQ("0x802", Value(text, "Functional table", "0*#"));
  EXPECT_EQ("0x813", Value(text, "Functional table", "ff"));
  // A user without the other sections keeps the records' defaults.
  EXPECT_EQ("-", Value(text, "SIP", "auth name"));
  EXPECT_EQ("-", Value(text, "Line", "local"));
  EXPECT_THAT(text, HasSubstr("Speed dial: 0\nAddress book: 0\n"));
}

}  // namespace
