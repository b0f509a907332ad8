#include <gtest/gtest.h>

#include "cmcfg/media_agent_config.h"
#include "platform/base/config_root.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/line/line_manager.h"
#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

const char kLineDb[] =
    "section fxs 1/1\n{\n}\nsection fxs 1/2\n{\n}\nsection fxo 1/5\n{\nnumber = 0301\n}\n";

class MediaAgentConfigTest : public AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    root_.Write("telephony/linedb", kLineDb);
  }
};

TEST_F(MediaAgentConfigTest, OpensOneOwnedManagerOfEachKindOnce) {
  MediaAgentConfig config;
  config.SetFxsLineManager(nullptr);
  LineManager* fxs = config.fxsLineManager;
  ASSERT_NE(nullptr, fxs);
  config.SetFxsLineManager(nullptr);  // one is held: kept, no second one leaks
  EXPECT_EQ(fxs, config.fxsLineManager);
  EXPECT_EQ(1, config.ownsFxsLineManager);
  EXPECT_EQ(2u, fxs->GetLines(false).size());

  config.SetFxoLineManager(nullptr);
  ASSERT_NE(nullptr, config.fxoLineManager);
  EXPECT_EQ(LineManagerBase::kFxoLines, config.fxoLineManager->GetType());
  EXPECT_EQ(1u, config.fxoLineManager->GetLines(false).size());

  config.UnsetFxsLineManager();
  EXPECT_EQ(nullptr, config.fxsLineManager);
  EXPECT_EQ(0, config.ownsFxsLineManager);
}

TEST_F(MediaAgentConfigTest, HandedInManagersReplaceOwnedOnesAndOutliveTheObject) {
  LineManager fxs(LineManagerBase::kFxsLines, cfg::TelephonyPath("linedb"), false);
  {
    MediaAgentConfig config;
    config.SetFxsLineManager(nullptr);
    config.SetFxsLineManager(&fxs);  // the owned one is deleted (a leak otherwise)
    EXPECT_EQ(&fxs, config.fxsLineManager);
    EXPECT_EQ(0, config.ownsFxsLineManager);
    config.SetFxsLineManager(nullptr);
    EXPECT_EQ(&fxs, config.fxsLineManager);
  }
  EXPECT_EQ(2u, fxs.GetLines(true).size());  // not deleted by the object

  MediaAgentConfig config;
  config.SetFxoLineManager(nullptr);
  LineManager* owned = config.fxoLineManager;
  config.SetFxoLineManager(owned);  // its own manager handed back: neither deleted nor leaked
  EXPECT_EQ(1, config.ownsFxoLineManager);
  EXPECT_EQ(1u, owned->GetLines(true).size());
}

TEST_F(MediaAgentConfigTest, GatewayAccessorIsClosedOnlyWhenOpenedHere) {
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = main\n}\n");
  GatewayAccessor* mine = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, mine);
  {
    MediaAgentConfig config;
    config.SetGatewayAccessor(mine);
    EXPECT_EQ(0, config.ownsGatewayAccessor);
  }
  ASSERT_NE(nullptr, mine->GetBlock(1));  // still open
  GatewayAccessor::CloseInstance();

  {
    MediaAgentConfig config;
    config.SetGatewayAccessor(nullptr);
    ASSERT_NE(nullptr, config.gatewayAccessor);
    EXPECT_EQ(1, config.ownsGatewayAccessor);
  }
  // Every reference is dropped: the next instance reads the changed file.
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = renamed\n}\n");
  mine = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, mine);
  EXPECT_EQ("renamed", mine->GetBlock(1)->name);
  GatewayAccessor::CloseInstance();
}

TEST_F(MediaAgentConfigTest, InterfaceCountsAreReadAfreshFromTheGeneralSettings) {
  MediaAgentConfig config;
  // No general.cfg: the settings cannot be opened.
  EXPECT_EQ(1u, config.GetNumOfIsdn());
  EXPECT_EQ(1u, config.GetNumOfE1T1());

  root_.Write("telephony/general.cfg",
              "section pstn\n{\nisdn_interfaces = 3\ne1t1_interfaces = 0\n}\n");
  EXPECT_EQ(3u, config.GetNumOfIsdn());
  EXPECT_EQ(0u, config.GetNumOfE1T1());  // zero is a count, not a fallback

  // Another holder keeps the shared settings open: the change is still seen.
  GeneralSettingsAccessor* held = GeneralSettingsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, held);
  root_.Write("telephony/general.cfg", "section pstn\n{\ne1t1_interfaces = 4\n}\n");
  EXPECT_EQ(1u, config.GetNumOfIsdn());  // the key is gone: its default
  EXPECT_EQ(4u, config.GetNumOfE1T1());
  GeneralSettingsAccessor::CloseInstance();
}

}  // namespace
