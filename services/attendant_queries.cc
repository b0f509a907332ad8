// The profile queries of attendant consoles.
#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"

bool CMAgent::GetAttGeneralParams(Attendant* attendant) {
  if (attendant == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetAttGeneralParams"));
  AttGeneralParams* block = frame.FetchAttendant<AttGeneralParams>(
      nullptr, attendant->name, IsSystemAttendant(*this, *attendant));
  if (block == nullptr) return false;
  attendant->InitGenData(*block);
  CMCFG_TRACE(this, "GetAttGeneralParams: extension %s.\n", attendant->name.c_str());
  return true;
}

bool CMAgent::GetAttPersonalInfo(Attendant* attendant) {
  if (attendant == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetAttPersonalInfo"));
  ExtPersonalInfoParams* block = frame.FetchAttendant<ExtPersonalInfoParams>(
      nullptr, attendant->name, IsSystemAttendant(*this, *attendant));
  if (block == nullptr) return false;
  attendant->InitPersonalData(*block);
  CMCFG_TRACE(this, "GetAttPersonalInfo: extension %s.\n", attendant->name.c_str());
  return true;
}
