// Threads over one agent and over the shared settings, as the call manager
// runs them once the agent is loaded. Meant for the tsan preset too: a
// missing lock shows there as a report, while the checks here catch what
// is lost or read half old, half new.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "cmcfg/functions.h"
#include "cmcfg/media_agent_config.h"
#include "platform/blocks/general_settings_accessor.h"
#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;

// Two versions of general.cfg whose every value tells which one was read:
// 1 has both log flags on, 4 FXO ports and 3 ISDN interfaces; 2 has both
// flags off, 8 ports and 5 interfaces.
std::string General(int version) {
  bool one = version == 1;
  return std::string("section logging\n{\nlog_enabled = ") + (one ? "1" : "0") +
         "\nlog_details = " + (one ? "1" : "0") + "\n}\nsection pstn\n{\nfxo_ports = " +
         (one ? "4" : "8") + "\nisdn_interfaces = " + (one ? "3" : "5") + "\n}\n";
}

std::string LogLogin(bool on) {
  const char* flag = on ? "1" : "0";
  return std::string("section login\n{\nlogin_trace = ") + flag + "\nlogin_audit = " + flag +
         "\n}\n";
}

class ThreadsTest : public AgentTest {
 protected:
  // Replaces a file in one step, as the store's own saves do (a new file
  // renamed over the old): a reader sees the old file or the new one.
  void Replace(const std::string& relative, const std::string& text) const {
    root_.Write(relative + ".next", text);
    EXPECT_EQ(0, std::rename(root_.Path(relative + ".next").c_str(), root_.Path(relative).c_str()));
  }
};

// --- the shared general settings, reloaded by several threads at once

TEST_F(ThreadsTest, ReloadingReadersSeeWholeFilesWhileTheSettingsAreHeldOpen) {
  Replace("telephony/general.cfg", General(1));
  // Held as during the agent's start-up: every call below reloads this one
  // object instead of reading a fresh one of its own.
  GeneralSettingsAccessor* held = GeneralSettingsAccessor::GetInstance(true);
  ASSERT_NE(nullptr, held);

  std::atomic<bool> written{false};
  std::thread writer([&] {
    for (int i = 0; i < 150; ++i) Replace("telephony/general.cfg", General(i % 2 == 0 ? 2 : 1));
    written = true;
  });
  // A reading mixing the versions, or a call that gave nothing, is torn.
  auto read = [&](int* torn) {
    MediaAgentConfig media;
    for (int i = 0; i < 60 || !written; ++i) {
      bool enabled = false, details = true;
      GetLogLevel(&enabled, &details);
      int ports = GetNumberOfFXO();
      unsigned isdn = media.GetNumOfIsdn();
      if (enabled != details || (ports != 4 && ports != 8) || (isdn != 3 && isdn != 5)) ++*torn;
    }
  };
  int torn[2] = {0, 0};
  std::thread first(read, &torn[0]);
  std::thread second(read, &torn[1]);
  writer.join();
  first.join();
  second.join();
  EXPECT_EQ(0, torn[0]);
  EXPECT_EQ(0, torn[1]);

  // Each call still refreshes the held object itself.
  Replace("telephony/general.cfg", General(2));
  bool enabled = true, details = true;
  GetLogLevel(&enabled, &details);
  EXPECT_FALSE(enabled);
  EXPECT_FALSE(details);
  EXPECT_EQ(0, held->logEnabled);
  Replace("telephony/general.cfg", General(1));
  EXPECT_EQ(4, GetNumberOfFXO());
  EXPECT_EQ(1, held->logDetails);
  GeneralSettingsAccessor::CloseInstance();
}

