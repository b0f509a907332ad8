// The per-extension profile queries: each copies one property of the
// stored extension into the agent's record.
#include <algorithm>

#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"

namespace {

const unsigned long kSecondsPerMinute = 60;

void CopyServices(const ExtServicesParams& s, ExtensionData* e) {
  e->callWaiting = s.callWaiting;
  e->doNotDisturb = s.doNotDisturb;
  e->hotline = s.hotline;
  e->callTransfer = s.callTransfer;
  e->conferenceAllowed = s.conferenceAllowed;
  e->conferenceMaxParties = s.conferenceMaxParties;
  e->callPickupAllowed = s.callPickupAllowed;
  e->callPickupGroup = s.callPickupGroup;
  e->intrusionAllowed = s.intrusionAllowed;
  e->intrusionLevel = s.intrusionLevel;
  e->musicOnHold = s.musicOnHold;
  e->callerIdPresentation = s.callerIdPresentation;
  e->callHoldAllowed = s.callHoldAllowed;
  e->anonymousRejection = s.anonymousRejection;
  e->vms.mode = s.voiceMailMode;
  e->vms.rings = s.voiceMailRings;
  e->vms.mailbox = s.voiceMailBox;
  e->rc.ToggleExtPolicy(s.remoteControl != 0, false, 0);
}

}  // namespace

bool CMAgent::GetServicesTimeouts(ExtensionData* extension, ExtServicesParams* services,
                                  ExtTimeoutsParams* timeouts, bool keepLineMedia) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetServicesTimeouts"));
  services = frame.Fetch(services, extension->type, extension->name);
  if (services == nullptr) return false;
  timeouts = frame.Fetch(timeouts, extension->type, extension->name);
  if (timeouts == nullptr) return false;
  CopyServices(*services, extension);
  extension->noAnswerTimeout = timeouts->noAnswerTimeout;
  extension->callParkTimeout = timeouts->callParkTimeout;
  if (!keepLineMedia) {
    extension->line.fax = *services;
    extension->line.modem = *services;
  }
  CMCFG_TRACE(this, "GetServicesTimeouts: extension %s.\n", extension->name.c_str());
  return true;
}

bool CMAgent::GetCallParkData(ExtensionData* extension, CallParkGeneralParams* block) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetCallParkData"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  extension->callParkTimeout = static_cast<int32_t>(block->timeoutMinutes * kSecondsPerMinute);
  CMCFG_TRACE(this, "GetCallParkData: extension %s, timeout - %lu sec.\n", extension->name.c_str(),
              static_cast<unsigned long>(extension->callParkTimeout));
  return true;
}

bool CMAgent::GetPersonalInfo(ExtensionData* extension, ExtPersonalInfoParams* block) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetPersonalInfo"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  extension->displayName = block->fullName;
  extension->userClass = block->userClass;
  extension->language = block->language;
  extension->password = *block;
  extension->line.remote = *block;
  extension->line.callQueue = *block;
  // An empty profile name names no profile; skip the TOS look-up.
  if (!block->tosProfile.empty()) extension->line.tos = block->tosProfile;
  CMCFG_TRACE(this, "GetPersonalInfo: extension %s.\n", extension->name.c_str());
  return true;
}

bool CMAgent::GetAccessList(ExtensionData* extension, AccessListParams* block) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetAccessList"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  std::list<AccessData>& list = extension->accessList;
  list.clear();
  for (const AccessListParams::Entry& entry : block->entries) {
    AccessData data;
    static_cast<AddrInfo&>(data) = entry.address;
    data.priority = entry.priority;
    list.push_back(data);
  }
  // Highest priority first; entries of equal priority keep the file's order.
  list.sort([](const AccessData& a, const AccessData& b) { return a.priority > b.priority; });
  CMCFG_TRACE(this, "GetAccessList: extension %s, list size = %u.\n", extension->name.c_str(),
              static_cast<unsigned>(list.size()));
  return true;
}

bool CMAgent::GetGroupList(ExtensionData* extension, PickupGroupParams* block) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetGroupList"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  extension->groupMembers = block->members;
  CMCFG_TRACE(this, "GetGroupList: extension %s, list size = %u.\n", extension->name.c_str(),
              static_cast<unsigned>(extension->groupMembers.size()));
  return true;
}

bool CMAgent::GetAutoRedialData(ExtensionData* extension, ExtBusyRedialParams* block) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetAutoRedialData"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  extension->redialInterval = block->interval;
  extension->redialPeriod = static_cast<uint32_t>(block->periodMinutes * kSecondsPerMinute);
  CMCFG_TRACE(this, "GetAutoRedialData: extension %s, interval = %lu, period = %lu.\n",
              extension->name.c_str(), static_cast<unsigned long>(extension->redialInterval),
              static_cast<unsigned long>(extension->redialPeriod));
  return true;
}

bool CMAgent::GetAutoCallData(ExtensionData* extension, ExtAutoCallParams* block) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetAutoCallData"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  extension->autoCall.enabled = block->enabled;
  extension->autoCall.destination = block->destination;
  CMCFG_TRACE(this, "GetAutoCallData: extension %s, service is %s, destination - %s.\n",
              extension->name.c_str(), block->enabled ? "on" : "off", block->destination.c_str());
  return true;
}
