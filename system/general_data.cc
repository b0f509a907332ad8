// The system-wide general data, from the general settings.
#include "agent/agent_log.h"
#include "cmcfg/cm_agent.h"
#include "cmcfg/functions.h"
#include "platform/base/config_root.h"
#include "platform/blocks/general_settings_accessor.h"

namespace {

const int kSecondsPerHour = 3600;

void CopyLimitsAndFlags(const GeneralSettingsAccessor& s, GeneralData& g) {
  g.maxExternalUsers = s.maxExternalUsers;
  g.maxHoldCalls = s.maxHoldCalls;
  g.maxConferenceParties = s.maxConferenceParties;
  g.maxParkedCalls = s.maxParkedCalls;
  g.maxCallWaiting = s.maxCallWaiting;
  g.maxCallsPerExtension = s.maxCallsPerExtension;
  g.dialTimeout = s.dialTimeout;
  g.parkTimeout = s.parkTimeout;
  g.noAnswerTimeout = s.noAnswerTimeout;
  g.interDigitTimeout = s.interDigitTimeout;
  g.hotDesking = s.hotDesking;
  g.directInwardDial = s.directInwardDial;
  g.musicOnHold = s.musicOnHold;
  g.toneWaveMode = s.toneWaveMode;
  g.conferenceTone = s.conferenceTone;
  g.sipKeepAlive = s.sipKeepAlive;
  g.callPickupNotify = s.callPickupNotify;
  g.bargeIn = s.bargeIn;
  g.earlyMedia = s.earlyMedia;
  g.emergencyRouting = s.emergencyRouting;
  g.stunEnabled = s.stunEnabled;
  g.natKeepAlive = s.natKeepAlive;
  g.mwiMode = s.mwiMode;
  g.fxoPorts = s.fxoPorts;
  g.operatorNumber = s.operatorNumber;
  g.callerIdLocal = s.callerIdLocal;
  g.callerIdIp = s.callerIdIp;
  g.callerIdPstn = s.callerIdPstn;
}

}  // namespace

bool CMAgent::GetGeneralData(bool createIfMissing) {
  InstanceRef<GeneralSettingsAccessor> settings(createIfMissing);
  if (!settings) {
    CMCFG_TRACE(this, "GetGeneralData: failed to load accessor.\n");
    return false;
  }
  GeneralSettingsAccessor::Lock lock;  // no reload by another thread meanwhile
  GeneralData& g = generalData;
  g.systemPrefix = settings->systemPrefix;
  defaultUserName += settings->systemPrefix;

  AddLineCodecsToList(settings->voiceCodecs, g.defaultVoiceCodecs, true, false, false);
  AddLineCodecsToList(settings->extraVoiceCodecs, g.defaultVoiceCodecs, true, true, false);

  g.routingMode = settings->routingMode.empty() ? 'R' : settings->routingMode[0];
  g.sessionTimer = settings->sessionTimer;
  g.sessionTimerInterval = g.sessionTimer != 0 ? settings->sessionTimerInterval : 0;
  g.externalUserExpiry = settings->externalUserExpiryHours * kSecondsPerHour;
  // Fixed whatever the settings say: these features are not offered.
  g.registrationRetries = 5;
  g.callRecording = 0;
  g.videoCalls = 0;
  g.presence = 0;
  g.dialPlanPath = cfg::TelephonyPath("dialplan.cfg");
  CopyLimitsAndFlags(*settings.get(), g);
  return true;
}
