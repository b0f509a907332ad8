// Each write operation on a hand-written file (comments, odd spacing, a key
// the store does not know, CRLF line ends) changes only the lines of what
// it changes: the file after it is compared byte for byte with the
// original and that edit. Values that would not read back are refused.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "platform/base/document_store.h"
#include "tests/support/agent_fixture.h"

namespace {

const char kFile[] = "telephony/extensiondb/user/101.cfg";
const char kPhones[] = "telephony/authorized_phones.cfg";

const std::string kUser =
    "# Front desk. Kept under version control: edit with care.\r\n"
    "section extension\r\n"
    "{\r\n"
    "  description   =   Front desk\r\n"
    "}\r\n"
    "\r\n"
    "# Any caller.\r\n"
    "section contact 1\r\n"
    "{\r\n"
    "\tname=*\r\n"
    "\tcall_type=0\r\n"
    "}\r\n"
    "\r\n"
    "section contact 1 forward_unconditional\r\n"
    "{\r\n"
    "\tactive=0\r\n"
    "\tdestination_1=1,0,102\r\n"
    "\tdestination_2=1,3,*9555\r\n"
    "\tvendor_note=not ours, kept\r\n"
    "}\r\n"
    "\r\n"
    "section contact 2\r\n"
    "{\r\n"
    "\tname=5001\r\n"
    "\tcall_type=0\r\n"
    "}\r\n"
    "# the end\r\n";

const std::string kPhonesFile =
    "# Phones that log in by themselves.\r\n"
    "section 1\r\n"
    "{\r\n"
    "phone_address = 10.0.0.7\r\n"
    "extension = 101\r\n"
    "phone_type = 1\r\n"
    "login_time = 5\r\n"
    "}\r\n";

// The original with `edits` applied: each replaces the first occurrence of
// its first text by its second.
std::string Edited(std::string text, const std::vector<std::pair<std::string, std::string>>& edits) {
  for (const auto& [from, to] : edits) {
    size_t at = text.find(from);
    EXPECT_NE(std::string::npos, at) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
  }
  return text;
}

class WriteBackFormatTest : public testing_support::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write(kFile, kUser);
    root_.Write(kPhones, kPhonesFile);
    cfg::SetStoreReporter([this](const std::string& line) { reports_.push_back(line); });
    CMAgent& agent = Start();
    agent.Destroy();
    for (ExtensionData* e : agent.extensionBase)
      if (e != nullptr && e->name == "101") user_ = e;
    ASSERT_NE(nullptr, user_);
  }
  void TearDown() override {
    cfg::SetStoreReporter(nullptr);
    AgentTest::TearDown();
  }

  ExtensionData* user_ = nullptr;
  std::vector<std::string> reports_;
};

TEST_F(WriteBackFormatTest, EachOperationChangesOnlyItsLines) {
  struct Case {
    const char* what;
    std::function<bool(CMAgent&, ExtensionData*)> run;
    const char* file;
    std::vector<std::pair<std::string, std::string>> edits;
  };
  const std::string sep = "\r\n";
  const Case cases[] = {
      {"switch the forward on", [](CMAgent& a, ExtensionData* u) { return a.SwitchForwardService(u); },
       kFile, {{"\tactive=0\r\n", "\tactive=1\r\n"}}},
      {"replace the phone's number",
       [](CMAgent& a, ExtensionData* u) { return a.UpdateForwardService(u, "*9777", true, true); },
       kFile, {{"\tdestination_2=1,3,*9555\r\n", "\tdestination_2=1,3,*9777\r\n"}}},
      {"clear the phone's number",
       [](CMAgent& a, ExtensionData* u) { return a.UpdateForwardService(u, "", false, false); },
       kFile, {{"\tdestination_2=1,3,*9555\r\n", ""}}},
      {"block a new number",
       [](CMAgent& a, ExtensionData* u) { return a.BlockContact(u, "5551234", kCallNumber, true) == 0; },
       kFile,
       {{"\tname=5001\r\n\tcall_type=0\r\n}\r\n",
         "\tname=5001\r\n\tcall_type=0\r\n}\r\n\r\nsection contact 3\r\n{\r\n\tname=5551234\r\n"
         "\tcall_type=0\r\n}\r\n\r\nsection contact 3 incoming_blocking\r\n{\r\n\tactive=1\r\n}\r\n"}}},
      {"block a number of the book",
       [](CMAgent& a, ExtensionData* u) { return a.BlockContact(u, "5001", kCallNumber, false) == 0; },
       kFile,
       {{"\tname=5001\r\n\tcall_type=0\r\n}\r\n",
         "\tname=5001\r\n\tcall_type=0\r\n}\r\n\r\nsection contact 2 outgoing_blocking\r\n{\r\n"
         "\tactive=1\r\n}\r\n"}}},
      {"save a known auto-login user",
       [](CMAgent& a, ExtensionData*) {
         AuthorizedPhonesData user;
         user.phoneAddress = "10.0.0.7";
         user.phoneType = 1;
         user.extension = "101";
         user.loginTime = 9;
         return a.SaveAutologinUser(&user);
       },
       kPhones, {{"login_time = 5\r\n", "login_time = 9\r\n"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    root_.Write(kFile, kUser);
    root_.Write(kPhones, kPhonesFile);
    CMAgent& agent = Start();
    agent.Destroy();
    ExtensionData* user = nullptr;
    for (ExtensionData* e : agent.extensionBase)
      if (e != nullptr && e->name == "101") user = e;
    ASSERT_NE(nullptr, user);
    EXPECT_TRUE(c.run(agent, user));
    const std::string& original = std::string(c.file) == kFile ? kUser : kPhonesFile;
    EXPECT_EQ(Edited(original, c.edits), root_.Read(c.file));
  }
  EXPECT_EQ(std::vector<std::string>{}, reports_);
}

TEST_F(WriteBackFormatTest, ValuesThatWouldNotReadBackAreRefusedAndReported) {
  CMAgent& agent = *agent_;
  const std::string number5000(5000, '5');
  for (const std::string& number : {std::string("abc"), std::string("12\n34"), number5000}) {
    EXPECT_FALSE(agent.UpdateForwardService(user_, number, true, true)) << number;
  }
  EXPECT_EQ(2, agent.BlockContact(user_, "not a sip address", kCallSip, true));
  EXPECT_EQ(2, agent.BlockContact(user_, "sip:bob@@bad host", kCallSip, true));
  EXPECT_EQ(kUser, root_.Read(kFile));
  ASSERT_EQ(5u, reports_.size());
  EXPECT_NE(std::string::npos, reports_[0].find("number \"abc\" holds 'a'")) << reports_[0];
  EXPECT_NE(std::string::npos, reports_[1].find("holds a control character")) << reports_[1];
  EXPECT_NE(std::string::npos, reports_[2].find("is longer than 32 characters")) << reports_[2];
  EXPECT_NE(std::string::npos, reports_[3].find("SIP address \"not a sip address\""))
      << reports_[3];
  // A valid SIP contact is taken.
  EXPECT_EQ(0, agent.BlockContact(user_, "sip:bob@example.com", kCallSip, true));
}

}  // namespace
