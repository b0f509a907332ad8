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

// One forwarding destination.
class CMCFG_EXPORT ForwardParams : public CallParams {
 public:
  ForwardParams();
  explicit ForwardParams(const CallParams& params);
  ForwardParams(const CallParams& params, CallType type);
  ForwardParams(const ForwardParams&) = default;
  ForwardParams& operator=(const ForwardParams&) = default;

  // Takes only the number, display name, host and port, and clears the
  // call type; the other texts stay as they were.
  ForwardParams& operator=(const CallParams& params);
  // Same number and host.
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
  ManyExtRingData& operator=(const SSManyRingingParams& params);
  int32_t active = 0;
  std::list<std::string> extensions;
};

struct CMCFG_EXPORT HuntRingData {
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
  ForwardData& operator=(const SSForwardParams& params);
  int32_t active = 0;
  std::list<ForwardParams> destinations;
  std::string note;  // carried for the call manager
  std::string text;  // the configuration's optional text
};

// One direction of call blocking.
struct CMCFG_EXPORT CallBlockingData {
  CallBlockingData& operator=(const SSBlockCallParams& params);
  int32_t active = 0;
  int32_t blockMode = 0;
};

// Distinctive ringing.
struct CMCFG_EXPORT DistRingData {
  DistRingData& operator=(const SSDistRingingParams& params);
  int32_t active = 0;
  std::string ringName;
  std::string pattern;                 // "default", a pattern name, or a cadence
  std::vector<unsigned long> cadence;  // ms, ringing and pause alternately
};

struct CMCFG_EXPORT IntercomData {
  IntercomData& operator=(const SSIntercomParams& params);
  int32_t mode = 2;
};

struct CMCFG_EXPORT ClirData {
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
  CallQueueData& operator=(const ExtPersonalInfoParams& params);
  // Zeroes the settings and the flags; keeps the announcement text and the
  // value that goes with it.
  void Reset();
  // Clears the run-time value only.
  void Clear() { pending = 0; }
  bool IsFlagOn(unsigned char mask) const { return (flags & mask) != 0; }
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
