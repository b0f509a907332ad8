// The write-back verbs on a copy of the example, down to the exit status;
// each change is read back by a second load ("ext") over the same root.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <vector>

#include "tests/support/lock_files.h"
#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"
#include "tools/cli.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using tool_testing::Block;
using tool_testing::Value;

const char kManager[] = "telephony/extensiondb/user/109.cfg";

class WriteBackVerbsTest : public ::testing::Test {
 protected:
  void SetUp() override { tool_testing::CopyExample(root_.path()); }

  // "cmcfg ARGS --root COPY --log-dir COPY".
  int Run(std::vector<std::string> args) {
    for (const char* option : {"--root", "--log-dir"}) {
      args.push_back(option);
      args.push_back(root_.path());
    }
    return tool_testing::RunCmcfg(args, out_, err_);
  }
  std::string Out() const { return out_.str(); }
  std::string Err() const { return err_.str(); }

  // The extension as a second, independent load reads it from the files.
  json Reloaded(const std::string& name) {
    EXPECT_EQ(0, Run({"ext", name, "--json"})) << Err();
    return json::parse(Out());
  }
  static json Contact(const json& extension, const std::string& name,
                      const std::string& type = "number") {
    for (const json& c : extension["address_book"])
      if (c["name"] == name && c["call_type"] == type) return c;
    return json();
  }
  static std::vector<std::string> Destinations(const json& contact) {
    std::vector<std::string> texts;
    for (const json& d : contact["forward_unconditional"]["destinations"])
      texts.push_back(d["text"]);
    return texts;
  }
  std::string Before() const { return Value(Out(), "", "before"); }
  std::string After() const { return Value(Out(), "", "after"); }

  testing_support::TempRoot root_;
  std::ostringstream out_, err_;
};

// ---- forward

TEST_F(WriteBackVerbsTest, ForwardOnStoresThePhoneDestinationBesideTheOthers) {
  ASSERT_EQ(0, Run({"forward", "109", "on", "0612345678"})) << Err();
  EXPECT_THAT(Out(), StartsWith("Forward unconditional of 109 (any-caller contact, id 1)\n"));
  EXPECT_EQ("off \"In a meeting\": number 101", Before());
  EXPECT_EQ("off \"In a meeting\": number 101, from phone 0612345678", After());
  EXPECT_EQ("", Err());
  EXPECT_THAT(root_.Read(kManager), HasSubstr("destination_2 = 1,3,0612345678"));
  const json any = Contact(Reloaded("109"), "*");
  EXPECT_THAT(Destinations(any), ElementsAre("number 101", "from phone 0612345678"));
  EXPECT_EQ(0, any["forward_unconditional"]["active"]);  // "on" leaves the flag alone
}

TEST_F(WriteBackVerbsTest, ForwardOnWithAnotherNumberNeedsReplace) {
  ASSERT_EQ(0, Run({"forward", "109", "on", "0612345678"}));
  const std::string stored = root_.Read(kManager);
  EXPECT_EQ(1, Run({"forward", "109", "on", "0700"}));
  EXPECT_EQ("cmcfg: forward 109 on 0700: a different number (0612345678) is set from the phone; "
            "use --replace\n",
            Err());
  EXPECT_EQ("", Out());
  EXPECT_EQ(stored, root_.Read(kManager));

  ASSERT_EQ(0, Run({"forward", "109", "on", "0700", "--replace"})) << Err();
  EXPECT_EQ("off \"In a meeting\": number 101, from phone 0700", After());
  EXPECT_THAT(Destinations(Contact(Reloaded("109"), "*")),
              ElementsAre("number 101", "from phone 0700"));

  // The same number again: success, but nothing is stored.
  const std::string replaced = root_.Read(kManager);
  ASSERT_EQ(0, Run({"forward", "109", "on", "0700", "--replace"}));
  EXPECT_EQ(Before(), After());
  EXPECT_THAT(Out(), HasSubstr("Nothing was stored: 0700"));
  EXPECT_EQ(replaced, root_.Read(kManager));
}

TEST_F(WriteBackVerbsTest, ForwardOffRemovesOnlyThePhoneDestination) {
  ASSERT_EQ(0, Run({"forward", "109", "on", "0612345678"}));
  ASSERT_EQ(0, Run({"forward", "109", "off"})) << Err();
  EXPECT_EQ("off \"In a meeting\": number 101, from phone 0612345678", Before());
  EXPECT_EQ("off \"In a meeting\": number 101", After());
  const std::string stored = root_.Read(kManager);
  EXPECT_EQ(std::string::npos, stored.find(",3,"));
  EXPECT_THAT(Destinations(Contact(Reloaded("109"), "*")), ElementsAre("number 101"));

  EXPECT_EQ(1, Run({"forward", "109", "off"}));
  EXPECT_EQ("cmcfg: forward 109 off: no destination set from the phone to remove\n", Err());
  EXPECT_EQ(stored, root_.Read(kManager));
}

