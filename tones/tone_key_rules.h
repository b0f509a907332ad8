#ifndef CMCFG_TONES_TONE_KEY_RULES_H_
#define CMCFG_TONES_TONE_KEY_RULES_H_

// The keys of a tone's section as the tone reader takes them, published
// beside the reader so that a checker reports exactly what it does with a
// value, and follows it when a key changes.

#include <string>
#include <string_view>

namespace tones {

// True when the reader reads `key` in a tone's section.
bool IsToneKey(std::string_view key);

// "" when the reader takes `value` of `key` as written (an empty value
// takes the tone's built-in one); otherwise what is wrong and what the
// reader makes of it: "is not a number from 0 to 65535; it reads as 425".
std::string ToneValueProblem(std::string_view key, std::string_view value);

}  // namespace tones

#endif  // CMCFG_TONES_TONE_KEY_RULES_H_
