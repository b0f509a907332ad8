// How the readers turn text into numbers, lists and addresses: every rule
// at its limits. The cases are data, tables/NAME.in, each answered in
// tables/NAME.out (CMCFG_REGEN_GOLDEN=1 rewrites those).
#include <gtest/gtest.h>

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "platform/base/number_rules.h"
#include "platform/base/string_utils.h"
#include "platform/base/value_codec.h"
#include "tests/support/platform_fixture.h"

namespace cfg {
namespace {

const std::string kTables = "platform/base/tables/";  // below tests/

template <typename T>
std::string Strict(const std::string& text) {
  T value = 7;
  return ParseValue(text, &value) ? std::to_string(value) : "refused";
}

// Every reading of one text: the strict one of each type, then the lenient
// ones (ParseCNumber, CUnsignedOrZero, LeadingDigits).
TEST(ValuesTest, NumbersAreReadByEachRuleWithinItsLimits) {
  testing_support::ExpectGoldenTable(kTables + "numbers", [](const std::string& text) {
    int32_t c = 7;
    return "int32 " + Strict<int32_t>(text) + ", uint32 " + Strict<uint32_t>(text) + ", uint16 " +
           Strict<uint16_t>(text) + ", uint8 " + Strict<uint8_t>(text) + ", ulong " +
           Strict<unsigned long>(text) + "; c " + (ParseCNumber(text, &c) ? std::to_string(c) : "refused") +
           ", unsigned-or-zero " + std::to_string(CUnsignedOrZero(text)) + ", leading " +
           std::to_string(LeadingDigits(text));
  });
  EXPECT_EQ(5, LeadingDigits("ab 5", 2));
  EXPECT_EQ(400ul, CadenceValue("400ms"));
  EXPECT_EQ(0ul, CadenceValue("word"));
  EXPECT_EQ(-12, DecimalPrefix("-12x"));
  EXPECT_EQ(425, LeadingValue<int>(" 425Hz"));
}

TEST(ValuesTest, ListsAreAllOrNothing) {
  std::vector<unsigned long> cadence{1, 2};
  EXPECT_TRUE(ParseValue("500, 500,500,2000", &cadence));
  EXPECT_EQ("500,500,500,2000", FormatValue(cadence));
  for (const char* bad : {"", "1000,", "1000,,2500", "1000,x", "-5,10"})
    EXPECT_FALSE(ParseValue(bad, &cadence)) << bad;
  EXPECT_EQ(4u, cadence.size());
  std::list<std::string> codecs{"old"};
  EXPECT_TRUE(ParseValue(" G711A ,,G729, ", &codecs));
  EXPECT_EQ("G711A,G729", FormatValue(codecs));
  EXPECT_TRUE(ParseValue("", &codecs));
  EXPECT_TRUE(codecs.empty());
  using Pieces = std::vector<std::string>;
  EXPECT_EQ(Pieces{}, StringUtils::ParseCommaLine(""));
  EXPECT_EQ((Pieces{"1000", " 2500"}), StringUtils::ParseCommaLine("1000, 2500"));
  EXPECT_EQ((Pieces{"", "", ""}), StringUtils::ParseCommaLine(",,"));
  EXPECT_EQ((Pieces{"a,b", "c"}), StringUtils::ParseCommaLine("a,b;c", ';'));
}

// With the scheme required and optional: "user|host|port", or the outputs
// untouched when refused.
TEST(ValuesTest, SipAddressesSplitOrLeaveTheOutputsUntouched) {
  testing_support::ExpectGoldenTable(kTables + "sip_addresses", [](const std::string& address) {
    std::string answer;
    for (bool allow_no_scheme : {false, true}) {
      std::string user = "u0", host = "h0", port = "p0";
      const bool ok = ParseSIPAddress(address, user, host, port, allow_no_scheme);
      answer += std::string(allow_no_scheme ? "; optional: " : "required: ") + (ok ? "" : "refused ") +
                user + "|" + host + "|" + port;
    }
    return answer;
  });
}

}  // namespace
}  // namespace cfg