TEST_F(WriteBackVerbsTest, ForwardToggleFlipsTheStoredFlag) {
  ASSERT_EQ(0, Run({"forward", "109", "toggle"})) << Err();
  EXPECT_EQ("off \"In a meeting\": number 101", Before());
  EXPECT_EQ("on \"In a meeting\": number 101", After());
  EXPECT_EQ(1, Contact(Reloaded("109"), "*")["forward_unconditional"]["active"]);
  ASSERT_EQ(0, Run({"forward", "109", "toggle"}));
  EXPECT_EQ(0, Contact(Reloaded("109"), "*")["forward_unconditional"]["active"]);

  // The store refuses the save (its lock cannot be taken): a failure.
  std::filesystem::remove(testing_support::LockOf(root_, kManager));
  std::filesystem::create_directories(testing_support::LockOf(root_, kManager));
  const std::string stored = root_.Read(kManager);
  EXPECT_EQ(1, Run({"forward", "109", "toggle"}));
  EXPECT_EQ("cmcfg: forward 109 toggle: the forward could not be stored (see cmcfg.log)\n",
            Err());
  EXPECT_EQ(stored, root_.Read(kManager));
}

TEST_F(WriteBackVerbsTest, ForwardRefusals) {
  EXPECT_EQ(1, Run({"forward", "102", "toggle"}));  // an empty address book
  EXPECT_EQ(
      "cmcfg: forward 102 toggle: 102 has no any-caller contact (\"*\") in its address book\n",
      Err());
  EXPECT_EQ("", Out());
  EXPECT_EQ(1, Run({"forward", "999", "off"}));
  EXPECT_EQ("cmcfg: no extension named \"999\" under " + root_.path() + "\n", Err());
  EXPECT_EQ(1, Run({"forward", "100", "toggle"}));
  EXPECT_THAT(Err(), HasSubstr("is an attendant"));
  // Usage errors: CLI11's status.
  EXPECT_GE(Run({"forward", "109", "on"}), 100);
  EXPECT_THAT(Err(), HasSubstr("needs the NUMBER"));
  EXPECT_GE(Run({"forward", "109", "off", "0700"}), 100);
  EXPECT_GE(Run({"forward", "109", "toggle", "--replace"}), 100);
  EXPECT_GE(Run({"forward", "109", "sideways"}), 100);
}

// ---- block

TEST_F(WriteBackVerbsTest, BlockCreatesTheContactOnceAndStoresIt) {
  ASSERT_EQ(0, Run({"block", "109", "5551234", "--incoming"})) << Err();
  EXPECT_THAT(Out(), StartsWith("added 5551234 to the incoming black list of 109\n"));
  EXPECT_EQ("no contact 5551234 (number)", Before());
  EXPECT_EQ("contact 5551234 (number, id 6), blocking in on (mode 0)", After());
  const std::string once = root_.Read(kManager);

  ASSERT_EQ(0, Run({"block", "109", "5551234", "--incoming"}));
  EXPECT_EQ("already blocked: 5551234 (number) is on the incoming black list of 109; nothing was "
            "stored\n",
            Out());
  EXPECT_EQ(once, root_.Read(kManager));  // byte for byte

  const json c = Contact(Reloaded("109"), "5551234");
  EXPECT_EQ(6, c["id"]);
  EXPECT_EQ(1, c["incoming_blocking"]["active"]);
  EXPECT_EQ(0, c["outgoing_blocking"]["active"]);
}

