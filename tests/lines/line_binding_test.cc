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

TEST_F(LineBindingTest, LocalEndpointFillsTheLineAndLeavesRemoteUnset) {
  CMAgent& agent = StartWith(
      Binding("1/2", "104") + Binding("1/3", "103", 7) +
      "section fxs 1/3\n{\ndisconnect_mode = 1\ndisconnect_min_ms = 300\n"
      "disconnect_max_ms = 800\ndisconnect_delay_s = 2\ncaller_id_type = 4\n}\n");
  LineSettings line;
  bool flag = true;
  EXPECT_TRUE(agent.GetLineData("103", &line, &flag));
  EXPECT_FALSE(flag);
  EXPECT_EQ(1u, line.gatewayId);
  EXPECT_EQ(3u, line.lineId);
  EXPECT_EQ(7u, line.presentationId);
  EXPECT_EQ(4, line.fxsExtra);
  EXPECT_EQ(300, line.disconnect.values[1]);
  EXPECT_EQ(2, line.disconnect.values[3]);
  EXPECT_EQ(INACTIVE_PARTY, line.remote.gatewayId);
  EXPECT_TRUE(
      Logged("GetLineData: extension 103 is attached to FXS endpoint MG{1}<3>, presentation ID - "
             "7.\n"));

  // An extension without entries is virtual; the record is never reset here.
  flag = true;
  EXPECT_TRUE(agent.GetLineData("999", &line, &flag));
  EXPECT_FALSE(flag);
  EXPECT_EQ(3u, line.lineId);
}

// Each extension has a remote and a local endpoint, then an entry whose
// gateway is missing: it would fail the call if the walk went on.
TEST_F(LineBindingTest, LocalAndRemoteAreBothBoundInEitherOrder) {
  const std::string ports =
      "section fxs 1/3\n{\ncaller_id_type = 1\n}\n"
      "section fxs 1/4\n{\n}\n"
      "section fxs 2/1\n{\nrtp_proxy = 1\nsymmetric_rtp = 0\n}\n"
      "section fxs 2/2\n{\nrtp_proxy = 0\nsymmetric_rtp = 3\n}\n";
  CMAgent& agent =
      StartWith(Binding("2/1", "201") + Binding("1/3", "201", 3) + Binding("9/1", "201") +
                Binding("1/4", "202", 4) + Binding("2/2", "202") + Binding("9/2", "202") + ports);

  LineSettings first;
  EXPECT_TRUE(agent.GetLineData("201", &first, nullptr));
  EXPECT_EQ(1, first.remote.isRemote);
  EXPECT_EQ(1u, first.remote.lineId);
  EXPECT_EQ(1, first.remote.rtpProxy);
  EXPECT_EQ(3u, first.lineId);
  EXPECT_EQ(1, first.fxsExtra);

  LineSettings second;
  EXPECT_TRUE(agent.GetLineData("202", &second, nullptr));
  EXPECT_EQ(2u, second.remote.lineId);
  EXPECT_EQ(3, second.remote.symmetricRtp);
  EXPECT_EQ(4u, second.lineId);

  EXPECT_TRUE(Logged(
      "GetLineData: extension 201 has remote FXS endpoint MG{2}<1>, RTP proxy - On, symmetric "
      "RTP - Off.\n"));
  EXPECT_TRUE(Logged(
      "GetLineData: extension 202 has remote FXS endpoint MG{2}<2>, RTP proxy - Off, symmetric "
      "RTP - On.\n"));
  EXPECT_FALSE(Logged("failed to load FXS data"));
}

TEST_F(LineBindingTest, MissingGatewayFailsAtTheFirstEntry) {
  CMAgent& agent = StartWith(Binding("9/1", "103") + Binding("1/3", "103") +
                             "section fxs 1/3\n{\n}\nsection fxs 9/1\n{\n}\n");
  LineSettings line;
  EXPECT_FALSE(agent.GetLineData("103", &line, nullptr));
  EXPECT_FALSE(agent.GetLineData("103", nullptr, nullptr));
  EXPECT_EQ(INACTIVE_PARTY, line.gatewayId);  // the later, good entry is not reached
  EXPECT_TRUE(Logged("GetLineData: failed to load FXS data for extension 103.\n"));
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
