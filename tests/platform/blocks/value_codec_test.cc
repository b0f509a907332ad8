#include "platform/base/value_codec.h"

#include <gtest/gtest.h>

namespace {

using cfg::FormatValue;
using cfg::ParseValue;

// Single numbers are covered through the accessors' files; lists are not.
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
