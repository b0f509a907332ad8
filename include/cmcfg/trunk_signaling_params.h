#ifndef CMCFG_TRUNK_SIGNALING_PARAMS_H_
#define CMCFG_TRUNK_SIGNALING_PARAMS_H_

#include "cmcfg/export.h"

// The vocabulary of the trunk settings files read by the telephony
// components: each table is indexed by the matching enumeration value.
// "Non", "echoCancelation", synvClockNames and loopbackmode are the names
// those files use and stay as they are.
struct CMCFG_EXPORT TrunkSignalingParams {
  static const char* const trunkModeNames[2];
  static const char* const encodingNames[2];
  static const char* const signalingNames[4];
  static const char* const trunkTypeNames[3];
  static const char* const allowedCallTypeNames[3];
  static const char* const routeCall[3];
  static const char* const updateCategoryNames[24];
  static const char* const tokensArray[30];

  struct CMCFG_EXPORT E1T1TrunkParams {
    static const char* const e1SgnTypeNames[4];
    static const char* const lineCodeNames[3];
    static const char* const frameModeNames[14];
    static const char* const lineBuildOutNames[19];
    static const char* const loopbackmode[5];
    static const char* const synvClockNames[2];
    static const char* const e1t1tokensArray[43];
  };

  struct CMCFG_EXPORT IsdnTrunkParams {
    static const char* const isdntokensArray[46];
    static const char* const isdnSwitchTypeNames[32];
  };
};

#endif  // CMCFG_TRUNK_SIGNALING_PARAMS_H_
