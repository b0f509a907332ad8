#include <gtest/gtest.h>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;
using Spans = std::list<std::pair<unsigned short, std::list<unsigned short>>>;
using Channels = std::list<unsigned short>;

class PstnChannelsTest : public AgentTest {};

TEST_F(PstnChannelsTest, FxoAndIsdnListsKeepOrderAndDuplicates) {
  CMAgent& agent = Start();
  Channels channels = {9};
  agent.GetFxoChannels("1,1,2", &channels);
  EXPECT_EQ((Channels{1, 1, 2}), channels);
  agent.GetFxoChannels("all_channels", &channels);
  EXPECT_TRUE(channels.empty());  // empty means every channel
  agent.GetIsdnData("3,x,4b", &channels);
  EXPECT_EQ((Channels{3, 0, 4}), channels);  // leading digits only
  agent.GetIsdnData("all_channels", &channels);
  EXPECT_TRUE(channels.empty());
}

TEST_F(PstnChannelsTest, NoSpecificationAsksForMoreThanTheHardwareHas) {
  CMAgent& agent = Start();
  Spans spans;
  agent.GetCasData("0/0-65535", &spans);  // once 65,536 slots
  ASSERT_EQ(1u, spans.size());
  EXPECT_EQ(32u, spans.front().second.size());
  agent.GetCasData("1/7,40,31", &spans);
  EXPECT_EQ((std::list<unsigned short>{7, 31}), spans.front().second);
  std::string many;
  for (int span = 0; span < 1000; ++span) many += std::to_string(span) + "/0-31;";
  agent.GetCasData(many, &spans);
  EXPECT_EQ(64u, spans.size());
  EXPECT_EQ(63, spans.back().first);

  Channels channels;
  std::string list;
  for (int i = 0; i < 300; ++i) list += "1,";
  agent.GetFxoChannels(list, &channels);
  EXPECT_EQ(256u, channels.size());
}

TEST_F(PstnChannelsTest, CasAllChannelsIsSpanZeroWithThirtyTwoSlots) {
  CMAgent& agent = Start();
  Spans spans;
  agent.GetCasData("all_channels", &spans);
  ASSERT_EQ(1u, spans.size());
  EXPECT_EQ(0, spans.front().first);
  ASSERT_EQ(32u, spans.front().second.size());
  EXPECT_EQ(31, spans.front().second.back());
}

TEST_F(PstnChannelsTest, CasGroupsOfOneSpanMergeSortedAndUnique) {
  CMAgent& agent = Start();
  Spans spans;
  agent.GetCasData("0/3,1", &spans);
  ASSERT_EQ(1u, spans.size());
  EXPECT_EQ((Channels{3, 1}), spans.front().second);  // a first group keeps its order

  agent.GetCasData("0/3,1;0/2-3", &spans);
  ASSERT_EQ(1u, spans.size());
  EXPECT_EQ((Channels{1, 2, 3}), spans.front().second);
}

TEST_F(PstnChannelsTest, CasRangesAndOddGroups) {
  CMAgent& agent = Start();
  Spans spans;
  agent.GetCasData("1/5-3;2/1,3-5;7", &spans);
  ASSERT_EQ(3u, spans.size());
  auto it = spans.begin();
  EXPECT_EQ(1, it->first);
  EXPECT_TRUE(it->second.empty());  // first > last: no slots
  ++it;
  EXPECT_EQ(2, it->first);
  EXPECT_EQ((Channels{1, 2, 3, 4, 5}), it->second);  // a list with a range reads as the range
  ++it;
  EXPECT_EQ(7, it->first);
  EXPECT_TRUE(it->second.empty());
}

}  // namespace
