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

// Runs `change` on one thread and read(id, done) on `readers` others; done
// turns true once the changes are over, and the readers go on until then.
template <typename Change, typename Read>
void Race(int readers, Change change, Read read) {
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  for (int id = 0; id < readers; ++id) threads.emplace_back([&, id] { read(id, done); });
  change();
  done = true;
  for (std::thread& thread : threads) thread.join();
}

class ThreadsTest : public testing_support::AgentTest {
 protected:
  // Replaces a file in one step, as the store's own saves do (a new file
  // renamed over the old): a reader sees the old file or the new one.
  void Replace(const std::string& relative, const std::string& text) const {
    root_.Write(relative + ".next", text);
    EXPECT_EQ(0, std::rename(root_.Path(relative + ".next").c_str(), root_.Path(relative).c_str()));
  }
  // Two versions of the settings whose every value tells which one was
  // read: 1 has every log flag on, 4 FXO ports and 3 ISDN interfaces; 2 has
  // them off, 8 ports and 5 interfaces.
  void Version(int version) {
    const bool one = version == 1;
    const std::string flag = one ? "1" : "0";
    Replace("telephony/general.cfg", "section logging\n{\nlog_enabled = " + flag + "\nlog_details = " + flag +
                                         "\n}\nsection pstn\n{\nfxo_ports = " + (one ? "4" : "8") +
                                         "\nisdn_interfaces = " + (one ? "3" : "5") + "\n}\n");
    Replace("telephony/log_login.cfg", "section login\n{\nlogin_trace = " + flag + "\nlogin_audit = " + flag + "\n}\n");
  }
};

// The flags the agent and the free functions report, version 1 or 2.
void ExpectVersion(CMAgent& agent, int version) {
  bool enabled = version != 1, details = version != 1;
  GetLogLevel(&enabled, &details);
  agent.LoadLogLevel();
  for (bool flag : {enabled, details, agent.logEnabled, agent.logLevelSecond, agent.logLogin})
    EXPECT_EQ(version == 1, flag);
  EXPECT_EQ(version == 1 ? 4 : 8, GetNumberOfFXO());
}

TEST_F(ThreadsTest, ReadersAndReloadingAgentsSeeWholeFilesWhileTheSettingsAreHeldOpen) {
  Version(1);
  CMAgent& agent = Start();
  agent.Destroy();
  // Held as during the agent's start-up: every call below reloads this one
  // object instead of reading a fresh one of its own.
  GeneralSettingsAccessor* held = GeneralSettingsAccessor::GetInstance(true);
  ASSERT_NE(nullptr, held);
  // Two threads read, two make the agent re-read its flags. A reading
  // mixing the versions, or a call that gave nothing, is torn.
  int torn[2] = {0, 0};
  Race(4, [&] { for (int i = 0; i < 150; ++i) Version(i % 2 == 0 ? 2 : 1); },
       [&](int id, const std::atomic<bool>& done) {
         MediaAgentConfig media;
         for (int i = 0; i < 60 || !done; ++i) {
           if (id >= 2) {
             agent.LoadLogLevel();
             continue;
           }
           bool enabled = false, details = true;
           GetLogLevel(&enabled, &details);
           const int ports = GetNumberOfFXO();
           const unsigned isdn = media.GetNumOfIsdn();
           torn[id] += enabled != details || (ports != 4 && ports != 8) || (isdn != 3 && isdn != 5);
         }
       });
  EXPECT_EQ(0, torn[0]);
  EXPECT_EQ(0, torn[1]);

  // Each call refreshes the held object itself; once nothing holds it, the
  // flags come from a fresh reading.
  for (int step = 0; step < 4; ++step) {
    Version(2 - step % 2);
    ExpectVersion(agent, 2 - step % 2);
    if (step < 2) {
      EXPECT_EQ(2 * step, held->logEnabled + held->logDetails);
    }
    if (step == 1) GeneralSettingsAccessor::CloseInstance();
  }
  // Files gone: the log flags stay, a missing login file reads as off.
  ASSERT_EQ(0, std::remove(root_.Path("telephony/general.cfg").c_str()));
  ASSERT_EQ(0, std::remove(root_.Path("telephony/log_login.cfg").c_str()));
  agent.LoadLogLevel();
  EXPECT_TRUE(agent.logEnabled && agent.logLevelSecond);
  EXPECT_FALSE(agent.logLogin);
}

// --- the tables under LockBase / LockShList, with queries after Destroy

const int kUsers = 10;  // users 201 to 210; the first three are churned
const int kRounds = 12;  // even: the transient name ends unshared

std::string UserName(int i) { return std::to_string(201 + i); }
std::string UserHost(const std::string& name) { return "10.0.1." + name.substr(1); }
bool IsChurned(const std::string& name) { return name == "201" || name == "202" || name == "203"; }

