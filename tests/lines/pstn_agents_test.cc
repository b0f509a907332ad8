#include <gtest/gtest.h>

#include <functional>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

std::string Join(const std::list<unsigned short>& values) {
  std::string text;
  for (unsigned short v : values) text += (text.empty() ? "" : ",") + std::to_string(v);
  return text;
}

std::string Slots(int first, int last) {
  std::list<unsigned short> slots;
  for (int s = first; s <= last; ++s) slots.push_back(static_cast<unsigned short>(s));
  return Join(slots);
}

std::string Repeat(const std::string& piece, int times, int offset = -1) {
  std::string text;
  for (int i = 0; i < times; ++i)
    text += offset < 0 ? piece : std::to_string(i + offset) + piece;
  return text;
}

// Channel specifications as the agent reads them: FXO and ISDN lists keep
// their order and duplicates ("" is every channel); CAS spans read as
// "span:slots" joined with spaces.
TEST_F(AgentTest, ChannelSpecificationsReadWithinWhatTheHardwareHas) {
  CMAgent& agent = Start();
  using Reader = std::function<std::string(const std::string&)>;
  const Reader fxo = [&](const std::string& spec) {
    std::list<unsigned short> channels = {9};
    agent.GetFxoChannels(spec, &channels);
    return Join(channels);
  };
  const Reader isdn = [&](const std::string& spec) {
    std::list<unsigned short> channels = {9};
    agent.GetIsdnData(spec, &channels);
    return Join(channels);
  };
  const Reader cas = [&](const std::string& spec) {
    std::list<std::pair<unsigned short, std::list<unsigned short>>> spans = {{9, {9}}};
    agent.GetCasData(spec, &spans);
    std::string text;
    for (const auto& [span, slots] : spans)
      text += (text.empty() ? "" : " ") + std::to_string(span) + ":" + Join(slots);
    return text;
  };
  const struct {
    const Reader& read;
    std::string spec, expected;
  } cases[] = {
      {fxo, "1,1,2", "1,1,2"},
      {fxo, "all_channels", ""},
      {fxo, Repeat("1,", 300), Join(std::list<unsigned short>(256, 1))},
      {isdn, "3,x,4b", "3,0,4"},  // leading digits only
      {isdn, "all_channels", ""},
      {cas, "all_channels", "0:" + Slots(0, 31)},
      {cas, "0/0-65535", "0:" + Slots(0, 31)},
      {cas, "1/7,40,31", "1:7,31"},
      {cas, "0/3,1", "0:3,1"},  // a first group keeps its order
      {cas, "0/3,1;0/2-3", "0:1,2,3"},  // groups of one span merge sorted and unique
      {cas, "1/5-3;2/1,3-5;7", "1: 2:1,2,3,4,5 7:"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.expected, c.read(c.spec)) << c.spec;

  std::list<std::pair<unsigned short, std::list<unsigned short>>> spans;
  agent.GetCasData(Repeat("/0-31;", 1000, 0), &spans);
  ASSERT_EQ(64u, spans.size());
  EXPECT_EQ(63, spans.back().first);
}

}  // namespace
