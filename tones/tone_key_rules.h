#ifndef CMCFG_TONES_TONE_KEY_RULES_H_
#define CMCFG_TONES_TONE_KEY_RULES_H_

// The keys of a tone's section as the tone reader takes them, published
// beside the reader so that a checker reports exactly what it does with a
// value, and follows it when a key changes.

#include <functional>
#include <string>
#include <string_view>

#include "cmcfg/tone_type.h"

namespace tones {

// Fills the fields of `type` that one key each gives (mode, levels,
// frequencies, the sound-file flag) from `text` (a key's value, nullptr or
// "" when missing: the field takes `def`'s). The cadence is the reader's.
void ReadToneFields(const std::function<const char*(const char* key)>& text, const ToneType& def,
                    ToneType* type);

// True when the reader reads `key` in a tone's section.
bool IsToneKey(std::string_view key);

// "" when the reader takes `value` of `key` as written (an empty value
// takes the tone's built-in one); otherwise what is wrong and what the
// reader makes of it: "is not a number from 0 to 65535; it reads as 425".
std::string ToneValueProblem(std::string_view key, std::string_view value);

}  // namespace tones

#endif  // CMCFG_TONES_TONE_KEY_RULES_H_
