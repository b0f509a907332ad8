// The auto-login phones when their file cannot be read. Their reading and
// saving are pinned with the other write-backs (tests/services/write_back_test.cc),
// where a fresh agent reads every saved list back in order, missing keys
// as their defaults.
#include <gtest/gtest.h>

#include "tests/support/agent_fixture.h"

namespace {

class AutologinTest : public testing_support::AgentTest {};

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
