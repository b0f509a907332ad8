#include <gtest/gtest.h>

#include <vector>

#include "cmcfg/sup_service_records.h"
#include "cmcfg/system_records.h"
#include "platform/extension/ext_params.h"
#include "platform/base/thread_mutex.h"
#include "platform/extension/ss_params.h"
#include "tests/support/temp_root.h"

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

TEST(ForwardParamsTest, AssignmentFromCallParamsTakesOnlyTheAddress) {
  ForwardParams target;
  target.text2 = "kept";
  target.text7 = "kept";
  target.value = 7;
  target.callType = kCallSip;
  CallParams source;
  source.userName = "200";
  source.displayName = "Bob";
  source.port = "5070";
  source.text2 = source.text7 = "new";
  source.value = 9;
  target = source;
  EXPECT_EQ("200", target.userName);
  EXPECT_EQ("Bob", target.displayName);
  EXPECT_EQ("5070", target.port);
  EXPECT_EQ("kept", target.text2);
  EXPECT_EQ("kept", target.text7);
  EXPECT_EQ(7, target.value);
  EXPECT_EQ(kCallNumber, target.callType);
}

TEST(ServiceRecordsTest, HuntingKeepsItsModeWhileInactive) {
  SSHuntRingingParams hunt;
  hunt.active = 1;
  hunt.huntMode = 4;
  hunt.targets = {{"101", 10}, {"102", 20}};
  HuntRingData data;
  data = hunt;
  ASSERT_EQ(2u, data.targets.size());
  EXPECT_EQ(20, data.targets.back().value);
  hunt.active = 0;
  hunt.huntMode = 9;
  data = hunt;
  EXPECT_TRUE(data.targets.empty());
  EXPECT_EQ(4, data.huntMode);
}

TEST(ServiceRecordsTest, IsArmed) {
  IncomingServiceSet set;
  EXPECT_FALSE(set.IsArmed(true));
  set.forwardNoAnswer.active = 1;
  EXPECT_FALSE(set.IsArmed(false));
  EXPECT_TRUE(set.IsArmed(true));
  set.forwardNoAnswer.active = 0;
  set.distRinging.active = 1;
  set.intercom.mode = 1;
  EXPECT_FALSE(set.IsArmed(true));
  set.incomingBlocking.active = 1;
  EXPECT_TRUE(set.IsArmed(false));
}

TEST(DistRingDataTest, InactiveKeepsNamesAndEmptiesCadence) {
  DistRingData data;
  data.ringName = "old";
  data.cadence = {1, 2};
  SSDistRingingParams params;
  params.active = 0;
  params.ringName = "new";
  data = params;
  EXPECT_EQ("old", data.ringName);
  EXPECT_TRUE(data.cadence.empty());
}

}  // namespace
