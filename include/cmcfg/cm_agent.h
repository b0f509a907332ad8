#ifndef CMCFG_CM_AGENT_H_
#define CMCFG_CM_AGENT_H_

#include <list>
#include <string>
#include <utility>
#include <vector>

#include "cmcfg/attendant.h"
#include "cmcfg/codec_info.h"
#include "cmcfg/export.h"
#include "cmcfg/extension_data.h"
#include "cmcfg/system_records.h"
#include "cmcfg/tone_type.h"
#include "cmcfg/types.h"

class CHAttendant;
class EncodingManager;
class Extension;
class ExtensionManager;
class LineManager;
class LogStream;
class ThreadMutex;
struct AccessListParams;
struct CallParkGeneralParams;
struct ExtAutoCallParams;
struct ExtBusyRedialParams;
struct ExtCodecParams;
struct ExtPersonalInfoParams;
struct ExtPstnAgentParams;
struct ExtServicesParams;
struct ExtSipSettingsParams;
struct ExtTimeoutsParams;
struct PickupGroupParams;

// The configuration agent: constructing it reads the whole configuration
// under the configuration root ("ORBA_PATH", else "/etc/orba-conf/") into
// the tables below; the caller then calls Destroy to drop what only the load
// needed. Construction, Init, Load and Destroy run on one thread before the
// agent is shared. Afterwards callers hold LockBase around every use of
// extensionBase, and LockShList around the shared-extension list (baseMutex
// first when both are needed). The records the tables point to are owned by
// the agent but released only through EraseExtension / EraseAttendant.
class CMCFG_EXPORT CMAgent {
 public:
  CMAgent();
  virtual ~CMAgent();
  CMAgent(const CMAgent&) = delete;
  CMAgent& operator=(const CMAgent&) = delete;

