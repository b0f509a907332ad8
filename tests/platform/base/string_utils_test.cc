#include "platform/base/string_utils.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Pieces = std::vector<std::string>;

TEST(ParseCommaLineTest, KeepsEmptyAndUntrimmedPieces) {
  EXPECT_EQ(Pieces{}, StringUtils::ParseCommaLine(""));
  EXPECT_EQ(Pieces{"1000"}, StringUtils::ParseCommaLine("1000"));
  EXPECT_EQ((Pieces{"1000", " 2500"}), StringUtils::ParseCommaLine("1000, 2500"));
  EXPECT_EQ((Pieces{"", "", ""}), StringUtils::ParseCommaLine(",,"));
  EXPECT_EQ((Pieces{"a", ""}), StringUtils::ParseCommaLine("a,"));
  EXPECT_EQ((Pieces{"a,b", "c"}), StringUtils::ParseCommaLine("a,b;c", ';'));
}

struct SipCase {
  const char* address;
  bool allow_no_scheme;
  bool ok;
  const char* user;
  const char* host;
  const char* port;
};

class ParseSIPAddressTest : public ::testing::TestWithParam<SipCase> {};

TEST_P(ParseSIPAddressTest, SplitsOrLeavesOutputsUntouched) {
  const SipCase& c = GetParam();
  std::string user = "u0", host = "h0", port = "p0";
  EXPECT_EQ(c.ok, ParseSIPAddress(c.address, user, host, port, c.allow_no_scheme));
  EXPECT_EQ(c.ok ? c.user : "u0", user);
  EXPECT_EQ(c.ok ? c.host : "h0", host);
  EXPECT_EQ(c.ok ? c.port : "p0", port);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ParseSIPAddressTest,
    ::testing::Values(
        SipCase{"sip:alice@example.com:5060", true, true, "alice", "example.com", "5060"},
        SipCase{"sip:bob@10.0.0.1", false, true, "bob", "10.0.0.1", ""},
        SipCase{"SIPS:carol@secure.example", false, true, "carol", "secure.example", ""},
        SipCase{"alice@host", true, true, "alice", "host", ""},
        SipCase{"host:5070", true, true, "", "host", "5070"},
        SipCase{"sip:dave@[2001:db8::1]:5080", false, true, "dave", "[2001:db8::1]", "5080"},
        SipCase{"sip:eve@host;transport=udp", false, true, "eve", "host", ""},
        SipCase{"alice@host", false, false, "", "", ""},
        SipCase{"", true, false, "", "", ""},
        SipCase{"sip:", true, false, "", "", ""},
        SipCase{"sip:alice@", true, false, "", "", ""},
        SipCase{"sip:alice@:5060", true, false, "", "", ""},
        SipCase{"sip:@host", true, false, "", "", ""},
        SipCase{"sip:alice@host:", true, false, "", "", ""},
        SipCase{"sip:alice@host:50a0", true, false, "", "", ""},
        SipCase{"sip:alice@host:0", true, false, "", "", ""},
        SipCase{"sip:alice@host:65536", true, false, "", "", ""},
        SipCase{"sip:alice@host:1:2", true, false, "", "", ""},
        SipCase{"sip:al ice@host", true, false, "", "", ""},
        SipCase{"sip:alice@host\n", true, false, "", "", ""},
        SipCase{"sip:a@[::1", true, false, "", "", ""}));

}  // namespace
