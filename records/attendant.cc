#include "cmcfg/attendant.h"

#include "platform/extension/extension_manager.h"

Attendant::Attendant(const CHAttendant& stored) {
  name = stored.GetName();
  // Decoding a block of the stored attendant changes nothing it holds; the
  // library's getters are simply not const.
  CHAttendant& att = const_cast<CHAttendant&>(stored);
  att.LoadProperty(kPropSipSettings | kPropPersonalInfo | kPropAttendantGeneral |
                   kPropAttendantConsole);
  if (const ExtSipSettingsParams* sipParams = att.GetSipSettingsParams()) sip.Init(*sipParams);
  if (const AttGeneralParams* general = att.GetAttGeneralParams()) InitGenData(*general);
  if (const ExtPersonalInfoParams* personal = att.GetPersonalInfoParams()) {
    InitPersonalData(*personal);
  }
}

void Attendant::InitGenData(const AttGeneralParams& params) {
  consoleMode = params.consoleMode;
  nightMode = params.nightMode;
  queueSize = params.queueSize;
  ringTimeout = params.ringTimeout;
  welcomeMessage = params.welcomeMessage;
  nightDestination = params.nightDestination;
  if (!params.tosProfile.empty()) tos = params.tosProfile;
}

void Attendant::InitPersonalData(const ExtPersonalInfoParams& params) {
  displayName = params.fullName;
  email = params.email;
}
