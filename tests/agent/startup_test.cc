#include <gtest/gtest.h>

#include <stdlib.h>

#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

const char kLoggingOn[] = "section logging\n{\nlog_enabled = 1\n}\n";

class StartupTest : public AgentTest {
 protected:
  std::string Log() const { return root_.Read("cmcfg.log"); }
};

TEST_F(StartupTest, LogHoldsTheStartUpLinesAndOneBanner) {
  root_.Write("telephony/general.cfg", kLoggingOn);
  CMAgent& agent = Start();
  EXPECT_TRUE(agent.logEnabled);
  EXPECT_NE(std::string::npos, Log().find("GetCDRData: stated - " + root_.Path("telephony/CDR_db")));
  EXPECT_NE(std::string::npos,
            Log().find("GetExternalUserDB: file - " + root_.Path("telephony/externaluserdb") + ".\n"));
  agent.Destroy();
  const std::string banner =
      "******* CM has been loaded (hope successfully :) ), destoying all temporary instances "
      "*******\n\n";
  EXPECT_NE(std::string::npos, Log().find(banner));
  agent_.reset();  // the destructor's Destroy has no log left to write to
  std::string log = Log();
  EXPECT_EQ(log.find(banner), log.rfind(banner));
}

TEST_F(StartupTest, NoLogFileWhenLoggingIsOff) {
  Start().Destroy();
  EXPECT_FALSE(root_.Exists("cmcfg.log"));
}

TEST_F(StartupTest, TableGrowsOnlyForMoreThanSixtyFourExtensions) {
  root_.Write("telephony/general.cfg", "section system\n{\nmax_extensions = 10\n}\n");
  EXPECT_EQ(64u, Start().extensionBase.size());
  root_.Write("telephony/general.cfg", "section system\n{\nmax_extensions = 100\n}\n");
  EXPECT_EQ(100u, Start().extensionBase.size());
  // Once a 34 GB request that aborted the process.
  root_.Write("telephony/general.cfg", "section system\n{\nmax_extensions = 4294967295\n}\n");
  EXPECT_EQ(1u << 20, Start().extensionBase.size());
}

TEST_F(StartupTest, RootWithoutTrailingSlashRunsIntoTheNames) {
  // "ORBA_PATH" = <root>r: the files are looked for at <root>rtelephony/...
  root_.Write("rtelephony/general.cfg", "section system\n{\nmax_extensions = 80\n}\n");
  std::string bare = root_.path() + "r";
  setenv("ORBA_PATH", bare.c_str(), 1);
  CMAgent& agent = Start();
  EXPECT_EQ(80u, agent.extensionBase.size());
  EXPECT_EQ(bare + "telephony/", agent.telephonyPath);
}

TEST_F(StartupTest, SystemMessageNamesAreAskedUpTo337) {
  root_.Write("telephony/sysmessages.cfg",
              "section 5\n{\nname = five\n}\nsection 0\n{\nname = zero\n}\n"
              "section 337\n{\nname = last\n}\nsection 338\n{\nname = beyond\n}\n");
  CMAgent& agent = Start();
  EXPECT_EQ((std::vector<std::string>{"zero", "five", "last"}), agent.sysMessageNames);
}

TEST_F(StartupTest, PstnAgentTypeFollowsTheSettings) {
  root_.Write("telephony/general.cfg", "section pstn\n{\nfxo_agent = 0\nisdn_agent = 0\ncas_agent = 1\n}\n");
  CMAgent& cas = Start();
  // Only an FXO agent counts as loaded: start-up falls back to FXO, but the
  // CAS flag stays for the call manager.
  EXPECT_EQ(1, cas.generalData.pstnAgentType);
  EXPECT_EQ(1, cas.generalData.casAgentFlag);
  EXPECT_FALSE(cas.GetPstnAgentData(true));
  EXPECT_EQ(3, cas.generalData.pstnAgentType);

  root_.Write("telephony/general.cfg", "section pstn\n{\nfxo_agent = 0\nisdn_agent = 1\ncas_agent = 1\n}\n");
  CMAgent& none = Start();
  EXPECT_EQ(1, none.generalData.pstnAgentType);
  EXPECT_EQ(0, none.generalData.casAgentFlag);
  EXPECT_FALSE(none.GetPstnAgentData(true));

  root_.Write("telephony/general.cfg", "section pstn\n{\nfxo_agent = 1\ncas_agent = 1\n}\n");
  EXPECT_TRUE(Start().GetPstnAgentData(true));
}

TEST_F(StartupTest, DefaultRingPatternNeedsTwoValues) {
  root_.Write("telephony/fxs.cfg", "section fxs\n{\nring_cadence = 500,500,500,2000\n}\n");
  CMAgent& agent = Start();
  std::vector<unsigned long> cadence;
  agent.GetDefRingpattern(&cadence);
  EXPECT_EQ((std::vector<unsigned long>{500, 500, 500, 2000}), cadence);

  root_.Write("telephony/fxs.cfg", "section fxs\n{\nring_cadence = 2000\n}\n");
  agent.UpdateDefRingPattern();
  agent.GetDefRingpattern(&cadence);
  EXPECT_EQ((std::vector<unsigned long>{1000, 2500}), cadence);
}

TEST_F(StartupTest, WaveModeDecidesBeforeTheToneTable) {
  root_.Write("telephony/regional/tonetypes.cfg",
              "section DeviceTone_InsideDial\n{\nis_play_wav_on = 0\n}\n");
  CMAgent& agent = Start();
  EXPECT_FALSE(agent.IsWaveOn(DeviceTone_InsideDial));
  EXPECT_TRUE(agent.IsWaveOn(DeviceTone_OutsideDial));
  EXPECT_TRUE(agent.IsWaveOn(static_cast<DeviceTone>(66)));
  agent.generalData.toneWaveMode = 1;
  EXPECT_TRUE(agent.IsWaveOn(DeviceTone_InsideDial));
  agent.generalData.toneWaveMode = 2;
  for (int t = 0; t < kDeviceToneCount; ++t) EXPECT_FALSE(agent.IsWaveOn(static_cast<DeviceTone>(t)));
  EXPECT_TRUE(agent.IsWaveOn(static_cast<DeviceTone>(66)));
}

TEST_F(StartupTest, MissingSystemAttendantLeavesNoAttendant) {
  CMAgent& agent = Start();
  EXPECT_EQ(nullptr, agent.generalData.sysAttendant);
  EXPECT_TRUE(agent.sysMessageNames.empty());
}

}  // namespace
