#ifndef CMCFG_SUP_SERVICE_RECORDS_H_
#define CMCFG_SUP_SERVICE_RECORDS_H_

#include <cstdint>
#include <list>
#include <string>
#include <utility>
#include <vector>

#include "cmcfg/call_params.h"
#include "cmcfg/export.h"
#include "cmcfg/types.h"

struct ExtPersonalInfoParams;
struct SSBlockCallParams;
struct SSClirParams;
struct SSDistRingingParams;
struct SSForwardParams;
struct SSHuntRingingParams;
struct SSIntercomParams;
struct SSManyRingingParams;

// One forwarding destination. The records of this header are plain values;
// the lists are owned by the record that holds them.
class CMCFG_EXPORT ForwardParams : public CallParams {
 public:
  // Empty texts, call type a number.
  ForwardParams();
  // Copies every text; call type a number, or `type`.
  explicit ForwardParams(const CallParams& params);
  ForwardParams(const CallParams& params, CallType type);
  ForwardParams(const ForwardParams&) = default;
  ForwardParams& operator=(const ForwardParams&) = default;

  // Takes only the number, display name, host and port, and clears the
  // call type; the other texts stay as they were.
  ForwardParams& operator=(const CallParams& params);
  // Same number and host (port, display name and call type not compared).
  bool operator==(const ForwardParams& other) const;
  // Orders by number and host joined without a separator.
  bool operator<(const ForwardParams& other) const;

  CallType callType = kCallNumber;
};

// One member of a hunt group.
struct CMCFG_EXPORT HuntRingTarget {
  HuntRingTarget() = default;
  HuntRingTarget(const std::string& number, int32_t value) : number(number), value(value) {}
  std::string number;
  int32_t value = 0;  // the target's ring time as configured
};

// Multiple-extension ringing.
struct CMCFG_EXPORT ManyExtRingData {
  // Takes the active flag, and the extensions only when active (otherwise
  // the list is emptied).
  ManyExtRingData& operator=(const SSManyRingingParams& params);
  int32_t active = 0;
  std::list<std::string> extensions;
};

// Hunting over a list of targets.
struct CMCFG_EXPORT HuntRingData {
  // Takes the active flag, and the targets and hunt mode only when active
  // (otherwise the targets are emptied and the mode stays).
  HuntRingData& operator=(const SSHuntRingingParams& params);
  int32_t active = 0;
  std::list<HuntRingTarget> targets;
  int32_t huntMode = 0;
};

struct CMCFG_EXPORT HuntSet {
  ManyExtRingData manyRinging;
  HuntRingData hunt;
};

// One forwarding service.
struct CMCFG_EXPORT ForwardData {
  // Takes the active flag, the text (empty when the block has none) and the
  // enabled destinations in order: a SIP address split into user, host and
  // port (one that does not parse is dropped), "pstn" alone as the trunk
  // without a number, anything else as the number. The note stays.
  ForwardData& operator=(const SSForwardParams& params);
  int32_t active = 0;
  std::list<ForwardParams> destinations;
  std::string note;  // carried for the call manager
  std::string text;  // the configuration's optional text
};

// One direction of call blocking.
struct CMCFG_EXPORT CallBlockingData {
  // Takes the active flag and the blocking mode.
  CallBlockingData& operator=(const SSBlockCallParams& params);
  int32_t active = 0;
  int32_t blockMode = 0;
};

// Distinctive ringing.
struct CMCFG_EXPORT DistRingData {
  // Takes the active flag. Inactive: the cadence is emptied, the rest stays.
  // Active: the name, the pattern and its cadence: the default ring
  // pattern's (read under its mutex) for an empty or "default" pattern; a
  // named ring pattern's when it has two values or more; else the pattern's
  // own comma-separated values, the default's when they are fewer than two.
  DistRingData& operator=(const SSDistRingingParams& params);
  int32_t active = 0;
  std::string ringName;
  std::string pattern;                 // "default", a pattern name, or a cadence
  std::vector<unsigned long> cadence;  // ms, ringing and pause alternately
};

struct CMCFG_EXPORT IntercomData {
  // Takes the mode.
  IntercomData& operator=(const SSIntercomParams& params);
  int32_t mode = 2;
};

// Calling-line identity restriction.
struct CMCFG_EXPORT ClirData {
  // Takes the active flag.
  ClirData& operator=(const SSClirParams& params);
  int32_t active = 0;
};

// The services that act on incoming calls.
struct CMCFG_EXPORT IncomingServiceSet : public HuntSet {
  // Armed by blocking or unconditional forwarding; with `all` also by the
  // other forwards, multiple-extension ringing and hunting.
  bool IsArmed(bool all) const;

  ForwardData forwardUnconditional;
  ForwardData forwardNoAnswer;
  ForwardData forwardBusy;
  CallBlockingData incomingBlocking;
  DistRingData distRinging;
  IntercomData intercom;
};

// Every supplementary service of an extension or of one of its contacts.
struct CMCFG_EXPORT SupServiceSet : public IncomingServiceSet {
  ClirData clir;
  CallBlockingData outgoingBlocking;
};

// One address-book entry.
struct CMCFG_EXPORT Contact {
  Contact() = default;
  Contact(const std::string& name, int32_t id, CallType type) : name(name), id(id), callType(type) {}
  std::string name;  // number or pattern
  int32_t id = 0;    // number of the contact's block
  CallType callType = kCallNumber;
};

typedef std::pair<Contact, SupServiceSet> AddressBookEntry;

// Call-queue settings of an extension.
struct CMCFG_EXPORT CallQueueData {
  // Queue disabled or of size 0: Reset. Otherwise the size (at most 255),
  // the mode and the flags (accepting unless disabled, overflow), and the
  // announcement value, text and repeat when an announcement is enabled
  // with a text and a non-zero value; else announcement 0, the old text
  // staying.
  CallQueueData& operator=(const ExtPersonalInfoParams& params);
  // Zeroes the settings and the flags; keeps the announcement text and the
  // value that goes with it.
  void Reset();
  // Clears the run-time value only.
  void Clear() { pending = 0; }
  // Whether any bit of `mask` is set.
  bool IsFlagOn(unsigned char mask) const { return (flags & mask) != 0; }
  // Sets (on) or clears the bits of `mask`.
  void UpdateFlag(unsigned char mask, bool on);

  static const unsigned char kAccepting = 1;
  static const unsigned char kOverflow = 2;

  int32_t reserved1 = 0;
  int32_t reserved2 = 0;
  int32_t size = 0;      // at most 255
  int32_t mode = 0;
  int32_t pending = 0;   // run-time value
  int32_t resetOnly = 0;
  int32_t announcement = 0;  // non-zero while an announcement is configured
  std::string announcementText;
  int32_t announcementRepeat = 0;
  unsigned char flags = 0;
};

#endif  // CMCFG_SUP_SERVICE_RECORDS_H_
