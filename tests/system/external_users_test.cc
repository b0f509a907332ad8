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

// What is read is pinned by the tool's root cases; here, the trimming.
TEST_F(ExternalUsersTest, TrimmingDropsUsersFromTheEndOnlyPastAPossibleLimit) {
  const struct {
    int limit;
    size_t kept;
  } cases[] = {{2, 2}, {3, 3}, {32, 3}, {-1, 3} /* would have emptied the file */};
  for (const auto& c : cases) {
    root_.Write("users.db", kThreeUsers);
    CMAgent& agent = Start();
    agent.generalData.maxExternalUsers = c.limit;
    users_.clear();
    ASSERT_TRUE(agent.GetExternalUserDB(root_.Path("users.db"), &users_, true));
    EXPECT_EQ(c.kept, users_.size()) << c.limit;
    users_.clear();
    ASSERT_TRUE(agent.GetExternalUserDB(root_.Path("users.db"), &users_, false));
    EXPECT_EQ(c.kept, users_.size()) << c.limit;
    EXPECT_EQ(c.kept == 3, root_.Read("users.db") == kThreeUsers) << c.limit;
    EXPECT_EQ(c.kept == 3 ? "carol" : "bob", users_.back().userName);
  }
}

TEST_F(ExternalUsersTest, ForeignFilesAreNeverTrimmed) {
  CMAgent& agent = Start();
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

}  // namespace