TEST_F(WriteBackVerbsTest, BlockAnExistingContactKeepsItsOtherServices) {
  ASSERT_EQ(0, Run({"block", "109", "0900*", "--outgoing", "--call-type", "pstn"})) << Err();
  EXPECT_EQ("contact 0900* (PSTN, id 2), blocking out off", Before());
  EXPECT_EQ("contact 0900* (PSTN, id 2), blocking out on (mode 0)", After());
  const json premium = Contact(Reloaded("109"), "0900*", "PSTN");
  EXPECT_EQ(1, premium["outgoing_blocking"]["active"]);
  EXPECT_EQ(1, premium["incoming_blocking"]["active"]);  // the example's own
  EXPECT_EQ(1, premium["incoming_blocking"]["mode"]);

  EXPECT_EQ(0, Run({"block", "109", "0900*", "--incoming", "--call-type", "2"}));
  EXPECT_THAT(Out(), StartsWith("already blocked"));

  // The call type tells contacts apart: a SIP 101 is not the number 101.
  ASSERT_EQ(0, Run({"block", "109", "101", "--incoming", "--call-type", "SIP"}));
  EXPECT_EQ("no contact 101 (SIP)", Before());
  EXPECT_EQ("contact 101 (SIP, id 6), blocking in on (mode 0)", After());
  const json back = Reloaded("109");
  EXPECT_EQ(0, Contact(back, "101")["incoming_blocking"]["active"]);
  EXPECT_EQ(3, Contact(back, "101")["id"]);
}

TEST_F(WriteBackVerbsTest, BlockFailuresAndUsage) {
  // The save cannot take its lock.
  std::filesystem::create_directories(testing_support::LockOf(root_, kManager));
  const std::string stored = root_.Read(kManager);
  EXPECT_EQ(1, Run({"block", "109", "5551234", "--incoming"}));
  EXPECT_EQ("cmcfg: could not add 5551234 to the incoming black list of 109: the contact or its "
            "services could not be stored (see cmcfg.log)\n",
            Err());
  EXPECT_EQ("", Out());
  EXPECT_EQ(stored, root_.Read(kManager));

  EXPECT_GE(Run({"block", "109", "5551234", "--incoming", "--outgoing"}), 100);
  EXPECT_GE(Run({"block", "109", "5551234"}), 100);
  EXPECT_GE(Run({"block", "109", "5551234", "--incoming", "--call-type", "3"}), 100);
  EXPECT_GE(Run({"block", "109", "5551234", "--incoming", "--call-type", "fax"}), 100);
  EXPECT_EQ(1, Run({"block", "998", "1", "--outgoing"}));
}

// ---- contact

class ContactVerbTest : public WriteBackVerbsTest {
 protected:
  // The web configuration's edit of 109: contacts 6 and 7 added, 3 renamed.
  std::string Edited() {
    std::string file = root_.Read(kManager) +
                       "section contact 6\n{\nname = 7001\n}\n"
                       "section contact 7\n{\nname = 8001\n}\n";
    file.replace(file.find("name = 101\n"), 10, "name = 5?01");
    root_.Write("edited-109.cfg", file);
    return root_.Path("edited-109.cfg");
  }
  std::vector<std::string> Book(const std::string& when) {
    return Block(Out(), "Address book of 109 " + when);
  }
};

TEST_F(ContactVerbTest, AddStopsAtTheUnknownIdentifier) {
  const std::string edited = Edited();
  EXPECT_EQ(1, Run({"contact", "109", "add", "6,99,7", "--edited", edited}));
  EXPECT_EQ("cmcfg: contact 109 add 6,99,7: no such contact ID 99 in the file of 109; the "
            "identifiers before it (6) were applied, those after it (7) were not\n",
            Err());
  EXPECT_THAT(Out(), HasSubstr("Address book of 109 before: 5\n"));
  EXPECT_THAT(Out(), HasSubstr("Address book of 109 after: 6\n"));
  // Plain numbers keep their order, before the patterns.
  EXPECT_THAT(Book("after"), ElementsAre("  101                number, id 3",
                                         "  7001               number, id 6",
                                         "  10?                number, id 4",
                                         "  *                  number, id 1",
                                         "  0900*              PSTN, id 2",
                                         "  0049*              PSTN, id 5"));
  EXPECT_EQ(root_.Read("edited-109.cfg"), root_.Read(kManager));  // the edit, nothing more
}

TEST_F(ContactVerbTest, ChangeTakesTheNewNameAndRegroups) {
  ASSERT_EQ(0, Run({"contact", "109", "change", "3", "--edited", Edited()})) << Err();
  EXPECT_EQ("  101                number, id 3", Book("before").front());
  EXPECT_THAT(Book("after"), ElementsAre("  5?01               number, id 3",
                                         "  10?                number, id 4",
                                         "  *                  number, id 1",
                                         "  0900*              PSTN, id 2",
                                         "  0049*              PSTN, id 5"));
  // Without an edit the load already holds the file: nothing moves.
  ASSERT_EQ(0, Run({"contact", "109", "add", "7"}));
  EXPECT_EQ(Book("before"), Book("after"));
}

