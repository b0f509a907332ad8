#include "cmcfg/caller_id_manager.h"

#include <gtest/gtest.h>

#include <list>
#include <string>

#include "cmcfg/system_records.h"

namespace {

class CallerIdTest : public ::testing::Test {
 protected:
  CallerIdTest() {
    caller_.userName = "101";
    caller_.host = "pbx.example";
  }

  // The text for a template of the call type, appended to "["; a refused
  // template gives "<invalid>" and what the result string then holds.
  std::string Text(CallerIDManager::CallType type, const std::string& pattern) {
    GeneralData data;
    (type == CallerIDManager::kLocal ? data.callerIdLocal
     : type == CallerIDManager::kIp  ? data.callerIdIp
                                     : data.callerIdPstn) = pattern;
    std::string result = "[";
    if (!manager_.Parse(type, caller_, data, &result)) return "<invalid>" + result;
    return result;
  }

  CallerIDManager manager_;
  CallParams caller_;
};

TEST_F(CallerIdTest, AddressFallsBackOnlyForA) {
  EXPECT_EQ("[", Text(CallerIDManager::kLocal, "%d"));
  EXPECT_EQ("[101", Text(CallerIDManager::kLocal, "%a"));
  EXPECT_EQ("[101@pbx.example", Text(CallerIDManager::kIp, "%a"));
  caller_.host.clear();
  EXPECT_EQ("[101", Text(CallerIDManager::kIp, "%a"));
  caller_.displayName = "Alice";
  EXPECT_EQ("[Call from Alice (101)", Text(CallerIDManager::kPstn, "Call from %a (%u)"));
}

TEST_F(CallerIdTest, TextIsCutAfter1024Bytes) {
  caller_.userName = std::string(1000, 'u');
  std::string pattern;
  for (int i = 0; i < 150; ++i) pattern += "%u";
  EXPECT_EQ("[" + std::string(1024, 'u'), Text(CallerIDManager::kLocal, pattern));
  EXPECT_EQ("[" + std::string(1000, 'u') + "x", Text(CallerIDManager::kLocal, "%ux"));
}

TEST_F(CallerIdTest, HostOnlyForIpCalls) {
  EXPECT_EQ("[101 at pbx.example", Text(CallerIDManager::kIp, "%u at %h"));
  EXPECT_EQ("<invalid>[", Text(CallerIDManager::kLocal, "%h"));
  EXPECT_EQ("<invalid>[", Text(CallerIDManager::kPstn, "%u@%h"));
}

// A refused template appends nothing, not even the text before the fault.
TEST_F(CallerIdTest, BadTemplatesLeaveResultUntouched) {
  EXPECT_EQ("<invalid>[", Text(CallerIDManager::kLocal, "100%"));
  EXPECT_EQ("<invalid>[", Text(CallerIDManager::kLocal, "%u%x"));
  EXPECT_EQ("<invalid>[", Text(CallerIDManager::kLocal, "%%"));
  EXPECT_EQ("<invalid>[", Text(CallerIDManager::kIp, "call %u %"));
  EXPECT_EQ("[", Text(CallerIDManager::kLocal, ""));

  GeneralData data;
  data.callerIdLocal = "%u";
  EXPECT_FALSE(manager_.Parse(CallerIDManager::kLocal, caller_, data, nullptr));
}

TEST_F(CallerIdTest, CheckStopsAtTheFirstBadPlaceholder) {
  std::list<std::string> tokens = {"stale"};
  EXPECT_FALSE(manager_.Check(CallerIDManager::kPstn, "a%ub%hc%d", tokens));
  EXPECT_EQ((std::list<std::string>{"a", "%u", "b"}), tokens);
  EXPECT_FALSE(manager_.Check(CallerIDManager::kIp, "x%", tokens));
  EXPECT_EQ((std::list<std::string>{"x"}), tokens);
}

TEST_F(CallerIdTest, CheckSplitsLiteralsAndPlaceholders) {
  std::list<std::string> tokens = {"stale"};
  ASSERT_TRUE(manager_.Check(CallerIDManager::kIp, "<%d>%u@%h", tokens));
  EXPECT_EQ((std::list<std::string>{"<", "%d", ">", "%u", "@", "%h", ""}), tokens);
}

}  // namespace
