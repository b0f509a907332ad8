#ifndef CMCFG_EXTENSION_DATA_H_
#define CMCFG_EXTENSION_DATA_H_

#include <cstdint>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "cmcfg/export.h"
#include "cmcfg/line_records.h"
#include "cmcfg/sup_service_records.h"
#include "cmcfg/system_records.h"
#include "cmcfg/types.h"
#include "cmcfg/usr_data.h"

// Voice-mail settings of an extension.
struct CMCFG_EXPORT VmsSettings {
  // Off in mode 0; strict also asks for a custom mailbox (mode 2 or 3 with
  // a mailbox named).
  bool IsOn(bool strict) const;
  int32_t mode = 0;
  std::string mailbox;
  int32_t rings = 1;
};

// Remote-control policy of an extension.
struct CMCFG_EXPORT RcSettings {
  // Whether any bit of `mask` is set in the policy.
  bool IsExtPolicyOn(unsigned char mask) const { return (policy & mask) != 0; }
  // first: sets (on) or clears bit 0x01 and stores `value` (0 when off);
  // otherwise sets or clears bit 0x02 only, the value staying.
  void ToggleExtPolicy(bool on, bool first, unsigned long value);
  int32_t value = 0;
  unsigned char policy = 0;
};

typedef std::pair<KeySequence, KeypadButton> FunctionalEntry;
typedef std::pair<KeySequence, ForwardParams> SpeedDialEntry;

// One extension of the extension table. The agent owns the records of its
// table; callers read and change them with LockBase held.
class CMCFG_EXPORT ExtensionData : public UsrData {
 public:
  ExtensionData() = default;
  ExtensionData(const ExtensionData&) = default;
  ExtensionData& operator=(const ExtensionData&) = default;
  ~ExtensionData() = default;

  // Whether voice mail is on (VmsSettings::IsOn).
  bool IsMailboxOn(bool strict) const { return vms.IsOn(strict); }
  // Whether the address book's any-caller entry has its unconditional
  // forward active; false when there is no such entry.
  bool IsForwardOn() const;

  std::list<AddressBookEntry> addressBook;
  std::list<AccessData> accessList;         // who may call a group
  std::list<std::string> groupMembers;      // members of a pickup or paging group
  PasswordData password;
  std::vector<FunctionalEntry> functionalTable;  // ascending key sequences
  std::vector<SpeedDialEntry> speedDial;         // ascending key sequences
  int32_t callWaiting = 0;
  int32_t noAnswerTimeout = 10;
  int32_t callParkTimeout = 60;  // seconds
  uint32_t redialInterval = 0;
  uint32_t redialPeriod = 0;
  std::string description;
  int32_t doNotDisturb = 0;
  FXOSettings fxo;
  CASSettings cas;
  ISDNSettings isdn;
  int32_t hotline = 0;
  int32_t callTransfer = 0;
  AutoCallData autoCall;
  LineSettings line;
  WatchSettings watch;
  VmsSettings vms;
  RcSettings rc;
  ExtType type = kExtUser;
  // From the personal data.
  int32_t userClass = 0;
  int32_t language = 0;
  // From the services: three (allowed, setting) pairs and four switches.
  int32_t conferenceAllowed = 1, conferenceMaxParties = 0;
  int32_t callPickupAllowed = 1, callPickupGroup = 0;
  int32_t intrusionAllowed = 1, intrusionLevel = 0;
  int32_t musicOnHold = 0, callerIdPresentation = 1, callHoldAllowed = 1, anonymousRejection = 0;
};

#endif  // CMCFG_EXTENSION_DATA_H_
