#ifndef CMCFG_PLATFORM_EXTENSION_VALUE_RULES_H_
#define CMCFG_PLATFORM_EXTENSION_VALUE_RULES_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/base/status.h"

// What the extension store takes before it writes anything: a value that
// its reader would read back as something else (or drop) is refused. Each
// check gives OK, or InvalidArgument with a message that names the value
// and says why, ready for the store's reporter and for the tool.
namespace extdb {

// A number dialled from a phone: one to kMaxNumberLength of the digits,
// '*' and '#', after an optional leading '+'.
constexpr size_t kMaxNumberLength = 32;
// Any other text the store writes (a contact's name, a destination).
constexpr size_t kMaxTextLength = 255;

cfg::Status CheckPhoneNumber(std::string_view number);
// "[sip:|sips:]user@host[:port]" (the scheme may be left out) that splits
// into exactly one user, host and port: no blank or control character, one
// '@' at most, a port of 1 to 65535.
cfg::Status CheckSipAddress(std::string_view address);
// No control character, at most kMaxTextLength bytes; `what` names the
// value in the message ("contact name").
cfg::Status CheckText(std::string_view what, std::string_view text);
// A forward destination's address by its type: a SIP address for
// kCallSip, a phone number for kCallFromPhone, text otherwise.
cfg::Status CheckDestination(int32_t type, std::string_view address);
// A contact's name by its call type: a SIP address (wildcards allowed in
// the user part) for kCallSip; otherwise a number pattern of digits, '*',
// '#', '?', '\' and a leading '+'.
cfg::Status CheckContactName(int32_t callType, std::string_view name);

}  // namespace extdb

#endif  // CMCFG_PLATFORM_EXTENSION_VALUE_RULES_H_
