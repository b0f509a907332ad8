#ifndef CMCFG_PLATFORM_BLOCKS_GENERAL_SETTINGS_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_GENERAL_SETTINGS_ACCESSOR_H_

#include <cstdint>
#include <list>
#include <string>

#include "platform/blocks/settings_accessor.h"

// The appliance's general settings ("telephony/general.cfg"). One shared,
// reference-counted instance per process (GetInstance/CloseInstance pairs)
// under the thread rule of SharedAccessor: Reload, Save and any read of
// values that another thread may reload meanwhile run under Lock. The
// file's key for each field is the field name in snake_case (documented in
// docs/); a missing key keeps the default below.
class GeneralSettingsAccessor : public SettingsAccessor<GeneralSettingsAccessor> {
 public:
  static constexpr const char* kFileName = "general.cfg";

  // Reload under the name some of its users know it by.
  bool Load() { return Reload(); }

  // --- logging
  int32_t logEnabled = 0;        // trace lines into "cmcfg.log"
  int32_t logDetails = 0;        // second log flag, kept for the call manager
  // --- system
  std::string systemPrefix;      // prefix of generated SIP user names
  std::list<std::string> voiceCodecs;       // default voice codec names
  std::list<std::string> extraVoiceCodecs;  // appended after voiceCodecs
  std::string routingMode = "R"; // first character used
  std::string operatorNumber;
  std::string callerIdLocal = "%a";   // caller-ID template, internal calls
  std::string callerIdIp = "%a";      // caller-ID template, IP calls (%h allowed)
  std::string callerIdPstn = "%u";    // caller-ID template, PSTN calls
  uint32_t maxExtensions = 64;   // slots of the extension table
  int32_t maxExternalUsers = 32;
  int32_t externalUserExpiryHours = 6;
  // --- call limits and timers
  uint16_t maxHoldCalls = 5;
  int32_t maxConferenceParties = 32;
  int32_t maxParkedCalls = 16;
  int32_t maxCallWaiting = 5;
  int32_t maxCallsPerExtension = 2;
  int32_t dialTimeout = 10;
  int32_t parkTimeout = 180;
  int32_t noAnswerTimeout = 60;
  int32_t interDigitTimeout = 10;
  int32_t hotDesking = 0;
  int32_t directInwardDial = 0;
  int32_t musicOnHold = 0;
  int32_t toneWaveMode = 0;      // 0 per tone, 1 always recorded, 2 never
  int32_t sipKeepAlive = 1;
  int32_t conferenceTone = 0;
  int32_t callPickupNotify = 0;
  int32_t bargeIn = 0;
  int32_t sessionTimer = 0;      // 0: off; then the interval is not used
  int32_t sessionTimerInterval = 1800;
  int32_t emergencyRouting = 1;
  int32_t stunEnabled = 0;
  int32_t natKeepAlive = 0;
  int32_t earlyMedia = 0;
  int32_t mwiMode = 0;
  // --- PSTN agents and trunk interfaces
  int32_t fxoAgent = 0;          // non-zero: the PSTN agent is FXO
  int32_t isdnAgent = 0;
  int32_t casAgent = 0;
  int32_t fxoPorts = 2;
  uint32_t isdnInterfaces = 1;
  uint32_t e1t1Interfaces = 1;
  // --- call records: on/off, then per database (stated, missed,
  // unsuccessful) the record limit and the number of kept files
  int32_t cdrEnabled = 1;
  uint32_t cdrStatedRecords = 1000;
  uint32_t cdrMissedRecords = 1000;
  uint32_t cdrFailedRecords = 1000;
  uint32_t cdrStatedFiles = 10;
  uint32_t cdrMissedFiles = 10;
  uint32_t cdrFailedFiles = 10;

 private:
  explicit GeneralSettingsAccessor(std::string path);
  ~GeneralSettingsAccessor() = default;
  friend class SharedAccessor<GeneralSettingsAccessor>;
  friend class SettingsAccessor<GeneralSettingsAccessor>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_GENERAL_SETTINGS_ACCESSOR_H_
