// Keypad values of the functional table and the speed-dial list, and the
// ordering both lists share.
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

// Orders a table built in file order by key sequence; equal sequences keep
// the order they were added in. Sorting once instead of inserting each
// entry in place: a hand-edited list can hold hundreds of thousands of
// codes, and sorted insertion into a vector made loading it take minutes.
template <typename Value>
void SortByKeys(std::vector<std::pair<KeySequence, Value>>& table) {
  std::stable_sort(table.begin(), table.end(),
                   [](const std::pair<KeySequence, Value>& a,
                      const std::pair<KeySequence, Value>& b) { return a.first < b.first; });
}

}  // namespace services

#endif  // CMCFG_SERVICES_KEY_SEQUENCE_H_
