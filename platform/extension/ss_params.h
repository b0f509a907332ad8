#ifndef CMCFG_PLATFORM_EXTENSION_SS_PARAMS_H_
#define CMCFG_PLATFORM_EXTENSION_SS_PARAMS_H_

#include <cstdint>
#include <list>
#include <string>
#include <utility>

#include "cmcfg/call_params.h"
#include "platform/extension/ext_params.h"

// Supplementary-service parameters of one address-book contact. "Data
// words" are the 32-bit members after the header, in declaration order.

// 0x001
struct SSClirParams : ParamsHeader {
  int32_t active = 0;
};

// 0x002 incoming, 0x004 outgoing call blocking.
struct SSBlockCallParams : ParamsHeader {
  int32_t active = 0;
  int32_t blockAnonymous = 0;
  int32_t blockInternational = 0;
  int32_t blockMode = 0;  // the fourth data word: the record's second setting
};

// 0x008
struct SSDistRingingParams : ParamsHeader {
  int32_t active = 0;
  std::string ringName;
  std::string pattern;  // "default", a ring-pattern name, or a cadence "400,200,..."
};

// 0x010
struct SSHuntRingingParams : ParamsHeader {
  int32_t active = 0;
  int32_t huntMode = 0;  // the hunt parameter
  std::list<std::pair<std::string, int32_t>> targets;  // (number, ring time)
};

// 0x020
struct SSManyRingingParams : ParamsHeader {
  int32_t active = 0;
  std::list<std::string> numbers;
};

// 0x040 unconditional, 0x080 no answer, 0x100 busy.
struct SSForwardParams : ParamsHeader {
  int32_t active = 0;
  int32_t hasText = 0;   // the optional text below is present
  std::string text;
  std::list<AddrInfo> destinations;  // enabled flag, CallType, destination text
};

// 0x200
struct SSIntercomParams : ParamsHeader {
  int32_t mode = 2;
};

#endif  // CMCFG_PLATFORM_EXTENSION_SS_PARAMS_H_
