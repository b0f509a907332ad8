// Keypad values of the functional table and the speed-dial list, and the
// sorted insertion both lists share.
#ifndef CMCFG_SERVICES_KEY_SEQUENCE_H_
#define CMCFG_SERVICES_KEY_SEQUENCE_H_

#include <algorithm>
#include <utility>
#include <vector>

#include "cmcfg/types.h"

namespace services {

// Digits are offset by their value, while '*' and '#' are offset by their
// character codes: the call manager expects exactly these values.
const KeypadButton kKeyDigit0 = 0x100;
const KeypadButton kKeyStar = 0x100 + '*';   // 0x12A
const KeypadButton kKeyPound = 0x100 + '#';  // 0x123
const KeypadButton kKeyFlash = 0x8F0;

inline bool IsKeypadDigit(char c) { return c >= '0' && c <= '9'; }

// Inserts (keys, value) before the first entry whose sequence is greater,
// so equal sequences keep the order they were added in. The lists are a few
// dozen entries long; a linear scan is all they need.
template <typename Value>
void InsertByKeys(std::vector<std::pair<KeySequence, Value>>& table, KeySequence keys,
                  const Value& value) {
  auto greater = std::find_if(table.begin(), table.end(),
                              [&keys](const std::pair<KeySequence, Value>& entry) {
                                return keys < entry.first;
                              });
  table.emplace(greater, std::move(keys), value);
}

}  // namespace services

#endif  // CMCFG_SERVICES_KEY_SEQUENCE_H_