TEST_F(ThreadsTest, AgentReReadsItsLogFlagsFromSeveralThreads) {
  Replace("telephony/general.cfg", General(1));
  Replace("telephony/log_login.cfg", LogLogin(true));
  CMAgent& agent = Start();
  agent.Destroy();
  GeneralSettingsAccessor* held = GeneralSettingsAccessor::GetInstance(true);
  ASSERT_NE(nullptr, held);

  std::atomic<bool> written{false};
  std::thread writer([&] {
    for (int i = 0; i < 100; ++i) {
      Replace("telephony/general.cfg", General(i % 2 == 0 ? 2 : 1));
      Replace("telephony/log_login.cfg", LogLogin(i % 2 != 0));
    }
    written = true;
  });
  auto reload = [&] {
    for (int i = 0; i < 40 || !written; ++i) agent.LoadLogLevel();
  };
  std::thread first(reload);
  std::thread second(reload);
  writer.join();
  first.join();
  second.join();

  Replace("telephony/general.cfg", General(2));
  Replace("telephony/log_login.cfg", LogLogin(false));
  agent.LoadLogLevel();
  EXPECT_FALSE(agent.logEnabled);
  EXPECT_FALSE(agent.logLevelSecond);
  EXPECT_FALSE(agent.logLogin);
  GeneralSettingsAccessor::CloseInstance();
  // Nothing held now: the flags come from a fresh reading.
  Replace("telephony/general.cfg", General(1));
  Replace("telephony/log_login.cfg", LogLogin(true));
  agent.LoadLogLevel();
  EXPECT_TRUE(agent.logEnabled);
  EXPECT_TRUE(agent.logLevelSecond);
  EXPECT_TRUE(agent.logLogin);
}

// --- the tables under LockBase / LockShList, with queries after Destroy

const int kUsers = 10;  // users 201 to 210
const char* const kChurned[] = {"201", "202", "203"};
const int kRounds = 12;  // even: the transient name ends unshared

std::string UserName(int i) { return std::to_string(201 + i); }
std::string UserHost(const std::string& name) { return "10.0.1." + name.substr(1); }

bool IsChurned(const std::string& name) {
  for (const char* churned : kChurned)
    if (name == churned) return true;
  return false;
}

// Positions of the loaded extensions by name; caller holds LockBase.
std::multimap<std::string, size_t> Slots(const CMAgent& agent) {
  std::multimap<std::string, size_t> slots;
  for (size_t i = 0; i < agent.extensionBase.size(); ++i)
    if (agent.extensionBase[i] != nullptr) slots.emplace(agent.extensionBase[i]->name, i);
  return slots;
}

