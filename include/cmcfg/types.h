#ifndef CMCFG_TYPES_H_
#define CMCFG_TYPES_H_

#include <cstdint>
#include <vector>

#include "cmcfg/export.h"

// Kind of an extension.
enum ExtType {
  kExtAttendant = 0,
  kExtUser = 1,
  kExtPickup = 2,
  kExtCallPark = 3,
  kExtPaging = 4,
};

// Kind of a destination or contact: 1 a SIP address, 2 a PSTN destination,
// 3 the destination set from the telephone, anything else a dialled number.
// Its 32 bits are fixed, so that a forward destination keeps the type its
// file gives, whatever the number: any int32_t is a value of the type.
enum CallType : int32_t {
  kCallNumber = 0,
  kCallSip = 1,
  kCallPstn = 2,
  kCallFromPhone = 3,
};

// One key of a telephone keypad or a service key: digits 0x100 + digit,
// '*' 0x12A, '#' 0x123, hook flash 0x8F0, service keys 0x800 and up.
typedef int32_t KeypadButton;
typedef std::vector<KeypadButton> KeySequence;

// "No gateway" / "no line": the line library's undefined line, set when the
// library is loaded.
extern CMCFG_EXPORT uint32_t INACTIVE_PARTY;

#endif  // CMCFG_TYPES_H_
