#ifndef CMCFG_SYSTEM_RECORDS_H_
#define CMCFG_SYSTEM_RECORDS_H_

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "cmcfg/call_params.h"
#include "cmcfg/codec_info.h"
#include "cmcfg/export.h"
#include "cmcfg/types.h"

class Attendant;
class ThreadMutex;
struct ExtPersonalInfoParams;

// The appliance-wide default ring cadence, shared between threads: read or
// change `cadence` only with `mutex` held.
class CMCFG_EXPORT DefaultRingpattern {
 public:
  // Creates the mutex (owned); the cadence stays empty until Init.
  DefaultRingpattern();
  // Deletes the mutex.
  ~DefaultRingpattern();
  DefaultRingpattern(const DefaultRingpattern&) = delete;
  DefaultRingpattern& operator=(const DefaultRingpattern&) = delete;

  // Takes the FXS ring cadence, under the mutex; no FXS settings or fewer
  // than two values give "1000,2500".
  void Init();

  std::vector<unsigned long> cadence;
  ThreadMutex* mutex;
};

// The process's default ring cadence; CMAgent::Init fills it.
extern CMCFG_EXPORT DefaultRingpattern _gDefRingPattern;

// An extension's password as key presses. The records of this header are
// plain values; the lists are owned by the record that holds them.
struct CMCFG_EXPORT PasswordData {
  // Takes the password policy as `setting`, and the password as keys:
  // digits become 0x100 + digit, "*" 0x12A; other characters are skipped.
  PasswordData& operator=(const ExtPersonalInfoParams& params);
  std::vector<KeypadButton> keys;
  int32_t setting = 3;
};

// Call-record settings: per database (stated, missed, unsuccessful calls)
// its path, record limit and kept files.
struct CMCFG_EXPORT CDRData {
  int32_t enabled = 1;
  int32_t second = 1;
  int32_t third = 0;
  std::string statedPath;
  std::string missedPath;
  std::string failedPath;
  uint32_t statedRecords = 0;
  uint32_t missedRecords = 0;
  uint32_t failedRecords = 0;
  uint32_t statedFiles = 10;
  uint32_t missedFiles = 10;
  uint32_t failedFiles = 10;
};

// An extension of the shared-extension list (guarded by LockShList).
struct CMCFG_EXPORT SharedExtension {
  SharedExtension() = default;
  explicit SharedExtension(const std::string& name) : extension(name) {}
  std::string extension;
  int32_t flag = 0;
};

// An auto-login phone; known by phoneAddress and phoneType together.
struct CMCFG_EXPORT AuthorizedPhonesData {
  std::string phoneAddress;
  std::string extension;
  int32_t phoneType = 2;
  int32_t lineCount = 2;
  std::string userName;
  int32_t permissions = 0;
  int32_t loginTime = 0;
};

// An external user: a registered user that is not an extension.
class CMCFG_EXPORT ExternalUserEntry : public CallParams {
 public:
  ExternalUserEntry() = default;
  ExternalUserEntry(const ExternalUserEntry&) = default;
  ExternalUserEntry& operator=(const ExternalUserEntry&) = default;

  std::string e164Number;
  long registrationTime = 0;
};

// One entry of an access list.
struct CMCFG_EXPORT AccessData : public AddrInfo {
  int32_t priority = 0;
};

// An extension's automatic call: when enabled, the destination dialled.
struct CMCFG_EXPORT AutoCallData {
  int32_t enabled = 0;
  std::string destination;
};

// The system-wide data the call manager reads, filled by the agent's load.
struct CMCFG_EXPORT GeneralData {
  Attendant* sysAttendant = nullptr;  // owned by the agent, not by this record
  std::string systemPrefix;
  std::list<CodecInfo> defaultVoiceCodecs;
  std::string externalUserCacheDb;
  std::list<ExternalUserEntry> externalUserCache;
  std::string externalUserDb;
  std::list<ExternalUserEntry> externalUsers;
  int32_t maxExternalUsers = 32;
  std::list<SharedExtension> sharedExtensions;
  CDRData cdr;
  char routingMode = 'R';
  std::string operatorNumber;
  std::string dialPlanPath;
  std::string regStatusFile;
  std::string callerIdLocal;  // caller-ID templates, by call type 0, 1, 2
  std::string callerIdIp;
  std::string callerIdPstn;
  std::list<AuthorizedPhonesData> authorizedPhones;
  uint16_t pstnAgentType = 1;  // 1 FXO, 3 E1/T1 CAS
  uint16_t maxHoldCalls = 5;
  int32_t maxConferenceParties = 32;
  int32_t maxParkedCalls = 16;
  int32_t maxCallWaiting = 5;
  int32_t maxCallsPerExtension = 2;
  int32_t dialTimeout = 10;
  int32_t parkTimeout = 180;
  int32_t noAnswerTimeout = 60;
  int32_t externalUserExpiry = 21600;  // seconds
  int32_t interDigitTimeout = 10;
  int32_t registrationRetries = 5;
  int32_t hotDesking = 0;
  int32_t directInwardDial = 0;
  int32_t musicOnHold = 0;
  int32_t nightService = 0;
  int32_t groupCallWaiting = 0;
  int32_t toneWaveMode = 0;  // 0 per tone, 1 always recorded, 2 never
  int32_t callRecording = 0;
  int32_t conferenceTone = 0;
  int32_t sipKeepAlive = 1;
  int32_t callPickupNotify = 0;
  int32_t bargeIn = 0;
  int32_t earlyMedia = 0;
  int32_t videoCalls = 0;
  int32_t presence = 0;
  int32_t casAgentFlag = 0;
  int32_t sessionTimer = 0;
  int32_t sessionTimerInterval = 0;
  int32_t emergencyRouting = 1;
  int32_t stunEnabled = 0;
  int32_t natKeepAlive = 0;
  int32_t mwiMode = 0;
  int32_t fxoPorts = 0;
};

#endif  // CMCFG_SYSTEM_RECORDS_H_
