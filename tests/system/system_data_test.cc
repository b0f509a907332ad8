#include <gtest/gtest.h>

#include <stdlib.h>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

class GeneralDataTest : public AgentTest {};

TEST_F(GeneralDataTest, WithoutSettingsNothingChanges) {
  CMAgent& agent = Start();
  agent.generalData.systemPrefix = "kept";
  EXPECT_FALSE(agent.GetGeneralData(false));
  EXPECT_EQ("kept", agent.generalData.systemPrefix);
  EXPECT_FALSE(agent.GetCDRData(false));
}

TEST_F(GeneralDataTest, UnsetRootUsesTheBuiltInOne) {
  CMAgent& agent = Start();
  unsetenv("ORBA_PATH");
  agent.GetGeneralData(true);
  EXPECT_EQ("/etc/orba-conf/telephony/dialplan.cfg", agent.generalData.dialPlanPath);
}

class CallRecordsTest : public AgentTest {};

TEST_F(CallRecordsTest, EmptyNamesGetDefaultsWhichAreSavedBack) {
  root_.Write("telephony/general.cfg",
              "section cdr\n{\ncdr_enabled = 0\ncdr_stated_records = 300\ncdr_failed_files = 4\n}\n");
  CMAgent& agent = Start();
  const CDRData& cdr = agent.generalData.cdr;
  EXPECT_EQ(root_.Path("telephony/CDR_db"), cdr.statedPath);
  EXPECT_EQ(root_.Path("telephony/missed_calls_db"), cdr.missedPath);
  EXPECT_EQ(root_.Path("telephony/unsuccess_calls_db"), cdr.failedPath);
  std::string paths = root_.Read("telephony/paths.cfg");
  for (const char* name : {"CDR_db", "missed_calls_db", "unsuccess_calls_db"})
    EXPECT_NE(std::string::npos, paths.find(name)) << name;
}

}  // namespace