TEST_F(ThreadsTest, QueriesRunWhileTheTablesChangeUnderTheirLocks) {
  root_.Write("telephony/general.cfg",
              "section logging\n{\nlog_enabled = 1\n}\nsection pstn\n{\nfxo_ports = 6\n}\n");
  root_.Write("telephony/regional/tonetypes.cfg",
              "section DeviceTone_InsideDial\n{\nis_play_wav_on = 0\n}\n");
  for (int i = 0; i < kUsers; ++i) {
    std::string name = UserName(i);
    root_.Write("telephony/extensiondb/user/" + name + ".cfg",
                "section sip\n{\nuser_name = u" + name + "\nhost = " + UserHost(name) +
                    "\nport = 5060\n}\nsection codecs\n{\nvoice_codecs = G711A,G729\n}\n");
  }
  CMAgent& agent = Start();
  agent.Destroy();  // from here on every query opens what it needs per call

  const size_t initialSize = agent.extensionBase.size();
  ASSERT_EQ(static_cast<size_t>(kUsers), Slots(agent).size());
  for (int i = 0; i < kUsers; ++i) agent.ShareExtension(UserName(i), true, false);
  // The queries' own records: copies, never the table's, which the
  // changing thread deletes.
  std::vector<ExtensionData> copies;
  for (ExtensionData* record : agent.extensionBase)
    if (record != nullptr) copies.push_back(*record);

  std::atomic<bool> changed{false};
  int loaded = 0;
  std::thread changer([&] {
    for (int round = 0; round < kRounds; ++round) {
      for (const char* name : kChurned) {
        agent.LockBase();
        agent.LockShList();  // a deleted record leaves the shared list
        std::multimap<std::string, size_t> slots = Slots(agent);
        auto slot = slots.find(name);
        if (slot != slots.end()) agent.EraseExtension(slot->second, true, round % 2 != 0);
        agent.UnlockShList();
        agent.UnlockBase();

        agent.LockShList();
        agent.ShareExtension("transient", round % 2 == 0, false);
        agent.UnlockShList();

        agent.LockBase();
        loaded += agent.LoadExtensionDB(name, kExtUser);
        agent.UnlockBase();

        agent.LockShList();
        agent.ShareExtension(name, true, true);
        agent.UnlockShList();
      }
    }
    changed = true;
  });

  struct Counts {
    int missingStable = 0;  // a walk without a name that never leaves
    int badHost = 0;        // a table record with another extension's data
    int failedQueries = 0;
    int badSettings = 0;
  };
  auto query = [&](int id, Counts* counts) {
    std::vector<ExtensionData> mine = copies;
    for (int i = 0; i < 30 || !changed; ++i) {
      agent.LockBase();
      int stable = 0;
      for (const ExtensionData* record : agent.extensionBase) {
        if (record == nullptr) continue;
        if (!IsChurned(record->name)) ++stable;
        if (record->sip.host != UserHost(record->name)) ++counts->badHost;
      }
      agent.UnlockBase();
      if (stable != kUsers - 3) ++counts->missingStable;

      agent.LockShList();
      int sharedStable = 0;
      for (const SharedExtension& shared : agent.generalData.sharedExtensions)
        if (!IsChurned(shared.extension) && shared.extension != "transient") ++sharedStable;
      agent.UnlockShList();
      if (sharedStable != kUsers - 3) ++counts->missingStable;

      ExtensionData& record = mine[(i + id) % mine.size()];
      if (!agent.GetSipData(&record, nullptr, nullptr) || record.sip.host != UserHost(record.name))
        ++counts->failedQueries;
      if (!agent.GetCodecData(&record, nullptr) || record.line.voiceCodecs.size() != 2)
        ++counts->failedQueries;
      bool enabled = false;
      GetLogLevel(&enabled, nullptr);
      if (!enabled || GetNumberOfFXO() != 6) ++counts->badSettings;
      if (agent.IsWaveOn(DeviceTone_InsideDial) || !agent.IsWaveOn(DeviceTone_OutsideDial))
        ++counts->badSettings;
      if (i % 5 == id) agent.LoadToneTypes();
    }
  };
  Counts counts[3];
  std::vector<std::thread> queries;
  for (int id = 0; id < 3; ++id) queries.emplace_back(query, id, &counts[id]);
  changer.join();
  for (std::thread& thread : queries) thread.join();

  for (const Counts& c : counts) {
    EXPECT_EQ(0, c.missingStable);
    EXPECT_EQ(0, c.badHost);
    EXPECT_EQ(0, c.failedQueries);
    EXPECT_EQ(0, c.badSettings);
  }
  EXPECT_EQ(kRounds * 3, loaded);
  // Every user once; an erase that kept its slot left it empty, one that
  // compacted did not, and each reload took a new slot at the end.
  std::multimap<std::string, size_t> slots = Slots(agent);
  ASSERT_EQ(static_cast<size_t>(kUsers), slots.size());
  for (int i = 0; i < kUsers; ++i) EXPECT_EQ(1u, slots.count(UserName(i))) << UserName(i);
  EXPECT_EQ(initialSize + 3 * (kRounds / 2), agent.extensionBase.size());
  // The shared list: the untouched names as first shared, then the
  // churned ones, re-shared marked after their last reload.
  std::vector<std::pair<std::string, int>> shared;
  for (const SharedExtension& entry : agent.generalData.sharedExtensions)
    shared.emplace_back(entry.extension, entry.flag);
  std::vector<std::pair<std::string, int>> expected;
  for (int i = 3; i < kUsers; ++i) expected.emplace_back(UserName(i), 0);
  for (const char* name : kChurned) expected.emplace_back(name, 1);
  EXPECT_EQ(expected, shared);
}

}  // namespace
