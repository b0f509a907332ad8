#ifndef CMCFG_TONE_TYPE_H_
#define CMCFG_TONE_TYPE_H_

#include <cstdint>
#include <string>

#include "cmcfg/export.h"

// The call-progress and signalling tones the appliance can play. Each name
// is also the tone's section name in the regional tone file.
enum DeviceTone {
  DeviceTone_Silence = 0,
  DeviceTone_Dtmf1,
  DeviceTone_Dtmf2,
  DeviceTone_Dtmf3,
  DeviceTone_Dtmf4,
  DeviceTone_Dtmf5,
  DeviceTone_Dtmf6,
  DeviceTone_Dtmf7,
  DeviceTone_Dtmf8,
  DeviceTone_Dtmf9,
  DeviceTone_Dtmf0,
  DeviceTone_DtmfStar,
  DeviceTone_DtmfPound,
  DeviceTone_InsideDial,
  DeviceTone_OutsideDial,
  DeviceTone_LineBusy,
  DeviceTone_Alerting,
  DeviceTone_Reorder,
  DeviceTone_Reverting,
  DeviceTone_FirstLineOffHook,
  DeviceTone_FirstLineOffHookNewMailExist,
  DeviceTone_SecondLineOffHook,
  DeviceTone_SecondLineOffHookNewMailExist,
  DeviceTone_TransferLineOffHook,
  DeviceTone_NoSuchNumber,
  DeviceTone_BusyVerification,
  DeviceTone_CallWaiting,
  DeviceTone_Confirmation,
  DeviceTone_BeepBonk,
  DeviceTone_Music,
  DeviceTone_Hold,
  DeviceTone_NotSupported,
  DeviceTone_Test,
  DeviceTone_SystemAlert,
  DeviceTone_NetworkFailure,
  DeviceTone_TemporaryUnavailable,
  DeviceTone_SystemOverload,
  DeviceTone_PSTN_Busy,
  DeviceTone_PSTN_Failure,
  DeviceTone_CallSetupInProgress,
  DeviceTone_CallBlockSuccess,
  DeviceTone_CallBlockExists,
  DeviceTone_DndActivate,
  DeviceTone_DndDeActivate,
  DeviceTone_ForwardActivate,
  DeviceTone_ForwardDeactivate,
  DeviceTone_ForwardNotConfigured,
  DeviceTone_Disconnect,
  DeviceTone_CallParkBusy,
  DeviceTone_AuthorizationFailure,
  DeviceTone_PSTN_DialTone,
  DeviceTone_NoPickupCall,
  DeviceTone_FirstLineOffHookFwdExist,
  DeviceTone_SecondLineOffHookFwdExist,
  DeviceTone_NewUserInQueue,
  DeviceTone_RecorderWarning,
  DeviceTone_RecorderDetected,
  DeviceTone_PartialDial,
  DeviceTone_CampOnIndication,
  DeviceTone_RecallDial,
  DeviceTone_Zip,
  DeviceTone_2105HZ,
  DeviceTone_2600HZ,
  DeviceTone_440HZ,
  DeviceTone_300HZ,
  DeviceTone_NoTone,
};

const int kDeviceToneCount = 66;

// Name of each tone, indexed by its value.
extern CMCFG_EXPORT const char* const DeviceToneNames[kDeviceToneCount];

// How one tone is played. The field names are the tone file's keys.
class CMCFG_EXPORT ToneType {
 public:
  ToneType() = default;
  // The pattern, mode, first frequency and level; the second frequency and
  // level zero, played from the sound file.
  ToneType(const std::string& pattern, uint32_t mode, uint16_t frequency1, int32_t level1);
  ToneType(const ToneType&) = default;
  // Copies every field.
  ToneType& operator=(const ToneType& other);

  // Durations in ms, on and off alternately ("400,400"); in mode 1 also
  // "0,silence,tone".
  std::string pattern;
  uint32_t mode = 0;
  uint16_t frequency_1 = 0;
  uint16_t frequency_2 = 0;
  int32_t tone_level_1 = 0;
  int32_t tone_level_2 = 0;
  bool is_play_wav_on = true;  // played from a recorded sound file
};

#endif  // CMCFG_TONE_TYPE_H_
