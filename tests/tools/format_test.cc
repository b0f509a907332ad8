#include "tools/format.h"

#include <gtest/gtest.h>

namespace {

using namespace cmcfg_tool;

TEST(FormatTest, KeysAreTheKeypadCharacters) {
  EXPECT_EQ("*72", KeysText({0x12A, 0x107, 0x102}));
  EXPECT_EQ("#9f", KeysText({0x123, 0x109, 0x8F0}));
  EXPECT_EQ("0", KeysText({0x100}));
  // Values with no key of their own stay visible instead of vanishing.
  EXPECT_EQ("1<0x10A><0x801>", KeysText({0x101, 0x10A, 0x801}));
  EXPECT_EQ("", KeysText({}));
}

TEST(FormatTest, EndpointsAreUnboundWhenEitherIdIsInactive) {
  EXPECT_EQ("MG{1}<3>", EndpointText(1, 3));
  EXPECT_EQ("MG{0}<0>", EndpointText(0, 0));  // zero is a real id
  EXPECT_EQ("-", EndpointText(INACTIVE_PARTY, 3));
  EXPECT_EQ("-", EndpointText(1, INACTIVE_PARTY));

  LineSettings line;
  EXPECT_EQ("-", LocalEndpoint(line));
  EXPECT_EQ("-", RemoteEndpoint(line));
  line.remote.gatewayId = 2;
  line.remote.lineId = 4;
  EXPECT_EQ("-", RemoteEndpoint(line));  // ids without the remote flag
  line.remote.isRemote = 1;
  EXPECT_EQ("MG{2}<4>", RemoteEndpoint(line));
  EXPECT_TRUE(EndpointJson(LocalEndpoint(line)).is_null());
  EXPECT_EQ("MG{2}<4>", EndpointJson(RemoteEndpoint(line)));
}

TEST(FormatTest, DestinationsByCallTypeLeaveOutEmptyParts) {
  EXPECT_EQ("alice@pbx", SipText("alice", "pbx", ""));
  EXPECT_EQ("-", SipText("", "", ""));
  ForwardParams d;
  d.userName = "101";
  EXPECT_EQ("number 101", DestinationText(d));
  d.callType = kCallSip;
  d.userName = "ines";
  d.host = "mobile.example";
  d.port = "5062";
  EXPECT_EQ("SIP ines@mobile.example:5062", DestinationText(d));
  d.callType = kCallPstn;
  d.userName = "";
  EXPECT_EQ("PSTN trunk", DestinationText(d));
  d.userName = "0612";
  EXPECT_EQ("PSTN 0612", DestinationText(d));
  d.callType = kCallFromPhone;
  EXPECT_EQ("from phone 0612", DestinationText(d));
  EXPECT_EQ("type 7", CallTypeName(7));
}

}  // namespace
