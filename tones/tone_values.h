#ifndef CMCFG_TONES_TONE_VALUES_H_
#define CMCFG_TONES_TONE_VALUES_H_

// How the tone reader turns a value's text into a number, shared by the
// reader and by the rules it publishes (tone_key_rules.h).

#include <sstream>
#include <string>

namespace tones {

// A formatted read into a zeroed target: text that does not start with a
// number gives 0 (not the default), "425Hz" gives 425.
template <typename T>
T ReadNumber(const std::string& text) {
  T value = 0;
  std::istringstream in(text);
  in >> value;
  return value;
}

// The same for a flag: "1" is on, anything that does not read as 0 or 1 off.
inline bool ReadFlag(const std::string& text) {
  bool value = false;
  std::istringstream in(text);
  in >> value;
  return value;
}

}  // namespace tones

#endif  // CMCFG_TONES_TONE_VALUES_H_
