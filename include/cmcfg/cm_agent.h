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
#include "cmcfg/update_type_codes.h"

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
  // Opens the accessors of a load: tones, default ring pattern, extension,
  // line and encoding managers, log level, the log "logName", the table
  // size, system-message names, the system attendant. Called by the
  // constructor; callable again (it replaces what an earlier run opened).
  void Init(const char* logName, bool logFlag);
  // Appends every extension and attendant of the database to the tables,
  // kinds 0 to 4 in that order, each kind in the database's order. Does
  // nothing without an extension manager (after Destroy).
  void Load();
  // Deletes the extension, line and encoding managers (logging the end of
  // the load first); may be called again. Every query still works after it:
  // it then opens what it needs for the one call.
  void Destroy();
  // printf-style trace line into the log (dropped when there is no log).
  // Callers test logEnabled first.
  void LOG(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // Re-reads the two log flags and the log-login setting (logLogin: both
  // login flags set). The log flags keep their values when the general
  // settings are missing; a missing log_login.cfg reads as both login
  // flags off.
  void LoadLogLevel();
  // Re-reads the tone table under toneMutex; missing tones take the
  // built-in defaults.
  void LoadToneTypes();
  // Whether `tone` is played from its sound file: tones beyond the table
  // always, else the system's wave mode (1 all, 2 none), else the tone's own
  // flag (read under toneMutex).
  bool IsWaveOn(DeviceTone tone);
  // The agent's FXS line manager; NULL after Destroy. Owned by the agent.
  LineManager* GetFxsLineMng() { return fxsLineManager; }

  // --- extension and attendant tables (no locks of their own: see above)
  // Loads one extension of kind `type` (0 goes to LoadAttendantDB) with
  // every loader of its kind and appends it to extensionBase: 1, or 0 for
  // an empty name, a missing extension or a kind beyond 4 (tables
  // unchanged). Callers hold LockBase once the agent is shared.
  int LoadExtensionDB(const std::string& name, ExtType type);
  // Loads one attendant with its codec lists and appends it: 1, or 0 when
  // the database has no such attendant.
  int LoadAttendantDB(const std::string& name);
  // deleteRecord: deletes the record (dropping its name from the shared
  // list, so the caller holds LockShList too) and NULLs the slot, removing
  // the slot as well when compact. Otherwise removes the slot and hands the
  // record to the caller. Positions past the end are ignored.
  void EraseExtension(unsigned long position, bool deleteRecord, bool compact);
  // Deletes the attendant at `position` and removes its slot.
  void EraseAttendant(unsigned long position);
  // Appends one NULL slot to extensionBase.
  void IncreaseBase();
  void LockBase();
  void UnlockBase();
  // add: puts `name` on the shared list once (mark sets its flag); an empty
  // name is never added. !add: removes it. Caller holds LockShList.
  void ShareExtension(const std::string& name, bool add, bool mark);
  void LockShList();
  void UnlockShList();
  // Copies the default ring cadence (ms, ring and pause) under its mutex.
  void GetDefRingpattern(std::vector<unsigned long>* pattern);
  // Re-reads the default ring cadence ("1000,2500" when fewer than two).
  void UpdateDefRingPattern();

  // --- paths and runtime database names
  // Names the external-user cache, the external-user database and the
  // registration-status file in generalData; an empty stored name gets its
  // default, which is saved back. False without the paths accessor (or when
  // it fails; logged).
  bool GetRuntimeDbNames(bool createIfMissing);
  // True for a name without "/" and backslash (the empty name too).
  bool IsFileName(const std::string& name);
  // The time of day as digits, appended to `text` or replacing it.
  void GenerateUniqueString(std::string& text, bool append);
  // Makes `userName` the system prefix followed by it (the default stem
  // when empty), then time digits: unique per call.
  void FillUserName(std::string& userName);

  // --- system-wide data
  // Fills generalData from the general settings; false (data as it was)
  // without them.
  bool GetGeneralData(bool createIfMissing);
  // Fills the call-record paths and sizes; an empty database name takes its
  // default and is saved back. False without the settings or paths.
  bool GetCDRData(bool createIfMissing);
  // Rebuilds generalData.authorizedPhones from the stored phones; false
  // (list empty) without them.
  bool GetAutologinDB();
  // Stores `user`, known by phone address and type: a known phone takes its
  // extension, user name and login time (line count and permissions stay);
  // its list entries take the extension and login time only. A new phone is
  // added to the store and the list. Saved atomically under the file's lock.
  bool SaveAutologinUser(AuthorizedPhonesData* user);
  // Replaces *users with the users of the cache file at `path`; true when it
  // holds at least one. trim: first deletes the sections beyond
  // generalData.maxExternalUsers from the end of the file and saves it.
  bool GetExternalUserDB(const std::string& path, std::list<ExternalUserEntry>* users, bool trim);

  // --- codecs
  // Splits fax names into fax relay encodings (known to fax.cfg) and codecs
  // for fax in the voice band; unknown names are dropped. Both lists are
  // emptied first. Always true.
  bool FillFaxCodecs(const std::list<std::string>& names, std::list<FaxCodecInfo>& faxCodecs,
                     std::list<CodecInfo>& transparentCodecs);
  bool FillFaxCodecs(const char* names, std::list<FaxCodecInfo>& faxCodecs,
                     std::list<CodecInfo>& transparentCodecs);
  // Fills the four media lists and the codec option of the extension from
  // `block`, or from its stored codecs when `block` is null. False (lists as
  // they were) for a missing extension.
  bool GetCodecData(ExtensionData* extension, ExtCodecParams* block);
  // The same for an attendant; one without primary voice codecs offers the
  // system's default list before its additional ones.
  bool GetAttCodecData(Attendant* attendant, ExtCodecParams* block);

  // --- FXS line binding
  // Binds `line` to the local and remote FXS endpoints the line database
  // gives `extension` (null `line`: only tells whether the binding
  // resolves). *flag, when given, is set to false and never to true. An
  // extension with no entry stays virtual: true, `line` untouched. False
  // when an entry's gateway or FXS line is missing (`line` may be partly
  // filled). Uses the agent's line managers, or ones opened for this call.
  bool GetLineData(const std::string& extension, LineSettings* line, bool* flag);

  // Re-binds the loaded extensions after FXS port MG{gatewayId}<lineId> was
  // given to another extension: every extension of the line database's
  // name for the port takes it; any other holding it is cleared
  // (LineSettings::Clear(false)). True when an extension took it, and for a
  // port of a remote gateway (nothing changes); false for an unknown
  // gateway or port. Reads the line database afresh; caller holds LockBase.
  bool UpdateFxsData(unsigned long gatewayId, unsigned long lineId);

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
  // Re-reads (add, change) or erases the contacts whose identifiers `ids`
  // lists (comma-separated), in order; an added or changed contact regroups
  // the book. A change refreshes only name and call type. 1 when all were
  // applied; 0 for a missing extension or at the first unknown identifier
  // (those before it stay applied).
  int UpdateContact(ExtensionData* extension, const std::string& ids,
                    UpdateTypeCodes::UpdateTypeMode mode);
  // Adds `number` of call type `type` to the incoming or outgoing black
  // list, creating its contact when the book has none: 0 added, 1 already
  // blocked (nothing stored), 2 failure. Stored under the file's lock.
  int BlockContact(ExtensionData* extension, const std::string& number, CallType type,
                   bool incoming);
  // Re-reads one service (or all) of contact `contactId` from the store
  // into the book. False for a missing extension or contact.
  bool UpdateSupServices(ExtensionData* extension, int contactId,
                         UpdateTypeCodes::UpdateType type);
  // Toggles the any-caller contact's unconditional forward: the stored flag
  // becomes the opposite of the flag in memory, which then takes it. False
  // without the extension, the any-caller contact or its services.
  bool SwitchForwardService(ExtensionData* extension);
  // Sets (on) or removes (!on) the destination dialled from the telephone
  // (type 3) of the any-caller contact's unconditional forward; a different
  // number replaces it only with `replace`. Other destinations are never
  // touched; an equal number stores nothing. False when nothing could be
  // done (see the operation's rules), true otherwise.
  bool UpdateForwardService(ExtensionData* extension, const std::string& number, bool on,
                            bool replace);
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
  // Which PSTN agent runs: true (type 1) for an FXO agent; type 3 with its
  // flag for a CAS agent, still false. False without the general settings.
  bool GetPstnAgentData(bool createIfMissing);
  // Fills the FXO, ISDN and CAS channel lists of the extension from `block`
  // or its stored trunk settings (none: empty lists). False for a missing
  // extension.
  bool GetPstnAgentsChannels(ExtensionData* extension, ExtPstnAgentParams* block);
  // "all_channels" gives an empty list (every channel); otherwise the
  // comma-separated numbers in order, duplicates kept, bad ones as their
  // leading digits (0 without).
  void GetFxoChannels(const std::string& spec, std::list<unsigned short>* channels);
  void GetIsdnData(const std::string& spec, std::list<unsigned short>* channels);
  // "span/slots" groups separated by ';' ("all_channels": "0/0-31"); slots a
  // list or one range. A span seen again merges, sorted and unique.
  void GetCasData(const std::string& spec,
                  std::list<std::pair<unsigned short, std::list<unsigned short>>>* spans);

  // --- state, read by the call manager
  // baseCapacity NULL slots, then the extensions in load order; a slot's
  // position is the extension's handle. Guarded by baseMutex.
  std::vector<ExtensionData*> extensionBase;
  std::vector<Attendant*> attendants;  // changed only by the loaders and EraseAttendant
  // System-wide data. generalData.sysAttendant is owned by the agent
  // (deleted with it); the shared-extension list is guarded by shListMutex.
  GeneralData generalData;
  std::vector<std::string> sysMessageNames;  // in number order; unknown numbers leave no entry
  ToneType toneTypes[kDeviceToneCount];      // guarded by toneMutex
  bool logEnabled = false;      // every trace line is written only when set
  bool logLevelSecond = false;  // for the caller
  bool logLogin = false;        // for the caller
  uint32_t baseCapacity = 64;
  LogStream* logStream = nullptr;
  ThreadMutex* baseMutex = nullptr;
  ThreadMutex* shListMutex = nullptr;
  ThreadMutex* toneMutex = nullptr;
  // The accessors of the load, owned; NULL after Destroy.
  ExtensionManager* extensionManager = nullptr;
  LineManager* lineManager = nullptr;
  LineManager* fxsLineManager = nullptr;
  EncodingManager* encodingManager = nullptr;
  std::string telephonyPath;
  std::string defaultUserName = "kaIfArIkNiCk";
};

#endif  // CMCFG_CM_AGENT_H_
