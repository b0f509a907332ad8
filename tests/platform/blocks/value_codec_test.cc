#include "platform/blocks/value_codec.h"

#include <gtest/gtest.h>

namespace {

using blocks::FormatValue;
using blocks::ParseValue;

TEST(ValueCodec, NumbersAreDecimalOrHexWithinTheirType) {
  int32_t i = 0;
  EXPECT_TRUE(ParseValue(" -2147483648 ", &i));
  EXPECT_EQ(INT32_MIN, i);
  uint8_t tos = 0;
  EXPECT_TRUE(ParseValue("0xB8", &tos));
  EXPECT_EQ(0xB8, tos);
  uint32_t u = 0;
  EXPECT_TRUE(ParseValue("4294967295", &u));
  EXPECT_EQ(4294967295u, u);

  for (const char* bad : {"", "-", "0x", "12abc", "1 2", "2147483648", "99999999999999999999999"})
    EXPECT_FALSE(ParseValue(bad, &i)) << bad;
  EXPECT_EQ(INT32_MIN, i);  // a failed parse keeps the old value
  EXPECT_FALSE(ParseValue("256", &tos));
  EXPECT_FALSE(ParseValue("-1", &tos));
  uint16_t holds = 5;
  EXPECT_FALSE(ParseValue("65536", &holds));
  EXPECT_EQ(5, holds);
}

TEST(ValueCodec, CadenceIsAllNumbersOrNothing) {
  std::vector<unsigned long> cadence{1, 2};
  EXPECT_TRUE(ParseValue("500, 500,500,2000", &cadence));
  EXPECT_EQ("500,500,500,2000", FormatValue(cadence));
  for (const char* bad : {"", "1000,", "1000,,2500", "1000,x", "-5,10"})
    EXPECT_FALSE(ParseValue(bad, &cadence)) << bad;
  EXPECT_EQ(4u, cadence.size());
}

TEST(ValueCodec, NameListsDropBlanksAndEmptyNames) {
  std::list<std::string> codecs{"old"};
  EXPECT_TRUE(ParseValue(" G711A ,,G729, ", &codecs));
  EXPECT_EQ("G711A,G729", FormatValue(codecs));
  EXPECT_TRUE(ParseValue("", &codecs));
  EXPECT_TRUE(codecs.empty());
}

}  // namespace
