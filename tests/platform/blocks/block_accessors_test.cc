#include <gtest/gtest.h>

#include <tuple>

#include "platform/base/document_store.h"
#include "tests/platform/blocks/all_accessors.h"
#include "tests/support/temp_root.h"

namespace {

using testing_support::TempRoot;

class BlockAccessorsTest : public ::testing::Test {
 protected:
  BlockAccessorsTest() { root_.MakeDir("telephony"); }
  TempRoot root_;
};

auto Values(const AuthorizedPhoneBlock& b) {
  return std::make_tuple(b.phoneAddress, b.extension, b.phoneType, b.lineCount, b.userName,
                         b.permissions, b.loginTime);
}

TEST_F(BlockAccessorsTest, BlocksRoundTripThroughTheirFiles) {
  AuthorizedPhonesAccessor* phones = AuthorizedPhonesAccessor::GetInstance(true);
  std::unique_ptr<AuthorizedPhoneBlock> phone = phones->CreateBlock();
  EXPECT_EQ(std::make_tuple(2, 2), std::make_tuple(phone->phoneType, phone->lineCount));
  *phone = AuthorizedPhoneBlock{phone->id, "", "00:11:22:33:44:55", "201", 3, 4, "Desk", -1, 17};
  AuthorizedPhoneBlock* stored = phones->InsertBlock(std::move(phone));
  ASSERT_NE(nullptr, stored);
  stored->extension = "202";
  ASSERT_TRUE(phones->SaveBlock(stored));
  AuthorizedPhoneBlock written = *stored;
  GatewayAccessor* gateways = GatewayAccessor::GetInstance(true);
  std::unique_ptr<GatewayBlock> remote = gateways->CreateBlock();
  *remote = GatewayBlock{7, "branch", GatewayBlock::kRemoteMediaGateway, "10.0.0.7"};
  ASSERT_TRUE(gateways->AddBlock(std::move(remote)));
  RingPatternParams* patterns = RingPatternParams::GetInstance(true);
  std::unique_ptr<RingPatternBlock> triple = patterns->CreateBlock();
  triple->name = "triple";
  triple->cadence = {400, 200, 400, 200, 400, 2000};
  ASSERT_TRUE(patterns->AddBlock(std::move(triple)));
  blocks_testing::CloseAll();

  phones = AuthorizedPhonesAccessor::GetInstance(false);
  ASSERT_EQ(1u, phones->GetBlockCount());
  EXPECT_EQ(Values(written), Values(*phones->GetBlock(written.id)));
  EXPECT_EQ("00:11:22:33:44:55", phones->GetBlock(written.id)->name);
  gateways = GatewayAccessor::GetInstance(false);
  ASSERT_NE(nullptr, gateways->GetBlock(7));
  EXPECT_TRUE(gateways->GetBlock(7)->IsRemote());
  EXPECT_EQ("10.0.0.7", gateways->GetBlock(7)->address);
  patterns = RingPatternParams::GetInstance(false);
  EXPECT_EQ((std::vector<unsigned long>{400, 200, 400, 200, 400, 2000}),
            patterns->GetBlockByName("triple")->cadence);
  blocks_testing::CloseAll();
}

TEST_F(BlockAccessorsTest, TosBytesAreReadInDecimalOrHexAndWrittenInHex) {
  root_.Write("telephony/tos.cfg",
              "section 1\n{\nname = voice\nsignaling_tos = 0x68\nmedia_tos = 184\n}\n"
              "section 2\n{\nname = bad\nsignaling_tos = 300\nmedia_tos = ef\n}\n");
  TosParamsAccessor* tos = TosParamsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, tos);
  TosBlock* voice = tos->GetBlockByName("voice");
  ASSERT_NE(nullptr, voice);
  EXPECT_EQ(std::make_tuple(0x68, 0xB8), std::make_tuple(voice->signalingTos, voice->mediaTos));
  EXPECT_EQ(0, tos->GetBlockByName("bad")->signalingTos);
  EXPECT_EQ(nullptr, tos->GetBlockByName("Voice"));
  voice->signalingTos = 0x2E;  // a changed value is written in hex; the rest stays as written
  ASSERT_TRUE(tos->SaveBlock(voice));
  TosParamsAccessor::CloseInstance();

  cfg::Document doc;
  ASSERT_TRUE(cfg::LoadDocument(root_.Path("telephony/tos.cfg"), &doc).ok());
  EXPECT_EQ("0x2E", doc.Find("1")->Get("signaling_tos"));
  EXPECT_EQ("184", doc.Find("1")->Get("media_tos"));
}

TEST_F(BlockAccessorsTest, SysMessageNamesAreLookedUpByNumber) {
  root_.Write("telephony/sysmessages.cfg",
              "section 0\n{\nname = System started\n}\nsection 12\n{\nname = Line busy\n}\n"
              "section 12\n{\nname = shadowed\n}\nsection -1\n{\nname = negative\n}\n"
              "section 13\n{\ntext = no name key\n}\nsection 2147483648\n{\nname = big\n}\n");
  SysMessageAccessor* messages = SysMessageAccessor::GetInstance();
  ASSERT_NE(nullptr, messages);
  std::string name = "untouched";
  EXPECT_FALSE(messages->GetSysMessageName(13, name));
  EXPECT_FALSE(messages->GetSysMessageName(-1, name));
  EXPECT_EQ("untouched", name);
  EXPECT_TRUE(messages->GetSysMessageName(12, name));
  EXPECT_EQ("Line busy", name);
  EXPECT_EQ(2u, messages->GetSysMessageCount());
  SysMessageAccessor::CloseInstance();
}

}  // namespace
