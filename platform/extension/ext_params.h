#ifndef CMCFG_PLATFORM_EXTENSION_EXT_PARAMS_H_
#define CMCFG_PLATFORM_EXTENSION_EXT_PARAMS_H_

#include <cstdint>
#include <list>
#include <string>
#include <utility>

#include "cmcfg/call_params.h"

// Parameter blocks of an extension record, one per property. The file key
// of each member is its name in snake_case (docs/ lists them). Every block
// starts with the two words of the accessor's header.
struct ParamsHeader {
  uint32_t property = 0;  // the property number of the block
  uint32_t version = 1;
};

// Property numbers (the masks given to Extension::LoadProperty).
enum ExtProperty : unsigned {
  kPropAddressPatterns = 0x2,
  kPropBusyRedial = 0x4,
  kPropCodecs = 0x10,
  kPropPersonalInfo = 0x40,
  kPropPstnAgent = 0x80,
  kPropServiceCodes = 0x100,
  kPropTimeouts = 0x200,
  kPropSipSettings = 0x400,
  kPropSpeedDial = 0x800,
  kPropServices = 0x1000,
  kPropAttendantGeneral = 0x2000,
  kPropAttendantConsole = 0x8000,
  kPropAccessList = 0x10000,
  kPropPickupGroup = 0x20000,
  kPropCallPark = 0x40000,
  kPropAutoCall = 0x80000,
};

// 0x400: SIP registration data.
struct ExtSipSettingsParams : ParamsHeader {
  std::string authName;        // copied into the record's second string
  std::string userName;        // SIP user name; copied into the record's first
  std::string password;
  std::string host;
  std::string port;
  std::string proxy;
  std::string outboundProxy;
  std::string transport;
  std::string domain;
  std::string displayName;
  std::string contact;
  int32_t registerExpiry = 3600;
  int32_t registrationEnabled = 1;
  int32_t sipKeepAlive = 0;
};

// 0x40: the user's personal data, password, remote access, call queue.
struct ExtPersonalInfoParams : ParamsHeader {
  std::string fullName;
  std::string email;
  std::string password;          // keypad characters: digits and '*'
  int32_t passwordPolicy = 3;
  int32_t language = 0;
  int32_t userClass = 0;
  int32_t remoteAccess = 0;      // RemoteData's personal value
  std::string tosProfile;        // name of a TOS profile
  // call queue
  int32_t queueEnabled = 0;
  int32_t queueSize = 0;
  int32_t queueMode = 0;
  int32_t queueDisabled = 0;     // 0: the queue accepts calls
  int32_t queueOverflow = 0;
  int32_t announcementEnabled = 0;
  int32_t announcementValue = 0;
  std::string announcementText;
  int32_t announcementRepeat = 0;
};

// 0x1000: per-extension services, voice mail, remote control, fax, modem.
struct ExtServicesParams : ParamsHeader {
  int32_t callWaiting = 1;
  int32_t doNotDisturb = 0;
  int32_t hotline = 0;
  int32_t callTransfer = 1;
  int32_t voiceMailMode = 0;     // 0 off, 1 on, 2 and 3 custom mailbox
  int32_t voiceMailRings = 1;
  std::string voiceMailBox;
  int32_t remoteControl = 0;
  int32_t faxModeA = 0;
  int32_t faxModeB = 0;
  int32_t faxParam3 = 0;
  int32_t faxToneDetection = 0;
  int32_t faxToneForced = 0;
  std::string faxProfile;
  int32_t modemMode = 0;
  int32_t conferenceAllowed = 1;
  int32_t conferenceMaxParties = 0;  // 0: the system's limit
  int32_t callPickupAllowed = 1;
  int32_t callPickupGroup = 0;
  int32_t intrusionAllowed = 1;
  int32_t intrusionLevel = 0;
  int32_t musicOnHold = 0;
  int32_t callerIdPresentation = 1;
  int32_t callHoldAllowed = 1;
  int32_t anonymousRejection = 0;
};

// 0x200: time-outs in seconds.
struct ExtTimeoutsParams : ParamsHeader {
  int32_t noAnswerTimeout = 10;
  int32_t callParkTimeout = 60;
  int32_t dialTimeout = 10;
};

// 0x10: codec names.
struct ExtCodecParams : ParamsHeader {
  std::list<std::string> voiceCodecs;       // primary voice codecs
  std::list<std::string> faxCodecs;
  std::list<std::string> extraVoiceCodecs;  // appended after the primary ones
  std::list<std::string> modemCodecs;
  int32_t codecOption = 0;
};

// 0x100: twenty service codes, each a comma-separated list of codes.
struct ExtServiceCodesParams : ParamsHeader {
  static constexpr int kCount = 20;
  std::string codes[kCount];  // member 1 is codes[0]
};

// 0x80: PSTN agent channel specifications.
struct ExtPstnAgentParams : ParamsHeader {
  std::string fxoChannels;
  std::string casChannels;
  std::string isdnChannels;
};

// 0x40000: call park.
struct CallParkGeneralParams : ParamsHeader {
  int32_t timeoutMinutes = 1;
};

// 0x10000: who may call a group.
struct AccessListParams : ParamsHeader {
  struct Entry {
    AddrInfo address;
    int32_t priority = 0;
  };
  std::list<Entry> entries;
};

// 0x20000: members of a pickup or paging group.
struct PickupGroupParams : ParamsHeader {
  std::list<std::string> members;
};

// 0x4: automatic redial on busy.
struct ExtBusyRedialParams : ParamsHeader {
  uint32_t interval = 30;       // seconds
  uint32_t periodMinutes = 10;
};

// 0x80000: automatic call on off-hook (hotline).
struct ExtAutoCallParams : ParamsHeader {
  int32_t enabled = 0;
  std::string destination;
};

// 0x2000 and 0x8000: the attendant console's general data.
struct AttGeneralParams : ParamsHeader {
  int32_t consoleMode = 0;
  int32_t nightMode = 0;
  int32_t queueSize = 15;
  int32_t ringTimeout = 5;
  std::string welcomeMessage;
  std::string nightDestination;
  std::string tosProfile;
};

// One speed-dial entry.
struct SpeedDialBlock {
  unsigned long id = 0;
  std::string name;
  std::string callingCode;   // "#" and two digits
  int32_t destType = 0;      // a CallType
  std::string address;       // SIP address, for destType 1
  std::string destination;   // number, for the other types
};

#endif  // CMCFG_PLATFORM_EXTENSION_EXT_PARAMS_H_
