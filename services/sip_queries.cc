// The SIP data of extensions and attendants.
#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"

namespace {

// Fills `sip` from the block and gives it a user name of its own: a name
// the SIP layer has never seen, changed each time it is built.
void FillSip(CMAgent* agent, const ExtSipSettingsParams& block, const std::string* userName,
             UsrSipData* sip) {
  sip->Init(block);
  if (userName != nullptr && !userName->empty()) sip->userName = *userName;
  agent->FillUserName(sip->userName);
}

}  // namespace

bool CMAgent::GetSipData(ExtensionData* extension, ExtSipSettingsParams* block,
                         std::string* userName) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetSipData"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  FillSip(this, *block, userName, &extension->sip);
  CMCFG_TRACE(this, "GetSipData: extension %s, sip: %s@%s:%s\n", extension->name.c_str(),
              extension->sip.userName.c_str(), extension->sip.host.c_str(),
              extension->sip.port.c_str());
  return true;
}

bool CMAgent::GetAttIpData(Attendant* attendant, bool system, std::string* userName) {
  if (attendant == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetAttIpData"));
  ExtSipSettingsParams* block = frame.FetchAttendant<ExtSipSettingsParams>(
      nullptr, attendant->name, system);
  if (block == nullptr) return false;
  FillSip(this, *block, userName, &attendant->sip);
  CMCFG_TRACE(this, "GetAttIpData: extension %s, sip: %s@%s:%s\n", attendant->name.c_str(),
              attendant->sip.userName.c_str(), attendant->sip.host.c_str(),
              attendant->sip.port.c_str());
  return true;
}