TEST_F(ContactVerbTest, EraseTouchesOnlyTheAgentsBook) {
  const std::string stored = root_.Read(kManager);
  EXPECT_EQ(1, Run({"contact", "109", "erase", "4,42,2"}));
  EXPECT_EQ("cmcfg: contact 109 erase 4,42,2: no such contact ID 42 in the address book of 109; "
            "the identifiers before it (4) were applied, those after it (2) were not\n",
            Err());
  EXPECT_THAT(Book("after"), ElementsAre("  101                number, id 3",
                                         "  *                  number, id 1",
                                         "  0900*              PSTN, id 2",
                                         "  0049*              PSTN, id 5"));
  EXPECT_EQ(stored, root_.Read(kManager));
  EXPECT_EQ(4, Contact(Reloaded("109"), "10?")["id"]);

  EXPECT_EQ(1, Run({"contact", "109", "erase", "42"}));
  EXPECT_THAT(Err(), HasSubstr("nothing was applied"));
  EXPECT_EQ(Book("before"), Book("after"));
  EXPECT_GE(Run({"contact", "109", "rename", "1"}), 100);
  EXPECT_GE(Run({"contact", "109", "add"}), 100);
  EXPECT_GE(Run({"contact", "109", "add", "1", "--edited", root_.Path("missing")}), 100);
}

// ---- port

TEST_F(WriteBackVerbsTest, PortMovesFromTheManagerToAnotherExtension) {
  std::string linedb = root_.Read("telephony/linedb");
  linedb.replace(linedb.find("extension = 109"), 15, "extension = 105");
  root_.Write("edited-linedb", linedb);
  ASSERT_EQ(0, Run({"port", "1", "3", "--edited", root_.Path("edited-linedb")})) << Err();
  EXPECT_THAT(Out(), HasSubstr("FXS port MG{1}<3>: 2 bindings changed\n"));
  EXPECT_THAT(Block(Out(), "FXS port"), ElementsAre("  105                - -> MG{1}<3>",
                                                    "  109                MG{1}<3> -> -"));
  EXPECT_EQ(linedb, root_.Read("telephony/linedb"));

  ASSERT_EQ(0, Run({"ext", "105"}));
  EXPECT_EQ("MG{1}<3>, presentation id 3", Value(Out(), "Line", "local"));
  ASSERT_EQ(0, Run({"ext", "109"}));
  EXPECT_EQ("-", Value(Out(), "Line", "local"));

  // A load after the edit already holds it.
  ASSERT_EQ(0, Run({"port", "1", "3"}));
  EXPECT_EQ("FXS port MG{1}<3>: no binding changed\n", Out());
}

TEST_F(WriteBackVerbsTest, PortFailures) {
  EXPECT_EQ(0, Run({"port", "2", "1"})) << Err();  // a remote gateway binds its own ports
  EXPECT_EQ("FXS port MG{2}<1>: no binding changed\n", Out());
  EXPECT_EQ(1, Run({"port", "1", "9"}));
  EXPECT_THAT(Err(), StartsWith("cmcfg: port MG{1}<9>: unknown gateway or port"));
  EXPECT_EQ("", Out());
  EXPECT_EQ(1, Run({"port", "7", "1"}));

  // Given to an extension the agent does not hold: the old holder loses it.
  std::string linedb = root_.Read("telephony/linedb");
  linedb.replace(linedb.find("extension = 109"), 15, "extension = 999");
  root_.Write("edited-linedb", linedb);
  EXPECT_EQ(1, Run({"port", "1", "3", "--edited", root_.Path("edited-linedb")}));
  EXPECT_THAT(Block(Out(), "FXS port"), ElementsAre("  109                MG{1}<3> -> -"));
  EXPECT_THAT(Err(), HasSubstr("gives it to no loaded extension"));

  EXPECT_GE(Run({"port", "1"}), 100);
  EXPECT_GE(Run({"port", "-1", "3"}), 100);
  EXPECT_GE(Run({"port", "one", "3"}), 100);
}

TEST_F(WriteBackVerbsTest, HelpExplainsEveryVerb) {
  EXPECT_EQ(0, Run({"--help"}));
  for (const char* verb : {"forward", "block", "contact", "port"})
    EXPECT_THAT(Out(), HasSubstr(std::string("  ") + verb + " "));
  for (const char* verb : {"forward", "block", "contact", "port"}) {
    EXPECT_EQ(0, Run({verb, "--help"}));
    EXPECT_THAT(Out(), HasSubstr("Exit status: 0 "));
  }
}

}  // namespace
