#include <gtest/gtest.h>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

const char kTwoPhones[] =
    "section 1\n{\nphone_address = 00:04:13:2a:10:01\nextension = 201\nphone_type = 2\n"
    "line_count = 4\nuser_name = Reception\npermissions = 7\nlogin_time = 100\n}\n"
    "section 2\n{\nphone_address = 00:04:13:2a:10:02\nextension = 202\nphone_type = 3\n}\n";

class AutologinTest : public AgentTest {
 protected:
  AuthorizedPhonesData User(const std::string& address, int type) {
    AuthorizedPhonesData user;
    user.phoneAddress = address;
    user.phoneType = type;
    user.extension = "305";
    user.lineCount = 9;
    user.userName = "Night shift";
    user.permissions = 1;
    user.loginTime = 5000;
    return user;
  }
};

TEST_F(AutologinTest, NoBlocksGiveAnEmptyList) {
  CMAgent& agent = Start();
  EXPECT_TRUE(agent.GetAutologinDB());
  EXPECT_TRUE(agent.generalData.authorizedPhones.empty());
}

TEST_F(AutologinTest, LoadsBlocksInOrder) {
  root_.Write("telephony/authorized_phones.cfg", kTwoPhones);
  CMAgent& agent = Start();
  const std::list<AuthorizedPhonesData>& phones = agent.generalData.authorizedPhones;
  ASSERT_EQ(2u, phones.size());
  EXPECT_EQ("201", phones.front().extension);
  EXPECT_EQ(4, phones.front().lineCount);
  EXPECT_EQ(7, phones.front().permissions);
  EXPECT_EQ(3, phones.back().phoneType);
  EXPECT_EQ(2, phones.back().lineCount);
}

TEST_F(AutologinTest, SavingAKnownPhoneUpdatesOnlyItsLoginFields) {
  root_.Write("telephony/authorized_phones.cfg", kTwoPhones);
  CMAgent& agent = Start();
  AuthorizedPhonesData user = User("00:04:13:2a:10:01", 2);
  ASSERT_TRUE(agent.SaveAutologinUser(&user));

  const AuthorizedPhonesData& listed = agent.generalData.authorizedPhones.front();
  EXPECT_EQ("305", listed.extension);
  EXPECT_EQ(5000, listed.loginTime);
  EXPECT_EQ("Reception", listed.userName);  // the list keeps its user name

  ASSERT_TRUE(agent.GetAutologinDB());  // what was stored
  const AuthorizedPhonesData& stored = agent.generalData.authorizedPhones.front();
  EXPECT_EQ("305", stored.extension);
  EXPECT_EQ("Night shift", stored.userName);
  EXPECT_EQ(5000, stored.loginTime);
  EXPECT_EQ(4, stored.lineCount);     // never changed by a save
  EXPECT_EQ(7, stored.permissions);
  EXPECT_EQ(2u, agent.generalData.authorizedPhones.size());
}

TEST_F(AutologinTest, SameAddressOfAnotherTypeIsANewPhone) {
  root_.Write("telephony/authorized_phones.cfg", kTwoPhones);
  CMAgent& agent = Start();
  AuthorizedPhonesData user = User("00:04:13:2a:10:01", 5);
  ASSERT_TRUE(agent.SaveAutologinUser(&user));
  ASSERT_EQ(3u, agent.generalData.authorizedPhones.size());
  EXPECT_EQ(5, agent.generalData.authorizedPhones.back().phoneType);

  ASSERT_TRUE(agent.GetAutologinDB());
  ASSERT_EQ(3u, agent.generalData.authorizedPhones.size());
  const AuthorizedPhonesData& added = agent.generalData.authorizedPhones.back();
  EXPECT_EQ(9, added.lineCount);
  EXPECT_EQ(1, added.permissions);
  EXPECT_EQ("Reception", agent.generalData.authorizedPhones.front().userName);
}

}  // namespace
