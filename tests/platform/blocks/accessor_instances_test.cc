#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/general_paths.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/blocks/log_login_accessor.h"
#include "platform/blocks/tos_params_accessor.h"
#include "tests/support/temp_root.h"

namespace {

using testing_support::TempRoot;

class AccessorInstancesTest : public ::testing::Test {
 protected:
  AccessorInstancesTest() { root_.MakeDir("telephony"); }
  // Replaces a file in one step (renamed over the old one).
  void Replace(const std::string& relative, const std::string& text) const {
    root_.Write(relative + ".next", text);
    EXPECT_EQ(0, std::rename(root_.Path(relative + ".next").c_str(), root_.Path(relative).c_str()));
  }
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

TEST_F(AccessorInstancesTest, TheLockIsOneForEveryInstanceAndMayCoverAClose) {
  ThreadMutex* before = &GeneralSettingsAccessor::InstanceMutex();
  {
    GeneralSettingsAccessor::Lock lock;  // no instance open yet
    ASSERT_NE(nullptr, GeneralSettingsAccessor::GetInstance(true));
    GeneralSettingsAccessor::CloseInstance();  // the last close, under the lock
  }
  EXPECT_EQ(before, &GeneralSettingsAccessor::InstanceMutex());
  EXPECT_NE(static_cast<void*>(before), &GeneralPaths::InstanceMutex());
}

// Gateways 1 and 2 are named after the version of the file that holds them.
std::string Gateways(char version) {
  std::string text;
  for (char id : {'1', '2'})
    text += std::string("section ") + id + "\n{\nname = " + version + id + "\n}\n";
  return text;
}

TEST_F(AccessorInstancesTest, LoadsAndReadsUnderTheLockSeeWholeFiles) {
  Replace("telephony/gateways.cfg", Gateways('a'));
  GatewayAccessor* held = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, held);
  std::atomic<bool> written{false};
  std::thread writer([&] {
    for (int i = 0; i < 100; ++i) Replace("telephony/gateways.cfg", Gateways(i % 2 ? 'a' : 'b'));
    written = true;
  });
  // One thread reloads before reading, the other only reads the blocks the
  // first one replaces; both hold the lock while they use block pointers.
  auto use = [&](bool reload, int* torn) {
    for (int i = 0; i < 50 || !written; ++i) {
      GatewayAccessor::Lock lock;
      if (reload && !held->Load()) ++*torn;
      const GatewayBlock* one = held->GetBlock(1);
      const GatewayBlock* two = held->GetBlock(2);
      if (one == nullptr || two == nullptr || one->name[0] != two->name[0]) ++*torn;
    }
  };
  int torn[2] = {0, 0};
  std::thread loader(use, true, &torn[0]);
  std::thread reader(use, false, &torn[1]);
  writer.join();
  loader.join();
  reader.join();
  EXPECT_EQ(0, torn[0]);
  EXPECT_EQ(0, torn[1]);
  GatewayAccessor::CloseInstance();
}

}  // namespace
