// The per-extension profile queries called after start-up; what start-up
// loads is pinned by the root cases of the tool's golden tests.
#include <gtest/gtest.h>

#include "cmcfg/cm_agent.h"
#include "tests/support/agent_fixture.h"

namespace {

class ProfileQueriesTest : public testing_support::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/general.cfg",
                "section logging\n{\nlog_enabled = 1\n}\n"
                "section system\n{\nsystem_prefix = pbx-\n}\n");
    root_.Write("telephony/extensiondb/user/101.cfg", "section sip\n{\nhost = 10.0.0.1\n}\n");
    root_.Write("telephony/extensiondb/attendant/100.cfg", "section attendant\n{\nqueue_size = 9\n}\n");
    root_.Write("telephony/extensiondb/system.cfg", "section database\n{\nsystem_attendant = 100\n}\n");
  }
  ExtensionData* Find(const std::string& name) {
    for (ExtensionData* e : agent_->extensionBase)
      if (e != nullptr && e->name == name) return e;
    return nullptr;
  }
  bool Logged(const std::string& line) const {
    return root_.Read("cmcfg.log").find(line) != std::string::npos;
  }
};

TEST_F(ProfileQueriesTest, AfterDestroyEachQueryReadsTheFileThroughAManagerOfItsOwn) {
  CMAgent& agent = Start();
  agent.Destroy();
  root_.Write("telephony/extensiondb/user/101.cfg",
              "section sip\n{\nuser_name = moved\nhost = 10.0.0.9\n}\n"
              "section call_park\n{\ntimeout_minutes = 2\n}\n");
  root_.Write("telephony/extensiondb/attendant/100.cfg",
              "section attendant\n{\nqueue_size = 4\n}\nsection personal\n{\nfull_name = Night\n}\n"
              "section sip\n{\nhost = 10.0.0.6\n}\n");
  ExtensionData* e = Find("101");
  ASSERT_TRUE(agent.GetSipData(e, nullptr, nullptr));
  EXPECT_EQ("10.0.0.9", e->sip.host);
  std::string given = "given";
  ASSERT_TRUE(agent.GetSipData(e, nullptr, &given));
  EXPECT_EQ(0u, e->sip.userName.rfind("pbx-given", 0));
  // A user has no call-park property, whatever its file holds.
  const auto timeout = e->callParkTimeout;
  EXPECT_FALSE(agent.GetCallParkData(e, nullptr));
  EXPECT_EQ(timeout, e->callParkTimeout);

  Attendant* console = agent.attendants[0];
  EXPECT_TRUE(agent.GetAttGeneralParams(console));
  EXPECT_TRUE(agent.GetAttPersonalInfo(console));
  EXPECT_TRUE(agent.GetAttIpData(console, true, nullptr));
  EXPECT_EQ(4, console->queueSize);
  EXPECT_EQ("Night", console->displayName);
  EXPECT_EQ("10.0.0.6", console->sip.host);
  // No user name: the agent's default stem with the system prefix.
  EXPECT_EQ(0u, console->sip.userName.rfind("kaIfArIkNiCkpbx-", 0)) << console->sip.userName;

  // A late load reads the file the same way.
  EXPECT_EQ(1, agent.LoadExtensionDB("101", kExtUser));
  EXPECT_EQ("10.0.0.9", agent.extensionBase.back()->sip.host);
  EXPECT_EQ(nullptr, agent.extensionManager);
}

TEST_F(ProfileQueriesTest, AMissingExtensionFailsLeavesTheRecordAndIsLogged) {
  CMAgent& agent = Start();
  ExtensionData ghost;
  ghost.name = "777";
  ghost.callParkTimeout = 42;
  EXPECT_FALSE(agent.GetCallParkData(&ghost, nullptr));
  EXPECT_FALSE(agent.GetSipData(&ghost, nullptr, nullptr));
  EXPECT_EQ(42, ghost.callParkTimeout);
  EXPECT_TRUE(ghost.sip.host.empty());
  agent.Destroy();
  EXPECT_FALSE(agent.GetAutoCallData(&ghost, nullptr));
  EXPECT_TRUE(Logged("GetCallParkData: failed to load extension 777.\n"));
  EXPECT_TRUE(Logged("GetAutoCallData: failed to load extension 777.\n"));
  Attendant stranger;
  stranger.name = "999";
  EXPECT_FALSE(agent.GetAttGeneralParams(&stranger));
  EXPECT_TRUE(Logged("GetAttGeneralParams: failed to load extension 999.\n"));

  const size_t before = agent.extensionBase.size();
  EXPECT_EQ(0, agent.LoadExtensionDB("777", kExtUser));
  EXPECT_EQ(0, agent.LoadExtensionDB("", kExtUser));
  EXPECT_EQ(before, agent.extensionBase.size());
  EXPECT_TRUE(Logged("*** LoadExtensionDB: failed to load extension 777 ***\n"));
}

// A query given no record fails, whether the agent holds its managers or
// has dropped them.
TEST_F(ProfileQueriesTest, EveryQueryRefusesANullRecord) {
  CMAgent& agent = Start();
  for (bool destroyed : {false, true}) {
    if (destroyed) agent.Destroy();
    EXPECT_FALSE(agent.GetCodecData(nullptr, nullptr));
    EXPECT_FALSE(agent.GetAttCodecData(nullptr, nullptr));
    EXPECT_FALSE(agent.GetServicesTimeouts(nullptr, nullptr, nullptr, false));
    EXPECT_FALSE(agent.GetCallParkData(nullptr, nullptr));
    EXPECT_FALSE(agent.GetSipData(nullptr, nullptr, nullptr));
    EXPECT_FALSE(agent.GetPersonalInfo(nullptr, nullptr));
    EXPECT_FALSE(agent.GetAccessList(nullptr, nullptr));
    EXPECT_FALSE(agent.GetGroupList(nullptr, nullptr));
    EXPECT_FALSE(agent.GetAutoRedialData(nullptr, nullptr));
    EXPECT_FALSE(agent.GetAutoCallData(nullptr, nullptr));
    EXPECT_FALSE(agent.GetAttGeneralParams(nullptr));
    EXPECT_FALSE(agent.GetAttPersonalInfo(nullptr));
    EXPECT_FALSE(agent.GetAttIpData(nullptr, true, nullptr));
    EXPECT_FALSE(agent.GetPstnAgentsChannels(nullptr, nullptr));
  }
}

}  // namespace
