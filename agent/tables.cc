// The extension and attendant tables, the shared-extension list and the
// default ring pattern.
#include <algorithm>
#include <memory>
#include <optional>

#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/config_root.h"
#include "platform/base/thread_mutex.h"
#include "platform/extension/extension_manager.h"

namespace {

const char* TypeLine(ExtType type) {
  switch (type) {
    case kExtUser:
      return "*** LoadExtensionDB: user extension %s ***\n";
    case kExtPickup:
      return "*** LoadExtensionDB: pickup extension %s ***\n";
    case kExtCallPark:
      return "*** LoadExtensionDB: call park extension %s ***\n";
    case kExtPaging:
      return "*** LoadExtensionDB: paging extension %s ***\n";
    default:
      return nullptr;
  }
}

// The per-extension loaders, in their fixed order. Their results are not
// examined: a record keeps its defaults where a property cannot be read.
void LoadUser(CMAgent* agent, ExtensionData* record, Extension* stored) {
  record->description = stored->GetText();
  bool lineFlag = false;
  agent->GetLineData(record->name, &record->line, &lineFlag);
  agent->GetCodecData(record, stored->GetCodecParams());
  agent->GetSipData(record, stored->GetSipSettingsParams(), nullptr);
  agent->GetPersonalInfo(record, stored->GetPersonalInfoParams());
  agent->GetServicesTimeouts(record, stored->GetServicesParams(), stored->GetTimeoutsParams(), lineFlag);
  agent->GetSpeedDialList(record);
  agent->GetFuntionalTable(record);
  agent->GetAutoRedialData(record, stored->GetBusyRedialParams());
  agent->GetPstnAgentsChannels(record, stored->GetPstnAgentParams());
  agent->GetAutoCallData(record, stored->GetAutoCallParams());
  agent->LoadAddressBook(record);
}

void LoadGroupOrPark(CMAgent* agent, ExtensionData* record, Extension* stored) {
  agent->GetSipData(record, stored->GetSipSettingsParams(), nullptr);
  agent->GetPersonalInfo(record, stored->GetPersonalInfoParams());
  if (record->type == kExtCallPark) {
    agent->GetCallParkData(record, stored->GetCallParkParams());
  } else {  // pickup and paging groups
    agent->GetAccessList(record, stored->GetAccessListParams());
    agent->GetGroupList(record, stored->GetPickupGroupParams());
  }
  agent->GetCodecData(record, stored->GetCodecParams());
}

}  // namespace

int CMAgent::LoadExtensionDB(const std::string& name, ExtType type) {
  if (name.empty()) return 0;
  if (type == kExtAttendant) return LoadAttendantDB(name);

  // After Destroy one load reads the extension's file and several settings
  // files: opened from one descriptor of the root, each costs a system
  // call less (during the start-up the agent's own scope serves).
  std::optional<cfg::RootScope> rootScope;
  if (extensionManager == nullptr) rootScope.emplace();
  ExtensionFrame frame(this, {"*** LoadExtensionDB: failed to load extension %s ***\n", nullptr});
  frame.manager();  // after Destroy: the frame's own, which decodes everything at once
  Extension* stored = frame.Find(type, name, frame.temporary());
  if (stored == nullptr) return 0;
  const char* line = TypeLine(type);
  if (line == nullptr) {
    CMCFG_TRACE(this, "*** LoadExtensionDB: wrong type - %d - for extension %s ***\n",
                static_cast<int>(type), name.c_str());
    return 0;
  }

  std::unique_ptr<ExtensionData> record(new ExtensionData);
  record->name = name;
  record->type = type;
  CMCFG_TRACE(this, line, name.c_str());
  if (type == kExtUser) {
    LoadUser(this, record.get(), stored);
  } else {
    LoadGroupOrPark(this, record.get(), stored);
  }
  extensionBase.push_back(record.release());
  CMCFG_TRACE(this, "**************** %s ****************\n\n", name.c_str());
  return 1;
}

int CMAgent::LoadAttendantDB(const std::string& name) {
  ExtensionFrame frame(this, {"*** LoadAttendantDB: failed to load attendant %s ***\n", nullptr});
  frame.manager();
  CHAttendant* stored = frame.FindAttendant(name, false, frame.temporary());
  if (stored == nullptr) return 0;
  CMCFG_TRACE(this, "*** LoadAttendantDB: extension %s ***\n", name.c_str());
  Attendant* attendant = new Attendant(*stored);
  GetAttCodecData(attendant, stored->GetCodecParams());
  attendants.push_back(attendant);
  // One newline here where the extension loader writes two: kept so.
  CMCFG_TRACE(this, "**************** %s ****************\n", name.c_str());
  return 1;
}

void CMAgent::EraseExtension(unsigned long position, bool deleteRecord, bool compact) {
  if (position >= extensionBase.size()) return;  // callers pass valid slots; never write outside
  if (deleteRecord) {
    if (ExtensionData* record = extensionBase[position]) {
      ShareExtension(record->name, false, true);
      delete record;
    }
    extensionBase[position] = nullptr;
    if (!compact) return;
  }
  extensionBase.erase(extensionBase.begin() + position);
}

void CMAgent::EraseAttendant(unsigned long position) {
  if (position >= attendants.size()) return;
  delete attendants[position];
  attendants.erase(attendants.begin() + position);
}

void CMAgent::IncreaseBase() { extensionBase.resize(extensionBase.size() + 1, nullptr); }

CMCFG_NO_THREAD_SAFETY_ANALYSIS void CMAgent::LockBase() { baseMutex->Lock(); }
CMCFG_NO_THREAD_SAFETY_ANALYSIS void CMAgent::UnlockBase() { baseMutex->Unlock(); }
CMCFG_NO_THREAD_SAFETY_ANALYSIS void CMAgent::LockShList() { shListMutex->Lock(); }
CMCFG_NO_THREAD_SAFETY_ANALYSIS void CMAgent::UnlockShList() { shListMutex->Unlock(); }

void CMAgent::ShareExtension(const std::string& name, bool add, bool mark) {
  std::list<SharedExtension>& shared = generalData.sharedExtensions;
  auto it = std::find_if(shared.begin(), shared.end(),
                         [&](const SharedExtension& s) { return s.extension == name; });
  if (it != shared.end()) {
    if (!add)
      shared.erase(it);
    else if (mark)
      it->flag = 1;
    return;
  }
  if (add && !name.empty()) {
    SharedExtension entry(name);
    if (mark) entry.flag = 1;
    shared.push_back(entry);
  }
}

void CMAgent::GetDefRingpattern(std::vector<unsigned long>* pattern) {
  if (pattern == nullptr) return;
  MutexLock lock(_gDefRingPattern.mutex);
  *pattern = _gDefRingPattern.cadence;
}

void CMAgent::UpdateDefRingPattern() { _gDefRingPattern.Init(); }