  // --- start-up and shutdown
  void Init(const char* logName, bool logFlag);
  void Load();
  // Deletes the extension, line and encoding managers; may be called again.
  void Destroy();
  // printf-style trace line into the log (dropped when there is no log).
  void LOG(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void LoadLogLevel();
  void LoadToneTypes();
  bool IsWaveOn(DeviceTone tone);
  LineManager* GetFxsLineMng() { return fxsLineManager; }

  // --- extension and attendant tables
  int LoadExtensionDB(const std::string& name, ExtType type);
  int LoadAttendantDB(const std::string& name);
  void EraseExtension(unsigned long position, bool deleteRecord, bool compact);
  void EraseAttendant(unsigned long position);
  void IncreaseBase();
  void LockBase();
  void UnlockBase();
  void ShareExtension(const std::string& name, bool add, bool mark);
  void LockShList();
  void UnlockShList();
  void GetDefRingpattern(std::vector<unsigned long>* pattern);
  void UpdateDefRingPattern();

  // --- paths and runtime database names
  bool GetRuntimeDbNames(bool createIfMissing);
  bool IsFileName(const std::string& name);
  void GenerateUniqueString(std::string& text, bool append);
  void FillUserName(std::string& userName);

  // --- system-wide data
  bool GetGeneralData(bool createIfMissing);
  bool GetCDRData(bool createIfMissing);
  bool GetAutologinDB();
  bool SaveAutologinUser(AuthorizedPhonesData* user);
  bool GetExternalUserDB(const std::string& path, std::list<ExternalUserEntry>* users, bool trim);

  // --- codecs
  bool FillFaxCodecs(const std::list<std::string>& names, std::list<FaxCodecInfo>& faxCodecs,
                     std::list<CodecInfo>& transparentCodecs);
  bool FillFaxCodecs(const char* names, std::list<FaxCodecInfo>& faxCodecs,
                     std::list<CodecInfo>& transparentCodecs);
  bool GetCodecData(ExtensionData* extension, ExtCodecParams* block);
  bool GetAttCodecData(Attendant* attendant, ExtCodecParams* block);

  // --- FXS line binding
  // Binds `line` to the local and remote FXS endpoints the line database
  // gives `extension` (null `line`: only tells whether the binding
  // resolves). *flag, when given, is set to false and never to true. An
  // extension with no entry stays virtual: true, `line` untouched. False
  // when an entry's gateway or FXS line is missing (`line` may be partly
  // filled). Uses the agent's line managers, or ones opened for this call.
  bool GetLineData(const std::string& extension, LineSettings* line, bool* flag);

  // --- functional table, speed dial, address book (null records give false)
  // Appends one key per recognised character of `text` (digits, '*', '#',
  // 'f' for hook flash; others skipped). Always true.
  bool FormKeySequence(std::vector<KeypadButton>& keys, std::string& text);
  // Rebuilds the user extension's table of service codes, ascending by key
  // sequence. False (table empty) for another kind or a missing extension.
  bool GetFuntionalTable(ExtensionData* extension);
  // Rebuilds the user extension's speed-dial list ("#" and two digits).
  bool GetSpeedDialList(ExtensionData* extension);
  // Rebuilds the address book: contacts with their services, grouped by
  // call type, plain numbers before patterns.
  bool LoadAddressBook(ExtensionData* extension);
  // True when `name` holds a '?' or '*' not escaped by a backslash.
  bool IsWildCardExist(const std::string& name);
  // Regroups `book` in place: call types in order of first appearance; in
  // each, the plain numbers in their order, then the patterns, most specific
  // first.
  void GroupAddressBook(std::list<std::pair<Contact, SupServiceSet>>& book);
  // Assigns the services of `mask` (gAllProperties: all) of contact
  // `contactId` of the stored extension to `set`. Zero when the contact has
  // no stored services; a null extension leaves `set` untouched.
  int FillSupServiceSet(Extension* stored, SupServiceSet& set, int contactId, unsigned int mask);

  // --- per-extension profile queries
  // Each copies one property of the stored extension (or the block given)
  // into the record and logs one line. A missing extension or property logs
  // the operation's failure line, leaves the record unchanged and gives
  // false. After Destroy each opens the extension database for the call.
  // keepLineMedia: leave the line's fax and modem settings as they are.
  bool GetServicesTimeouts(ExtensionData* extension, ExtServicesParams* services,
                           ExtTimeoutsParams* timeouts, bool keepLineMedia);
  bool GetCallParkData(ExtensionData* extension, CallParkGeneralParams* block);
  // userName, when given and not empty, replaces the stored SIP user name.
  bool GetSipData(ExtensionData* extension, ExtSipSettingsParams* block, std::string* userName);
  bool GetPersonalInfo(ExtensionData* extension, ExtPersonalInfoParams* block);
  bool GetAccessList(ExtensionData* extension, AccessListParams* block);
  bool GetGroupList(ExtensionData* extension, PickupGroupParams* block);
  bool GetAutoRedialData(ExtensionData* extension, ExtBusyRedialParams* block);
  bool GetAutoCallData(ExtensionData* extension, ExtAutoCallParams* block);
  // The attendant queries read the system attendant's record when the
  // attendant is the system attendant (GetAttIpData: when `system`).
  bool GetAttGeneralParams(Attendant* attendant);
  bool GetAttPersonalInfo(Attendant* attendant);
  bool GetAttIpData(Attendant* attendant, bool system, std::string* userName);

  // --- PSTN trunks
  bool GetPstnAgentData(bool createIfMissing);
  bool GetPstnAgentsChannels(ExtensionData* extension, ExtPstnAgentParams* block);
  void GetFxoChannels(const std::string& spec, std::list<unsigned short>* channels);
  void GetIsdnData(const std::string& spec, std::list<unsigned short>* channels);
  void GetCasData(const std::string& spec,
                  std::list<std::pair<unsigned short, std::list<unsigned short>>>* spans);

  // --- state, read by the call manager
  std::vector<ExtensionData*> extensionBase;
  std::vector<Attendant*> attendants;
  GeneralData generalData;
  std::vector<std::string> sysMessageNames;
  ToneType toneTypes[kDeviceToneCount];
  bool logEnabled = false;
  bool logLevelSecond = false;
  bool logLogin = false;
  uint32_t baseCapacity = 64;
  LogStream* logStream = nullptr;
  ThreadMutex* baseMutex = nullptr;
  ThreadMutex* shListMutex = nullptr;
  ThreadMutex* toneMutex = nullptr;
  ExtensionManager* extensionManager = nullptr;
  LineManager* lineManager = nullptr;
  LineManager* fxsLineManager = nullptr;
  EncodingManager* encodingManager = nullptr;
  std::string telephonyPath;
  std::string defaultUserName = "kaIfArIkNiCk";
};

#endif  // CMCFG_CM_AGENT_H_
