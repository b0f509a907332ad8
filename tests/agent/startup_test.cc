// What the agent takes from the settings at start-up (pinned per root in
// tests/agent/startup/<case>.txt with its log; CMCFG_REGEN_GOLDEN=1
// rewrites them), and what it re-reads later.
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cmcfg/functions.h"
#include "tests/support/agent_fixture.h"
#include "tests/support/golden.h"

namespace {

const char kGeneral[] = "telephony/general.cfg";

std::string Section(const std::string& name, const std::string& body) { return "section " + name + "\n{\n" + body + "}\n"; }

std::string Logging(int enabled, int details) {
  return Section("logging", "log_enabled = " + std::to_string(enabled) + "\nlog_details = " + std::to_string(details) + "\n");
}

std::string LogLogin(int trace, int audit) {
  return Section("login", "login_trace = " + std::to_string(trace) + "\nlogin_audit = " + std::to_string(audit) + "\n");
}

struct Root {
  const char* name;
  std::vector<std::pair<std::string, std::string>> files;
};

void PrintTo(const Root& root, std::ostream* out) { *out << root.name; }

const Root kRoots[] = {
    {"empty", {}},
    {"settings",
     {{kGeneral, Logging(1, 0) + Section("system", "max_extensions = 100\n") +
                     Section("pstn", "fxo_agent = 0\nisdn_agent = 0\ncas_agent = 1\n")},
      {"telephony/log_login.cfg", LogLogin(5, 3)},
      {"telephony/sysmessages.cfg", Section("5", "name = five\n") + Section("0", "name = zero\n") +
                                        Section("337", "name = last\n") + Section("338", "name = beyond\n")},
      {"telephony/fxs.cfg", Section("fxs", "ring_cadence = 500,500,500,2000\n")},
      {"telephony/regional/tonetypes.cfg", Section("DeviceTone_InsideDial", "is_play_wav_on = 0\n")}}},
    // Fewer than two ring values; only an FXO agent counts as loaded.
    {"login_trace_only",
     {{kGeneral, Logging(0, 3) + Section("pstn", "fxo_agent = 0\nisdn_agent = 1\ncas_agent = 1\n")},
      {"telephony/log_login.cfg", LogLogin(5, 0)},
      {"telephony/fxs.cfg", Section("fxs", "ring_cadence = 2000\n")}}},
    {"login_audit_only", {{kGeneral, Section("pstn", "fxo_agent = 1\n")}, {"telephony/log_login.cfg", LogLogin(0, 3)}}},
    // The table's cap, and beyond it: that once asked for 34 GB.
    {"table_at_its_cap", {{kGeneral, Logging(1, 0) + Section("system", "max_extensions = 1048576\n")}}},
    {"table_beyond_its_cap", {{kGeneral, Logging(1, 0) + Section("system", "max_extensions = 4294967295\n")}}},
};

class StartupTest : public testing_support::AgentTest, public ::testing::WithParamInterface<Root> {};

TEST_P(StartupTest, TakesWhatIsPinned) {
  for (const auto& [file, text] : GetParam().files) root_.Write(file, text);
  CMAgent& agent = Start();
  std::ostringstream out;
  out << "slots " << agent.extensionBase.size() << ", attendants " << agent.attendants.size()
      << "\nlog enabled " << agent.logEnabled << ", details " << agent.logLevelSecond << ", login " << agent.logLogin
      << "\npstn agent " << agent.generalData.pstnAgentType << ", cas flag " << agent.generalData.casAgentFlag
      << ", fxo agent " << agent.GetPstnAgentData(true) << " then " << agent.generalData.pstnAgentType
      << "\nruntime databases: " << agent.generalData.externalUserCacheDb << ", " << agent.generalData.externalUserDb
      << ", " << agent.generalData.regStatusFile << "\nsystem messages:";
  for (const std::string& name : agent.sysMessageNames) out << ' ' << name;
  std::vector<unsigned long> cadence;
  agent.GetDefRingpattern(&cadence);
  out << "\nring pattern:";
  for (unsigned long ms : cadence) out << ' ' << ms;
  out << "\nnot played from sound files:";
  for (int t = 0; t < kDeviceToneCount; ++t)
    if (!agent.IsWaveOn(static_cast<DeviceTone>(t))) out << ' ' << DeviceToneNames[t];
  // Then shut down: the log ends with one banner, the destructor's Destroy
  // having no log left to write to; no logging, no file.
  agent.Destroy();
  agent_.reset();
  out << "\n--- telephony/paths.cfg\n" << root_.Read("telephony/paths.cfg") << "--- log\n"
      << (root_.Exists("cmcfg.log") ? Log() : "no file\n");
  testing_support::ExpectGolden("agent/startup/" + std::string(GetParam().name) + ".txt", out.str(), root_.path());
}

INSTANTIATE_TEST_SUITE_P(Roots, StartupTest, ::testing::ValuesIn(kRoots),
                         [](const ::testing::TestParamInfo<Root>& info) { return info.param.name; });

using SettingsTest = testing_support::AgentTest;

TEST_F(SettingsTest, WithoutSettingsTheLogFlagsStayAndThePortCountIsTheDefault) {
  for (bool before : {false, true}) {
    bool enabled = before, details = before;
    GetLogLevel(&enabled, &details);
    EXPECT_EQ(before, enabled && details);
    EXPECT_EQ(before, enabled || details);
  }
  EXPECT_EQ(2, GetNumberOfFXO());
  root_.Write(kGeneral, Logging(0, 7) + Section("pstn", "fxo_ports = 0\n"));
  bool details = false;
  GetLogLevel(nullptr, &details);  // only the pointers given are filled
  EXPECT_TRUE(details);
  EXPECT_EQ(0, GetNumberOfFXO());  // a configured 0 is not the fallback
}

TEST_F(SettingsTest, WaveModeDecidesBeforeTheToneTable) {
  root_.Write("telephony/regional/tonetypes.cfg", Section("DeviceTone_InsideDial", "is_play_wav_on = 0\n"));
  CMAgent& agent = Start();
  agent.generalData.toneWaveMode = 1;
  EXPECT_TRUE(agent.IsWaveOn(DeviceTone_InsideDial));
  agent.generalData.toneWaveMode = 2;
  for (int t = 0; t < kDeviceToneCount; ++t) EXPECT_FALSE(agent.IsWaveOn(static_cast<DeviceTone>(t))) << t;
  // Beyond the table, either side: played from the sound file.
  for (int t : {-1, kDeviceToneCount, 1000}) EXPECT_TRUE(agent.IsWaveOn(static_cast<DeviceTone>(t))) << t;
}

}  // namespace
