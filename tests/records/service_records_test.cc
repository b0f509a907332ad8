#include <gtest/gtest.h>

#include "cmcfg/sup_service_records.h"

namespace {

ForwardParams Destination(const std::string& user, const std::string& host) {
  ForwardParams params;
  params.userName = user;
  params.host = host;
  return params;
}

TEST(ForwardParamsTest, OrderJoinsNumberAndHostButEqualityDoesNot) {
  ForwardParams a = Destination("12", "3");
  ForwardParams b = Destination("1", "23");
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(Destination("1", "2") < Destination("1", "3"));

  ForwardParams c = Destination("12", "3");
  c.displayName = "other";
  c.callType = kCallSip;
  EXPECT_TRUE(a == c);  // only number and host count
}

}  // namespace
