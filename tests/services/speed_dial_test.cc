#include <gtest/gtest.h>

#include <string>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

const char kLoggingOn[] = "section logging\n{\nlog_enabled = 1\n}\n";

std::string Entry(int id, const std::string& code, int type, const std::string& key,
                  const std::string& value) {
  return "section speed_dial " + std::to_string(id) + "\n{\ncalling_code = " + code +
         "\ndest_type = " + std::to_string(type) + "\n" + key + " = " + value + "\n}\n";
}

class SpeedDialTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/general.cfg", kLoggingOn);
    root_.Write("telephony/extensiondb/user/101.cfg",
                Entry(1, "#5", 0, "destination", "105") +
                    Entry(2, "*12", 0, "destination", "112") +
                    Entry(3, "#07", 0, "destination", "104") +
                    Entry(4, "#0a", 0, "destination", "110") +
                    Entry(5, "#123", 0, "destination", "123") +
                    Entry(6, "#03", 1, "address", "sip:orders@supplier.example:5070") +
                    Entry(7, "#07", 2, "destination", "0215550100"));
  }
  std::string Log() const { return root_.Read("cmcfg.log"); }

  static ExtensionData Record(const std::string& name, ExtType type) {
    ExtensionData record;
    record.name = name;
    record.type = type;
    return record;
  }

  static void ExpectList(const ExtensionData& record) {
    ASSERT_EQ(3u, record.speedDial.size());
    const ForwardParams& sip = record.speedDial[0].second;
    EXPECT_EQ((KeySequence{0x123, 0x100, 0x103}), record.speedDial[0].first);
    EXPECT_EQ(kCallSip, sip.callType);
    EXPECT_EQ("orders", sip.userName);
    EXPECT_EQ("supplier.example", sip.host);
    EXPECT_EQ("5070", sip.port);
    // Two entries of one code stay in file order.
    EXPECT_EQ((KeySequence{0x123, 0x100, 0x107}), record.speedDial[1].first);
    EXPECT_EQ("104", record.speedDial[1].second.userName);
    EXPECT_EQ(kCallNumber, record.speedDial[1].second.callType);
    EXPECT_EQ((KeySequence{0x123, 0x100, 0x107}), record.speedDial[2].first);
    EXPECT_EQ("0215550100", record.speedDial[2].second.userName);
    EXPECT_EQ(kCallPstn, record.speedDial[2].second.callType);
    EXPECT_TRUE(record.speedDial[2].second.host.empty());
  }
};

TEST_F(SpeedDialTest, ThreeCharacterPoundCodesOnlyInKeyOrder) {
  CMAgent& agent = Start();
  ExtensionData record = Record("101", kExtUser);
  ASSERT_TRUE(agent.GetSpeedDialList(&record));
  ExpectList(record);
  std::string log = Log();
  EXPECT_NE(std::string::npos,
            log.find("GetSpeedDialList: calling code has wrong length - 2(#5).\n"));
  EXPECT_NE(std::string::npos,
            log.find("GetSpeedDialList: calling code has wrong length - 4(#123).\n"));
  EXPECT_EQ(std::string::npos, log.find("(*12)"));
  EXPECT_EQ(std::string::npos, log.find("(#0a)"));
  EXPECT_NE(std::string::npos,
            log.find("GetSpeedDialList: extension 101, number of entries = 3.\n"));
}

TEST_F(SpeedDialTest, OtherKindsAndMissingExtensionsHaveNoList) {
  CMAgent& agent = Start();
  ExtensionData pickup = Record("101", kExtPickup);
  pickup.speedDial.emplace_back(KeySequence{0x123}, ForwardParams());
  EXPECT_FALSE(agent.GetSpeedDialList(&pickup));
  EXPECT_TRUE(pickup.speedDial.empty());

  ExtensionData missing = Record("999", kExtUser);
  missing.speedDial.emplace_back(KeySequence{0x123}, ForwardParams());
  EXPECT_FALSE(agent.GetSpeedDialList(&missing));
  EXPECT_TRUE(missing.speedDial.empty());
  EXPECT_NE(std::string::npos, Log().find("GetSpeedDialList: failed to load extension 999.\n"));
  EXPECT_FALSE(agent.GetSpeedDialList(nullptr));
}

TEST_F(SpeedDialTest, AfterDestroy) {
  CMAgent& agent = Start();
  agent.Destroy();
  ExtensionData record = Record("101", kExtUser);
  record.speedDial.emplace_back(KeySequence{0x123}, ForwardParams());  // replaced
  ASSERT_TRUE(agent.GetSpeedDialList(&record));
  ExpectList(record);
  EXPECT_EQ(nullptr, agent.extensionManager);
}

}  // namespace
