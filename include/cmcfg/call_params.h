#ifndef CMCFG_CALL_PARAMS_H_
#define CMCFG_CALL_PARAMS_H_

#include <cstdint>
#include <string>

#include "cmcfg/export.h"

// One party or destination. Only the first (number or SIP user), third
// (display name), fifth (host) and sixth (port) texts have a meaning here;
// the others are carried for the call manager. A plain value.
class CMCFG_EXPORT CallParams {
 public:
  CallParams() = default;
  CallParams(const CallParams&) = default;
  CallParams& operator=(const CallParams&) = default;
  ~CallParams() = default;

  // Empties every text and zeroes the integer.
  void Reset() {
    userName.clear();
    text2.clear();
    displayName.clear();
    text4.clear();
    host.clear();
    port.clear();
    text7.clear();
    text8.clear();
    text9.clear();
    text10.clear();
    value = 0;
  }

  std::string userName;     // number or SIP user name
  std::string text2;
  std::string displayName;
  std::string text4;
  std::string host;         // SIP host or address
  std::string port;
  std::string text7;
  std::string text8;
  std::string text9;
  std::string text10;
  int32_t value = 0;
};

// One address entry: forwarding destinations, access lists.
struct CMCFG_EXPORT AddrInfo {
  int32_t enabled = 0;
  int32_t type = 0;  // a CallType
  std::string address;
};

#endif  // CMCFG_CALL_PARAMS_H_
