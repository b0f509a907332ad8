#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

const char kThreeUsers[] =
    "# external users\n"
    "section a\n{\nE164_phone_number = +4930123\nuser_name = alice\nuser_display_name = Alice A\n"
    "user_host_address = 10.0.0.7\nuser_host_port = 5062\nregistration_date_and_time = 1700000000\n}\n"
    "section b\n{\nuser_name = bob\nregistration_date_and_time = abc\n}\n"
    "section c\n{\nuser_name = carol\n}\n";

class ExternalUsersTest : public AgentTest {
 protected:
  std::list<ExternalUserEntry> users_;
};

TEST_F(ExternalUsersTest, ReadsEverySectionInOrder) {
  root_.Write("users.db", kThreeUsers);
  CMAgent& agent = Start();
  ASSERT_TRUE(agent.GetExternalUserDB(root_.Path("users.db"), &users_, false));
  ASSERT_EQ(3u, users_.size());
  const ExternalUserEntry& alice = users_.front();
  EXPECT_EQ("+4930123", alice.e164Number);
  EXPECT_EQ("alice", alice.userName);
  EXPECT_EQ("Alice A", alice.displayName);
  EXPECT_EQ("10.0.0.7", alice.host);
  EXPECT_EQ("5062", alice.port);
  EXPECT_EQ(1700000000L, alice.registrationTime);
  const ExternalUserEntry& bob = *std::next(users_.begin());
  EXPECT_EQ(0L, bob.registrationTime);  // "abc"
  EXPECT_EQ("", bob.e164Number);
  EXPECT_EQ("", bob.host);
  EXPECT_EQ(kThreeUsers, root_.Read("users.db"));  // untouched without trimming
}

TEST_F(ExternalUsersTest, TrimmingDropsUsersFromTheEndOfTheFile) {
  root_.Write("users.db", kThreeUsers);
  CMAgent& agent = Start();
  agent.generalData.maxExternalUsers = 2;
  ASSERT_TRUE(agent.GetExternalUserDB(root_.Path("users.db"), &users_, true));
  ASSERT_EQ(2u, users_.size());
  EXPECT_EQ("bob", users_.back().userName);
  std::string saved = root_.Read("users.db");
  EXPECT_EQ(std::string::npos, saved.find("carol"));
  EXPECT_NE(std::string::npos, saved.find("bob"));

  users_.clear();
  ASSERT_TRUE(agent.GetExternalUserDB(root_.Path("users.db"), &users_, false));
  EXPECT_EQ(2u, users_.size());
}

TEST_F(ExternalUsersTest, UnderTheLimitNothingIsWritten) {
  root_.Write("users.db", kThreeUsers);
  CMAgent& agent = Start();
  ASSERT_TRUE(agent.GetExternalUserDB(root_.Path("users.db"), &users_, true));  // limit 32
  EXPECT_EQ(3u, users_.size());
  EXPECT_EQ(kThreeUsers, root_.Read("users.db"));
}

TEST_F(ExternalUsersTest, ImpossibleLimitsAndForeignFilesAreNeverTrimmed) {
  root_.Write("users.db", kThreeUsers);
  CMAgent& agent = Start();
  agent.generalData.maxExternalUsers = -1;  // would have emptied the file
  ASSERT_TRUE(agent.GetExternalUserDB(root_.Path("users.db"), &users_, true));
  EXPECT_EQ(3u, users_.size());
  EXPECT_EQ(kThreeUsers, root_.Read("users.db"));

  // A cache named outside the configuration root is read but not written.
  testing_support::TempRoot elsewhere;  // takes the root over; ours is put back below
  elsewhere.Write("users.db", kThreeUsers);
  const std::string foreign = elsewhere.Path("users.db");
  setenv("ORBA_PATH", root_.path().c_str(), 1);
  agent.generalData.maxExternalUsers = 1;
  ASSERT_TRUE(agent.GetExternalUserDB(foreign, &users_, true));
  EXPECT_EQ(3u, users_.size());
  EXPECT_EQ(kThreeUsers, elsewhere.Read("users.db"));
  // A link inside the root that leads out of it is neither read nor written.
  ASSERT_EQ(0, symlink(foreign.c_str(), root_.Path("link.db").c_str()));
  EXPECT_FALSE(agent.GetExternalUserDB(root_.Path("link.db"), &users_, true));
  EXPECT_EQ(kThreeUsers, elsewhere.Read("users.db"));
}

TEST_F(ExternalUsersTest, NoSectionMeansFalseAndAnEmptyList) {
  root_.Write("empty.db", "# nobody yet\n");
  CMAgent& agent = Start();
  users_.resize(2);
  EXPECT_FALSE(agent.GetExternalUserDB(root_.Path("empty.db"), &users_, true));
  EXPECT_TRUE(users_.empty());
  EXPECT_FALSE(agent.GetExternalUserDB(root_.Path("missing.db"), &users_, true));
  EXPECT_FALSE(agent.GetExternalUserDB("", &users_, false));
  EXPECT_FALSE(agent.GetExternalUserDB(root_.Path("telephony/"), &users_, true));  // a folder
}

TEST_F(ExternalUsersTest, StartUpReadsTheExternalUserDatabase) {
  root_.Write("telephony/externaluserdb", kThreeUsers);
  CMAgent& agent = Start();
  EXPECT_EQ(root_.Path("telephony/externaluserdb"), agent.generalData.externalUserDb);
  EXPECT_EQ(3u, agent.generalData.externalUsers.size());
  // The default cache name is the telephony folder itself: nothing to read.
  EXPECT_TRUE(agent.generalData.externalUserCache.empty());
}

}  // namespace
