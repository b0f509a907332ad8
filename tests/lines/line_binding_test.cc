#include <gtest/gtest.h>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

const char kLoggingOn[] = "section logging\n{\nlog_enabled = 1\n}\n";
// Gateway 1 is local, gateway 2 remote; there is no gateway 9.
const char kGateways[] =
    "section 1\n{\nname = main\ntype = 1\n}\n"
    "section 2\n{\nname = branch\ntype = 2\n}\n";

std::string Binding(const std::string& endpoint, const std::string& extension,
                    unsigned presentation = 0) {
  return "section binding " + endpoint + "\n{\nextension = " + extension +
         "\npresentation_id = " + std::to_string(presentation) + "\n}\n";
}

class LineBindingTest : public AgentTest {
 protected:
  // The agent over `linedb`, with logging on.
  CMAgent& StartWith(const std::string& linedb) {
    root_.Write("telephony/general.cfg", kLoggingOn);
    root_.Write("telephony/gateways.cfg", kGateways);
    root_.Write("telephony/linedb", linedb);
    return Start();
  }
  bool Logged(const std::string& line) const {
    return root_.Read("cmcfg.log").find(line) != std::string::npos;
  }
};

// What start-up binds is pinned by the tool's root cases; here, what the
// call does with the record it is given.
TEST_F(LineBindingTest, AVirtualExtensionLeavesTheRecordAsItWas) {
  CMAgent& agent = StartWith(Binding("1/3", "103") + "section fxs 1/3\n{\n}\n");
  LineSettings line;
  EXPECT_TRUE(agent.GetLineData("103", &line, nullptr));
  bool flag = true;
  EXPECT_TRUE(agent.GetLineData("999", &line, &flag));
  EXPECT_FALSE(flag);
  EXPECT_EQ(3u, line.lineId);
}

TEST_F(LineBindingTest, NullLineOnlyChecksTheGatewayOfTheFirstEntry) {
  // No FXS section at all, and a second entry with a missing gateway.
  CMAgent& agent = StartWith(Binding("1/3", "103") + Binding("9/1", "103"));
  bool flag = true;
  EXPECT_TRUE(agent.GetLineData("103", nullptr, &flag));
  EXPECT_FALSE(flag);
  EXPECT_FALSE(Logged("GetLineData: missing FXS data"));

  LineSettings line;
  EXPECT_FALSE(agent.GetLineData("103", &line, &flag));
  EXPECT_FALSE(flag);
  EXPECT_EQ(INACTIVE_PARTY, line.gatewayId);
  EXPECT_TRUE(Logged("GetLineData: missing FXS data for extension 103.\n"));
}

TEST_F(LineBindingTest, AfterDestroyEachCallOpensAndDropsItsOwnManagers) {
  const std::string port = "section fxs 1/3\n{\n}\nsection fxs 1/4\n{\n}\n";
  CMAgent& agent = StartWith(Binding("1/3", "103") + port);
  agent.Destroy();

  LineSettings line;
  EXPECT_TRUE(agent.GetLineData("103", &line, nullptr));
  EXPECT_EQ(3u, line.lineId);
  EXPECT_EQ(nullptr, agent.lineManager);
  EXPECT_EQ(nullptr, agent.fxsLineManager);

  // Files changed since: the next call reads them again, the gateways too
  // (the accessor was closed, not kept open).
  root_.Write("telephony/linedb", Binding("1/4", "103", 2) + port);
  EXPECT_TRUE(agent.GetLineData("103", &line, nullptr));
  EXPECT_EQ(4u, line.lineId);
  EXPECT_EQ(2u, line.presentationId);
  root_.Write("telephony/gateways.cfg", "section 1\n{\ntype = 2\n}\n");
  EXPECT_TRUE(agent.GetLineData("103", &line, nullptr));
  EXPECT_EQ(1, line.remote.isRemote);
  EXPECT_EQ(4u, line.remote.lineId);

  root_.Write("telephony/gateways.cfg", "");
  EXPECT_FALSE(agent.GetLineData("103", nullptr, nullptr));
  EXPECT_EQ(nullptr, agent.lineManager);
}

}  // namespace
