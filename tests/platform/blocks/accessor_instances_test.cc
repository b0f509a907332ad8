#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/blocks/log_login_accessor.h"
#include "platform/blocks/tos_params_accessor.h"
#include "tests/support/temp_root.h"

namespace {

using testing_support::TempRoot;

class AccessorInstancesTest : public ::testing::Test {
 protected:
  AccessorInstancesTest() { root_.MakeDir("telephony"); }
  TempRoot root_;
};

TEST_F(AccessorInstancesTest, AnOpenInstanceIsHandedOutWhateverTheFlag) {
  GeneralSettingsAccessor* settings = GeneralSettingsAccessor::GetInstance(true);  // no file
  EXPECT_EQ(settings, GeneralSettingsAccessor::GetInstance(false));
  GeneralSettingsAccessor::CloseInstance();
  GeneralSettingsAccessor::CloseInstance();
  EXPECT_EQ(nullptr, GeneralSettingsAccessor::GetInstance(false));

  LogLoginAccessor* login = LogLoginAccessor::GetInstance(true);
  LogLoginAccessor::CloseInstance(nullptr);  // what a failed GetInstance hands back
  EXPECT_EQ(login, LogLoginAccessor::GetInstance(false));
  LogLoginAccessor::CloseInstance(login);
  LogLoginAccessor::CloseInstance(login);
  EXPECT_EQ(nullptr, LogLoginAccessor::GetInstance(false));
}

TEST_F(AccessorInstancesTest, FileIsReadAgainOnlyAfterTheLastClose) {
  GatewayAccessor::CloseInstance();  // without an instance: ignored, not counted
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = old\n}\n");
  GatewayAccessor* first = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, first);
  root_.Write("telephony/gateways.cfg", "section 1\n{\nname = new\n}\n");
  EXPECT_EQ(first, GatewayAccessor::GetInstance(false));
  GatewayAccessor::CloseInstance();
  GatewayAccessor* still_open = GatewayAccessor::GetInstance(false);
  EXPECT_EQ("old", still_open->GetBlock(1)->name);  // one reference left: not re-read
  GatewayAccessor::CloseInstance();
  GatewayAccessor::CloseInstance();

  GatewayAccessor* fresh = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, fresh);
  EXPECT_EQ("new", fresh->GetBlock(1)->name);
  GatewayAccessor::CloseInstance();
}

TEST_F(AccessorInstancesTest, NewInstanceFollowsTheCurrentRoot) {
  root_.Write("telephony/log_login.cfg", "section login\n{\nlogin_trace = 1\n}\n");
  TempRoot other;  // now ORBA_PATH points here
  other.Write("telephony/log_login.cfg", "section login\n{\nlogin_trace = 2\n}\n");
  LogLoginAccessor* login = LogLoginAccessor::GetInstance(false);
  ASSERT_NE(nullptr, login);
  EXPECT_EQ(2, login->loginTrace);
  LogLoginAccessor::CloseInstance(login);
}

TEST_F(AccessorInstancesTest, ThreadsShareOneInstance) {
  root_.Write("telephony/tos.cfg", "section 1\n{\nname = voice\n}\n");
  TosParamsAccessor* held = TosParamsAccessor::GetInstance(false);
  std::vector<std::thread> threads;
  std::vector<int> mismatches(4, 0);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t, held, &mismatches] {
      for (int i = 0; i < 500; ++i) {
        if (TosParamsAccessor::GetInstance(false) != held) ++mismatches[t];
        TosParamsAccessor::CloseInstance();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(std::vector<int>(4, 0), mismatches);
  TosParamsAccessor::CloseInstance();
}

}  // namespace