// Positions of the loaded extensions by name; caller holds LockBase.
std::multimap<std::string, size_t> Slots(const CMAgent& agent) {
  std::multimap<std::string, size_t> slots;
  for (size_t i = 0; i < agent.extensionBase.size(); ++i)
    if (agent.extensionBase[i] != nullptr) slots.emplace(agent.extensionBase[i]->name, i);
  return slots;
}

TEST_F(ThreadsTest, QueriesRunWhileTheTablesChangeUnderTheirLocks) {
  root_.Write("telephony/general.cfg", "section logging\n{\nlog_enabled = 1\n}\nsection pstn\n{\nfxo_ports = 6\n}\n");
  root_.Write("telephony/regional/tonetypes.cfg", "section DeviceTone_InsideDial\n{\nis_play_wav_on = 0\n}\n");
  for (int i = 0; i < kUsers; ++i)
    root_.Write("telephony/extensiondb/user/" + UserName(i) + ".cfg",
                "section sip\n{\nuser_name = u" + UserName(i) + "\nhost = " + UserHost(UserName(i)) +
                    "\nport = 5060\n}\nsection codecs\n{\nvoice_codecs = G711A,G729\n}\n");
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

  // Runs fn under the shared list's lock, and the table's with `base`.
  auto locked = [&](bool base, auto fn) {
    if (base) agent.LockBase();
    agent.LockShList();
    fn();
    agent.UnlockShList();
    if (base) agent.UnlockBase();
  };
  int loaded = 0;
  // Per query thread: walks missing a name that never leaves, table records
  // with another extension's data, failed queries, settings read wrong.
  int bad[3] = {};
  Race(3, [&] {
    for (int round = 0; round < kRounds; ++round) {
      for (const char* name : {"201", "202", "203"}) {
        locked(true, [&] {  // a deleted record leaves the shared list
          const std::multimap<std::string, size_t> slots = Slots(agent);
          if (slots.count(name)) agent.EraseExtension(slots.find(name)->second, true, round % 2 != 0);
        });
        locked(false, [&] { agent.ShareExtension("transient", round % 2 == 0, false); });
        agent.LockBase();
        loaded += agent.LoadExtensionDB(name, kExtUser);
        agent.UnlockBase();
        locked(false, [&] { agent.ShareExtension(name, true, true); });
      }
    }
  }, [&](int id, const std::atomic<bool>& done) {
    std::vector<ExtensionData> mine = copies;
    for (int i = 0; i < 30 || !done; ++i) {
      int stable = 0, sharedStable = 0;
      agent.LockBase();
      for (const ExtensionData* record : agent.extensionBase) {
        if (record == nullptr) continue;
        stable += !IsChurned(record->name);
        bad[id] += record->sip.host != UserHost(record->name);
      }
      agent.UnlockBase();
      locked(false, [&] {
        for (const SharedExtension& shared : agent.generalData.sharedExtensions)
          sharedStable += !IsChurned(shared.extension) && shared.extension != "transient";
      });
      bad[id] += (stable != kUsers - 3) + (sharedStable != kUsers - 3);
      ExtensionData& record = mine[(i + id) % mine.size()];
      bad[id] += !agent.GetSipData(&record, nullptr, nullptr) || record.sip.host != UserHost(record.name);
      bad[id] += !agent.GetCodecData(&record, nullptr) || record.line.voiceCodecs.size() != 2;
      bool enabled = false;
      GetLogLevel(&enabled, nullptr);
      bad[id] += !enabled || GetNumberOfFXO() != 6;
      bad[id] += agent.IsWaveOn(DeviceTone_InsideDial) || !agent.IsWaveOn(DeviceTone_OutsideDial);
      if (i % 5 == id) agent.LoadToneTypes();
    }
  });
  EXPECT_EQ((std::vector<int>{0, 0, 0}), std::vector<int>(bad, bad + 3));
  EXPECT_EQ(kRounds * 3, loaded);
  // Every user once; an erase that kept its slot left it empty, one that
  // compacted did not, and each reload took a new slot at the end.
  const std::multimap<std::string, size_t> slots = Slots(agent);
  ASSERT_EQ(static_cast<size_t>(kUsers), slots.size());
  for (int i = 0; i < kUsers; ++i) EXPECT_EQ(1u, slots.count(UserName(i))) << UserName(i);
  EXPECT_EQ(initialSize + 3 * (kRounds / 2), agent.extensionBase.size());
  // The shared list: the untouched names as first shared, then the
  // churned ones, re-shared marked after their last reload.
  std::vector<std::pair<std::string, int>> shared, expected;
  for (const SharedExtension& entry : agent.generalData.sharedExtensions)
    shared.emplace_back(entry.extension, entry.flag);
  for (int i = 3; i < kUsers; ++i) expected.emplace_back(UserName(i), 0);
  for (const char* name : {"201", "202", "203"}) expected.emplace_back(name, 1);
  EXPECT_EQ(expected, shared);
}

}  // namespace
