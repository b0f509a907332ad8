// The call type of a stored record, read from a number in a file.
#ifndef CMCFG_SERVICES_CALL_TYPE_H_
#define CMCFG_SERVICES_CALL_TYPE_H_

#include <cstdint>

#include "cmcfg/types.h"

namespace services {

// A number outside the enumeration reads as the field's default, a plain
// number: a CallType holding any other value is undefined behaviour, here
// and in the call manager that switches on it.
inline CallType StoredCallType(int32_t stored) {
  return stored >= kCallNumber && stored <= kCallFromPhone ? static_cast<CallType>(stored)
                                                           : kCallNumber;
}

}  // namespace services

#endif  // CMCFG_SERVICES_CALL_TYPE_H_
