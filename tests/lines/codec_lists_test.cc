#include <gtest/gtest.h>

#include "cmcfg/functions.h"
#include "platform/line/codecs.h"
#include "tests/support/agent_fixture.h"

namespace {

std::list<std::string> Names(const std::list<CodecInfo>& codecs) {
  std::list<std::string> names;
  for (const CodecInfo& c : codecs) names.push_back(c.name);
  return names;
}

TEST(AddLineCodecsToList, G729aIsListedAsG729WithItsOwnDspCodec) {
  std::list<CodecInfo> codecs;
  AddLineCodecsToList(std::list<std::string>{"G729a", "G729"}, codecs, true, false, false);
  ASSERT_EQ(2u, codecs.size());
  EXPECT_EQ("G729", codecs.front().name);
  EXPECT_EQ("G729", codecs.back().name);
  EXPECT_NE(codecs.front().dspCodec, codecs.back().dspCodec);
  EXPECT_EQ(GetDspCodecByName("G729a"), codecs.front().dspCodec);
  EXPECT_EQ(GetRtpCodecByDspCodec(codecs.back().dspCodec), codecs.back().rtpCodec);
  EXPECT_EQ(8000, codecs.back().samplingRate);
  EXPECT_EQ(0, codecs.back().flags);
}

TEST(AddLineCodecsToList, G723OnlyWhereAllowedAndUnknownNamesDropped) {
  std::list<CodecInfo> codecs;
  AddLineCodecsToList(std::string("G723,nonsense,G711A"), codecs, false, false, true);
  EXPECT_EQ((std::list<std::string>{"G711A"}), Names(codecs));
  EXPECT_EQ(1, codecs.front().flags);

  AddLineCodecsToList(std::string("G723"), codecs, true, true, false);
  EXPECT_EQ((std::list<std::string>{"G711A", "G723"}), Names(codecs));
  AddLineCodecsToList(std::string("G711U"), codecs, true, false, false);
  EXPECT_EQ((std::list<std::string>{"G711U"}), Names(codecs));  // replaced
}

class FaxCodecsTest : public testing_support::AgentTest {};

TEST_F(FaxCodecsTest, NamesSplitIntoRelayAndTransparentLists) {
  root_.Write("telephony/fax.cfg", "section T38\n{\nversion = 3\n}\n");
  CMAgent& agent = Start();
  std::list<FaxCodecInfo> relay = {FaxCodecInfo()};
  std::list<CodecInfo> transparent;
  agent.FillFaxCodecs("T38,G711A,unknown", relay, transparent);
  EXPECT_EQ(1u, relay.size());
  ASSERT_EQ(1u, transparent.size());
  EXPECT_EQ("G711A", transparent.front().name);
  EXPECT_EQ(1, transparent.front().flags);

  agent.Destroy();  // without the agent's encoding manager: one for the call
  agent.FillFaxCodecs("", relay, transparent);
  EXPECT_TRUE(relay.empty());
  EXPECT_TRUE(transparent.empty());
  agent.FillFaxCodecs(std::list<std::string>{"T38"}, relay, transparent);
  EXPECT_EQ(1u, relay.size());
}

}  // namespace
