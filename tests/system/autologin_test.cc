// The auto-login phones read into the general data (their saves are pinned
// with the other write-backs in tests/services/write_back_test.cc).
#include <gtest/gtest.h>

#include "tests/support/agent_fixture.h"

namespace {

class AutologinTest : public testing_support::AgentTest {};

TEST_F(AutologinTest, LoadsBlocksInOrderWithDefaultsForMissingKeys) {
  CMAgent& agent = Start();
  EXPECT_TRUE(agent.GetAutologinDB());  // no file: an empty list
  EXPECT_TRUE(agent.generalData.authorizedPhones.empty());
  root_.Write("telephony/authorized_phones.cfg",
              "section 1\n{\nphone_address = 00:04:13:2a:10:01\nextension = 201\nphone_type = 2\n"
              "line_count = 4\nuser_name = Reception\npermissions = 7\nlogin_time = 100\n}\n"
              "section 2\n{\nphone_address = 00:04:13:2a:10:02\nextension = 202\nphone_type = 3\n}\n");
  ASSERT_TRUE(agent.GetAutologinDB());
  std::vector<std::string> phones;
  for (const AuthorizedPhonesData& p : agent.generalData.authorizedPhones)
    phones.push_back(p.phoneAddress + " " + p.extension + " " + std::to_string(p.phoneType) + " " +
                     std::to_string(p.lineCount) + " " + p.userName + " " + std::to_string(p.permissions) + " " +
                     std::to_string(p.loginTime));
  EXPECT_EQ((std::vector<std::string>{"00:04:13:2a:10:01 201 2 4 Reception 7 100", "00:04:13:2a:10:02 202 3 2  0 0"}),
            phones);
}

TEST_F(AutologinTest, UnreadablePhonesGiveAnEmptyListAndNoSave) {
  root_.MakeDir("telephony/authorized_phones.cfg");  // a folder where the file should be
  CMAgent& agent = Start();
  agent.generalData.authorizedPhones.emplace_back();
  agent.GetAutologinDB();
  EXPECT_TRUE(agent.generalData.authorizedPhones.empty());
  AuthorizedPhonesData phone;
  phone.phoneAddress = "10.0.0.7";
  EXPECT_FALSE(agent.SaveAutologinUser(&phone));
  EXPECT_TRUE(agent.generalData.authorizedPhones.empty());
}

}  // namespace
