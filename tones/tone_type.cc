#include "cmcfg/tone_type.h"

const char* const DeviceToneNames[kDeviceToneCount] = {
    "DeviceTone_Silence",
    "DeviceTone_Dtmf1",
    "DeviceTone_Dtmf2",
    "DeviceTone_Dtmf3",
    "DeviceTone_Dtmf4",
    "DeviceTone_Dtmf5",
    "DeviceTone_Dtmf6",
    "DeviceTone_Dtmf7",
    "DeviceTone_Dtmf8",
    "DeviceTone_Dtmf9",
    "DeviceTone_Dtmf0",
    "DeviceTone_DtmfStar",
    "DeviceTone_DtmfPound",
    "DeviceTone_InsideDial",
    "DeviceTone_OutsideDial",
    "DeviceTone_LineBusy",
    "DeviceTone_Alerting",
    "DeviceTone_Reorder",
    "DeviceTone_Reverting",
    "DeviceTone_FirstLineOffHook",
    "DeviceTone_FirstLineOffHookNewMailExist",
    "DeviceTone_SecondLineOffHook",
    "DeviceTone_SecondLineOffHookNewMailExist",
    "DeviceTone_TransferLineOffHook",
    "DeviceTone_NoSuchNumber",
    "DeviceTone_BusyVerification",
    "DeviceTone_CallWaiting",
    "DeviceTone_Confirmation",
    "DeviceTone_BeepBonk",
    "DeviceTone_Music",
    "DeviceTone_Hold",
    "DeviceTone_NotSupported",
    "DeviceTone_Test",
    "DeviceTone_SystemAlert",
    "DeviceTone_NetworkFailure",
    "DeviceTone_TemporaryUnavailable",
    "DeviceTone_SystemOverload",
    "DeviceTone_PSTN_Busy",
    "DeviceTone_PSTN_Failure",
    "DeviceTone_CallSetupInProgress",
    "DeviceTone_CallBlockSuccess",
    "DeviceTone_CallBlockExists",
    "DeviceTone_DndActivate",
    "DeviceTone_DndDeActivate",
    "DeviceTone_ForwardActivate",
    "DeviceTone_ForwardDeactivate",
    "DeviceTone_ForwardNotConfigured",
    "DeviceTone_Disconnect",
    "DeviceTone_CallParkBusy",
    "DeviceTone_AuthorizationFailure",
    "DeviceTone_PSTN_DialTone",
    "DeviceTone_NoPickupCall",
    "DeviceTone_FirstLineOffHookFwdExist",
    "DeviceTone_SecondLineOffHookFwdExist",
    "DeviceTone_NewUserInQueue",
    "DeviceTone_RecorderWarning",
    "DeviceTone_RecorderDetected",
    "DeviceTone_PartialDial",
    "DeviceTone_CampOnIndication",
    "DeviceTone_RecallDial",
    "DeviceTone_Zip",
    "DeviceTone_2105HZ",
    "DeviceTone_2600HZ",
    "DeviceTone_440HZ",
    "DeviceTone_300HZ",
    "DeviceTone_NoTone",
};

ToneType::ToneType(const std::string& pattern, uint32_t mode, uint16_t frequency1, int32_t level1)
    : pattern(pattern), mode(mode), frequency_1(frequency1), tone_level_1(level1) {}

ToneType& ToneType::operator=(const ToneType& other) {
  if (this == &other) return *this;
  pattern = other.pattern;
  mode = other.mode;
  frequency_1 = other.frequency_1;
  frequency_2 = other.frequency_2;
  tone_level_1 = other.tone_level_1;
  tone_level_2 = other.tone_level_2;
  is_play_wav_on = other.is_play_wav_on;
  return *this;
}
