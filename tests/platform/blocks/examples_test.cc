#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "tests/platform/blocks/all_accessors.h"
#include "tests/support/temp_root.h"

namespace {

// Reads the shipped examples where they stand (found from this file's place
// in the tree); the temporary root restores ORBA_PATH afterwards.
TEST(Examples, EveryExampleFileReadsAsDocumented) {
  testing_support::TempRoot restore;
  std::string file = __FILE__;
  setenv("ORBA_PATH", (file.substr(0, file.rfind("tests/platform/")) + "examples/").c_str(), 1);

  GeneralSettingsAccessor* settings = GeneralSettingsAccessor::GetInstance(false);
  GatewayAccessor* gateways = GatewayAccessor::GetInstance(false);
  TosParamsAccessor* tos = TosParamsAccessor::GetInstance(false);
  RingPatternParams* patterns = RingPatternParams::GetInstance(false);
  AuthorizedPhonesAccessor* phones = AuthorizedPhonesAccessor::GetInstance(false);
  SysMessageAccessor* messages = SysMessageAccessor::GetInstance();
  ASSERT_TRUE(settings && gateways && tos && patterns && phones && messages);

  EXPECT_EQ(1, settings->logEnabled);
  EXPECT_EQ(3u, settings->voiceCodecs.size());
  EXPECT_FALSE(gateways->GetBlock(1)->IsRemote());
  EXPECT_TRUE(gateways->GetBlock(2)->IsRemote());
  EXPECT_TRUE(tos->GetBlockByName("voice") && tos->GetBlockByName("default"));
  EXPECT_EQ(3u, patterns->GetBlockCount());
  for (RingPatternBlock* pattern : patterns->GetAllBlocks()) EXPECT_GE(pattern->cadence.size(), 2u);
  EXPECT_EQ(2u, phones->GetBlockCount());
  EXPECT_GE(messages->GetSysMessageCount(), 24u);
  EXPECT_EQ(blocks_testing::kFlaggedCount, blocks_testing::OpenAndCloseAll(false));

  blocks_testing::CloseAll();
  SysMessageAccessor::CloseInstance();
}

}  // namespace
