#include <gtest/gtest.h>

#include <stdlib.h>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

class GeneralDataTest : public AgentTest {};

TEST_F(GeneralDataTest, SpecialRulesApplyOverTheSettings) {
  root_.Write("telephony/general.cfg",
              "section system\n{\nsystem_prefix = pbx-\nrouting_mode =\nvoice_codecs = G711A,G723\n"
              "extra_voice_codecs = G729a\nexternal_user_expiry_hours = 6\nmax_external_users = 7\n}\n"
              "section timers\n{\nsession_timer = 0\nsession_timer_interval = 900\n}\n"
              "section callerid\n{\ncaller_id_ip = %d@%h\n}\n");
  CMAgent& agent = Start();
  const GeneralData& g = agent.generalData;
  EXPECT_EQ('R', g.routingMode);
  EXPECT_EQ(0, g.sessionTimer);
  EXPECT_EQ(0, g.sessionTimerInterval);  // only with the timer on
  EXPECT_EQ(21600, g.externalUserExpiry);
  EXPECT_EQ(5, g.registrationRetries);
  EXPECT_EQ(7, g.maxExternalUsers);
  EXPECT_EQ("%d@%h", g.callerIdIp);
  EXPECT_EQ("pbx-", g.systemPrefix);
  EXPECT_EQ("kaIfArIkNiCkpbx-", agent.defaultUserName);
  ASSERT_EQ(3u, g.defaultVoiceCodecs.size());  // G723 is a voice codec here
  EXPECT_EQ("G729", g.defaultVoiceCodecs.back().name);
  EXPECT_EQ(root_.Path("telephony/dialplan.cfg"), g.dialPlanPath);
}

TEST_F(GeneralDataTest, SessionIntervalIsTakenWithTheTimerOn) {
  root_.Write("telephony/general.cfg",
              "section timers\n{\nsession_timer = 1\nsession_timer_interval = 900\n}\n"
              "section system\n{\nrouting_mode = Direct\n}\n");
  CMAgent& agent = Start();
  EXPECT_EQ(900, agent.generalData.sessionTimerInterval);
  EXPECT_EQ('D', agent.generalData.routingMode);
}

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
  EXPECT_EQ(0, cdr.enabled);
  EXPECT_EQ(300u, cdr.statedRecords);
  EXPECT_EQ(4u, cdr.failedFiles);
  EXPECT_EQ(root_.Path("telephony/CDR_db"), cdr.statedPath);
  EXPECT_EQ(root_.Path("telephony/missed_calls_db"), cdr.missedPath);
  EXPECT_EQ(root_.Path("telephony/unsuccess_calls_db"), cdr.failedPath);
  std::string paths = root_.Read("telephony/paths.cfg");
  for (const char* name : {"CDR_db", "missed_calls_db", "unsuccess_calls_db"})
    EXPECT_NE(std::string::npos, paths.find(name)) << name;
}

TEST_F(CallRecordsTest, NamesWithAFolderAreUsedAsTheyStand) {
  root_.Write("telephony/paths.cfg", "section paths\n{\ncdr_stated_db = /var/cdr/stated\ncdr_missed_db = m.db\n}\n");
  CMAgent& agent = Start();
  EXPECT_EQ("/var/cdr/stated", agent.generalData.cdr.statedPath);
  EXPECT_EQ(root_.Path("telephony/m.db"), agent.generalData.cdr.missedPath);
}

}  // namespace
