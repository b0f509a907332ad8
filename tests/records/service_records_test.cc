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

TEST(ForwardDataTest, DestinationsAreFilteredAndSplit) {
  SSForwardParams params;
  params.active = 1;
  params.hasText = 0;
  params.text = "ignored";
  params.destinations = {
      {1, kCallSip, "sip:bob@pbx.example:5070"},
      {1, kCallSip, "bad address with blanks"},
      {0, kCallNumber, "300"},
      {1, kCallPstn, "pstn"},
      {1, kCallPstn, "0123456"},
      {1, kCallNumber, "104"},
  };
  ForwardData data;
  data.text = "old";
  data.note = "carried";
  data = params;

  EXPECT_EQ(1, data.active);
  EXPECT_EQ("", data.text);
  EXPECT_EQ("carried", data.note);
  ASSERT_EQ(4u, data.destinations.size());
  auto it = data.destinations.begin();
  EXPECT_EQ(kCallSip, it->callType);
  EXPECT_EQ("bob", it->userName);
  EXPECT_EQ("pbx.example", it->host);
  EXPECT_EQ("5070", it->port);
  ++it;
  EXPECT_EQ(kCallPstn, it->callType);
  EXPECT_EQ("", it->userName);
  ++it;
  EXPECT_EQ("0123456", it->userName);
  ++it;
  EXPECT_EQ("104", it->userName);

  params.hasText = 1;
  params.text = "Out of office";
  params.destinations.clear();
  params.active = 0;
  data = params;
  EXPECT_EQ("Out of office", data.text);
  EXPECT_TRUE(data.destinations.empty());
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

class DistRingTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_.Write("telephony/ringpatterns.cfg",
                "section 1\n{\nname = short\ncadence = 500,4000\n}\n"
                "section 2\n{\nname = single\ncadence = 700\n}\n");
    MutexLock lock(_gDefRingPattern.mutex);
    _gDefRingPattern.cadence = {1000, 2500};
  }

  std::vector<unsigned long> CadenceOf(const std::string& pattern) {
    SSDistRingingParams params;
    params.active = 1;
    params.ringName = "r";
    params.pattern = pattern;
    DistRingData data;
    data = params;
    return data.cadence;
  }

  testing_support::TempRoot root_;
};

TEST_F(DistRingTest, PatternsNamesAndFallbacks) {
  const std::vector<unsigned long> fallback = {1000, 2500};
  EXPECT_EQ(fallback, CadenceOf("default"));
  EXPECT_EQ(fallback, CadenceOf(""));
  EXPECT_EQ(fallback, CadenceOf("2000"));
  EXPECT_EQ(fallback, CadenceOf("ring"));    // no such pattern
  EXPECT_EQ(fallback, CadenceOf("single"));  // a one-value pattern is no cadence
  EXPECT_EQ((std::vector<unsigned long>{500, 4000}), CadenceOf("short"));
  EXPECT_EQ((std::vector<unsigned long>{400, 200, 0, 2000}), CadenceOf("400,200,x,2000"));
}

TEST_F(DistRingTest, InactiveKeepsNamesAndEmptiesCadence) {
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

TEST(CallQueueDataTest, AssignmentFromPersonalInfo) {
  ExtPersonalInfoParams params;
  params.queueEnabled = 1;
  params.queueSize = 1000;
  params.queueDisabled = 0;
  params.announcementEnabled = 1;
  params.announcementValue = 5;
  params.announcementText = "please hold";
  CallQueueData queue;
  queue = params;
  EXPECT_EQ(255, queue.size);
  EXPECT_TRUE(queue.IsFlagOn(CallQueueData::kAccepting));
  EXPECT_FALSE(queue.IsFlagOn(CallQueueData::kOverflow));
  EXPECT_EQ(5, queue.announcement);

  // Announcement off: its value goes, its text stays.
  params.announcementEnabled = 0;
  queue = params;
  EXPECT_EQ(0, queue.announcement);
  EXPECT_EQ("please hold", queue.announcementText);

  params.queueSize = 0;  // no queue at all
  queue = params;
  EXPECT_EQ(0, queue.size);
  EXPECT_EQ(0, queue.flags);
}

}  // namespace
