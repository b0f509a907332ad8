#ifndef CMCFG_TONES_TONE_VALUES_H_
#define CMCFG_TONES_TONE_VALUES_H_

// How the tone reader turns a value's text into a number, shared by the
// reader and by the rules it publishes (tone_key_rules.h).

#include <string>

#include "platform/base/number_rules.h"

namespace tones {

// A number as the tone file gives it: the number the text starts with
// ("425Hz" gives 425), 0 when it starts with none (not the default).
template <typename T>
T ReadNumber(const std::string& text) {
  return cfg::LeadingValue<T>(text);
}

// The same for a flag: "1" is on, anything that does not read as 0 or 1 off.
inline bool ReadFlag(const std::string& text) { return cfg::LeadingValue<bool>(text); }

}  // namespace tones

#endif  // CMCFG_TONES_TONE_VALUES_H_
