#include "cmcfg/tone_type_reader.h"

namespace {

// The tones played when the regional tone file says nothing, by DeviceTone.
// Key tones and the recorder, partial-dial, camp-on, recall and zip tones
// have no frequency: they are never synthesised.
const ToneType* BuildDefaults() {
  static const ToneType kDefaults[kDeviceToneCount] = {
      {"0,1000", 0, 0, 0},       // Silence
      {"100,200", 1, 0, 0},      // Dtmf1
      {"100,200", 1, 0, 0},      // Dtmf2
      {"100,200", 1, 0, 0},      // Dtmf3
      {"100,200", 1, 0, 0},      // Dtmf4
      {"100,200", 1, 0, 0},      // Dtmf5
      {"100,200", 1, 0, 0},      // Dtmf6
      {"100,200", 1, 0, 0},      // Dtmf7
      {"100,200", 1, 0, 0},      // Dtmf8
      {"100,200", 1, 0, 0},      // Dtmf9
      {"100,200", 1, 0, 0},      // Dtmf0
      {"100,200", 1, 0, 0},      // DtmfStar
      {"100,200", 1, 0, 0},      // DtmfPound
      {"1500,3500", 0, 400, -6}, // InsideDial
      {"2500,4500", 0, 440, -6}, // OutsideDial
      {"400,400", 0, 450, -6},   // LineBusy
      {"400,100", 1, 620, -6},   // Alerting
      {"200,200", 0, 480, -6},   // Reorder
      {"200,100", 1, 620, -6},   // Reverting
      {"1000,0", 0, 400, -6},    // FirstLineOffHook
      {"500,100", 0, 400, -6},   // FirstLineOffHookNewMailExist
      {"1000,0", 0, 400, -6},    // SecondLineOffHook
      {"500,100", 0, 400, -6},   // SecondLineOffHookNewMailExist
      {"1000,0", 0, 400, -6},    // TransferLineOffHook
      {"400,400", 0, 270, -6},   // NoSuchNumber
      {"200,2000", 0, 620, -6},  // BusyVerification
      {"400,8000", 0, 450, -6},  // CallWaiting
      {"400,100", 1, 320, -6},   // Confirmation
      {"500,100", 1, 270, -6},   // BeepBonk
      {"1000,200", 0, 270, -6},  // Music
      {"300,100", 1, 480, -6},   // Hold
      {"300,300", 0, 320, -6},   // NotSupported
      {"200,100", 1, 480, -6},   // Test
      {"200,200", 0, 620, -6},   // SystemAlert
      {"300,300", 0, 480, -6},   // NetworkFailure
      {"400,400", 0, 480, -6},   // TemporaryUnavailable
      {"250,250", 0, 480, -6},   // SystemOverload
      {"400,400", 0, 450, -6},   // PSTN_Busy
      {"200,200", 0, 480, -6},   // PSTN_Failure
      {"400,4000", 0, 450, -6},  // CallSetupInProgress
      {"400,100", 1, 320, -6},   // CallBlockSuccess
      {"400,100", 1, 620, -6},   // CallBlockExists
      {"400,100", 1, 320, -6},   // DndActivate
      {"400,100", 1, 620, -6},   // DndDeActivate
      {"400,100", 1, 320, -6},   // ForwardActivate
      {"400,100", 1, 620, -6},   // ForwardDeactivate
      {"500,100", 1, 480, -6},   // ForwardNotConfigured
      {"400,400", 0, 450, -6},   // Disconnect
      {"400,400", 0, 450, -6},   // CallParkBusy
      {"200,200", 0, 480, -6},   // AuthorizationFailure
      {"1000,0", 0, 400, -6},    // PSTN_DialTone
      {"400,400", 0, 270, -6},   // NoPickupCall
      {"1000,0", 0, 400, -6},    // FirstLineOffHookFwdExist
      {"1000,0", 0, 400, -6},    // SecondLineOffHookFwdExist
      {"300,300", 1, 350, -6},   // NewUserInQueue
      {"100,200", 1, 0, 0},      // RecorderWarning
      {"100,200", 1, 0, 0},      // RecorderDetected
      {"100,200", 1, 0, 0},      // PartialDial
      {"100,200", 1, 0, 0},      // CampOnIndication
      {"100,200", 1, 0, 0},      // RecallDial
      {"100,200", 1, 0, 0},      // Zip
      {"100,200", 1, 2105, -6},  // 2105HZ
      {"100,200", 1, 2600, -6},  // 2600HZ
      {"100,200", 1, 440, -6},   // 440HZ
      {"100,200", 1, 300, -6},   // 300HZ
      {"100,200", 1, 0, 0},      // NoTone
  };
  return kDefaults;
}

}  // namespace

const ToneType& ToneTypeReader::GetDefaultTone(DeviceTone tone) const {
  static const ToneType* const table = BuildDefaults();
  return table[tone];
}
