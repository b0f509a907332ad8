// The log flags and the FXO port count read from the general settings, and
// the agent's copy of them, each over a root written here.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>

#include "cmcfg/functions.h"
#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

std::string Logging(int enabled, int details) {
  return "section logging\n{\nlog_enabled = " + std::to_string(enabled) +
         "\nlog_details = " + std::to_string(details) + "\n}\n";
}

std::string LogLogin(int trace, int audit) {
  return "section login\n{\nlogin_trace = " + std::to_string(trace) +
         "\nlogin_audit = " + std::to_string(audit) + "\n}\n";
}

class LogSettingsTest : public AgentTest {
 protected:
  // Both flags of GetLogLevel, starting from `before` for each.
  std::pair<bool, bool> Flags(bool before) {
    bool enabled = before, details = before;
    GetLogLevel(&enabled, &details);
    return {enabled, details};
  }
};

TEST_F(LogSettingsTest, GetLogLevelReadsEachFlagFromItsOwnKey) {
  root_.Write("telephony/general.cfg", Logging(1, 0));
  EXPECT_EQ(std::make_pair(true, false), Flags(false));
  EXPECT_EQ(std::make_pair(true, false), Flags(true));
  root_.Write("telephony/general.cfg", Logging(0, 7));
  EXPECT_EQ(std::make_pair(false, true), Flags(false));
  EXPECT_EQ(std::make_pair(false, true), Flags(true));
}

TEST_F(LogSettingsTest, GetLogLevelFillsOnlyThePointersGiven) {
  root_.Write("telephony/general.cfg", Logging(1, 1));
  bool details = false;
  GetLogLevel(nullptr, &details);
  EXPECT_TRUE(details);
  bool enabled = false;
  GetLogLevel(&enabled, nullptr);
  EXPECT_TRUE(enabled);
  GetLogLevel(nullptr, nullptr);  // nothing to fill, nothing to break
}

TEST_F(LogSettingsTest, GetLogLevelLeavesBothFlagsWithoutSettings) {
  // No general.cfg at all: neither flag is touched, whatever it held.
  EXPECT_EQ(std::make_pair(true, true), Flags(true));
  EXPECT_EQ(std::make_pair(false, false), Flags(false));
  // Settings without the logging section read as the documented zeroes.
  root_.Write("telephony/general.cfg", "section pstn\n{\nfxo_ports = 3\n}\n");
  EXPECT_EQ(std::make_pair(false, false), Flags(true));
}

TEST_F(LogSettingsTest, GetNumberOfFxoReadsThePortCountAfresh) {
  EXPECT_EQ(2, GetNumberOfFXO());  // no settings
  root_.Write("telephony/general.cfg", "section pstn\n{\nfxo_ports = 6\n}\n");
  EXPECT_EQ(6, GetNumberOfFXO());
  root_.Write("telephony/general.cfg", "section pstn\n{\nfxo_ports = 0\n}\n");
  EXPECT_EQ(0, GetNumberOfFXO());  // a configured 0 is not the fallback
  root_.Write("telephony/general.cfg", Logging(1, 1));
  EXPECT_EQ(2, GetNumberOfFXO());  // the key's default
}

TEST_F(LogSettingsTest, AgentTakesBothLogFlagsAtStartUp) {
  root_.Write("telephony/general.cfg", Logging(0, 1));
  CMAgent& agent = Start();
  EXPECT_FALSE(agent.logEnabled);
  EXPECT_TRUE(agent.logLevelSecond);
}

TEST_F(LogSettingsTest, LogLoginNeedsBothLoginFlags) {
  for (int trace = 0; trace < 2; ++trace) {
    for (int audit = 0; audit < 2; ++audit) {
      root_.Write("telephony/log_login.cfg", LogLogin(trace * 5, audit * 3));
      EXPECT_EQ(trace && audit, Start().logLogin) << trace << audit;
    }
  }
}

TEST_F(LogSettingsTest, LoadLogLevelFollowsTheFilesAsTheyAreNow) {
  root_.Write("telephony/general.cfg", Logging(0, 0));
  root_.Write("telephony/log_login.cfg", LogLogin(1, 1));
  CMAgent& agent = Start();
  agent.Destroy();
  ASSERT_FALSE(agent.logEnabled);
  ASSERT_TRUE(agent.logLogin);

  root_.Write("telephony/general.cfg", Logging(0, 1));
  root_.Write("telephony/log_login.cfg", LogLogin(1, 0));
  agent.LoadLogLevel();
  EXPECT_FALSE(agent.logEnabled);
  EXPECT_TRUE(agent.logLevelSecond);
  EXPECT_FALSE(agent.logLogin);

  // Settings gone: the log flags stay as they were; a missing login file
  // reads as both login flags off.
  root_.Write("telephony/general.cfg", Logging(1, 1));
  root_.Write("telephony/log_login.cfg", LogLogin(1, 1));
  agent.LoadLogLevel();
  ASSERT_TRUE(agent.logEnabled);
  ASSERT_TRUE(agent.logLogin);
  ASSERT_EQ(0, std::remove(root_.Path("telephony/general.cfg").c_str()));
  ASSERT_EQ(0, std::remove(root_.Path("telephony/log_login.cfg").c_str()));
  agent.LoadLogLevel();
  EXPECT_TRUE(agent.logEnabled);
  EXPECT_TRUE(agent.logLevelSecond);
  EXPECT_FALSE(agent.logLogin);
}

}  // namespace
