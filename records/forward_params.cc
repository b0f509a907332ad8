#include "cmcfg/sup_service_records.h"

ForwardParams::ForwardParams() { Reset(); }

ForwardParams::ForwardParams(const CallParams& params) : CallParams(params) {}

ForwardParams::ForwardParams(const CallParams& params, CallType type)
    : CallParams(params), callType(type) {}

ForwardParams& ForwardParams::operator=(const CallParams& params) {
  // Only the addressing texts are taken: the call manager keeps its own
  // data in the others.
  userName = params.userName;
  displayName = params.displayName;
  host = params.host;
  port = params.port;
  callType = kCallNumber;
  return *this;
}

bool ForwardParams::operator==(const ForwardParams& other) const {
  return userName == other.userName && host == other.host;
}

bool ForwardParams::operator<(const ForwardParams& other) const {
  // The joined key makes "12"+"3" and "1"+"23" equivalent in the order even
  // though == tells them apart; sorted lists depend on this order.
  return (userName + host).compare(other.userName + other.host) < 0;
}
