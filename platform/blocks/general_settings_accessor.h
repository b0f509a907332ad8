#ifndef CMCFG_PLATFORM_BLOCKS_GENERAL_SETTINGS_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_GENERAL_SETTINGS_ACCESSOR_H_

#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "platform/blocks/shared_instance.h"

// The appliance's general settings ("telephony/general.cfg"). One shared,
// reference-counted instance per process: GetInstance/CloseInstance pairs.
// The file's key for each field is the field name in snake_case (documented
// in docs/); a missing key keeps the default below.
//
// Threads: every holder sees the same object, so a reload by one thread
// rewrites the values another is reading. The rule: Reload, Save and any
// read of values that another thread may reload meanwhile run under Lock,
// held from the reload through the reads that must agree with it (a
// reload-then-read is then one step for the other reloaders). Without
// other threads (the agent's start-up reads) no lock is needed. GetInstance
// and CloseInstance take no Lock; a holder of Lock may call them.
class GeneralSettingsAccessor {
 public:
  // Holds the shared instance's lock while in scope; not recursive.
  using Lock = SharedValuesLock<GeneralSettingsAccessor>;
  // The mutex behind Lock; the same for every instance, open or not.
  static ThreadMutex& InstanceMutex();

  // The shared instance, loading the file on first use. With
  // createIfMissing a missing or unreadable file gives an instance with the
  // defaults (never nullptr); without it such a file gives nullptr.
  static GeneralSettingsAccessor* GetInstance(bool createIfMissing);
  // Drops one reference; the last one deletes the instance.
  static void CloseInstance();

  // Reads the file again into a fresh object, whose values then replace
  // these (Reload and Load are the same operation under the two names its
  // users know it by).
  // False when it cannot be read; the values then stay as they were.
  // Caller holds Lock when other threads may use the instance.
  bool Reload();
  bool Load() { return Reload(); }
  // Writes the values changed since the file was read or last saved,
  // atomically and under the file's lock; values another process saved in
  // the meantime survive unless changed here too. True also when nothing
  // changed. Under Lock as Reload.
  bool Save();

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
  GeneralSettingsAccessor() = default;
  ~GeneralSettingsAccessor() = default;
  friend struct GeneralSettingsInstance;
  std::string path_;
  std::vector<std::string> known_;  // value texts as last read or saved
};

#endif  // CMCFG_PLATFORM_BLOCKS_GENERAL_SETTINGS_ACCESSOR_H_
