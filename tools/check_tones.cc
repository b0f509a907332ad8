#include "tools/check_tones.h"

#include <cstdint>
#include <sstream>
#include <string>

#include "cmcfg/tone_type.h"
#include "platform/base/string_utils.h"

namespace cmcfg_tool {
namespace {

// How the tone reader takes each key's value.
enum class Kind { kUnsigned16, kSigned32, kFlag, kCadence };

struct ToneKey {
  const char* key;
  Kind kind;
};

const ToneKey kToneKeys[] = {
    {"mode", Kind::kUnsigned16},          {"tone_level_1", Kind::kSigned32},
    {"tone_level_2", Kind::kSigned32},    {"frequency_1", Kind::kUnsigned16},
    {"frequency_2", Kind::kUnsigned16},   {"is_play_wav_on", Kind::kFlag},
    {"pattern", Kind::kCadence},          {"tone_duration", Kind::kUnsigned16},
    {"silence_duration", Kind::kUnsigned16},
};

// What the reader makes of the text: a formatted read into a zeroed value.
template <typename T>
std::string ReadsAs(const std::string& text) {
  T value = 0;
  std::istringstream in(text);
  in >> value;
  return std::to_string(value);
}

// Blanks, an optional '-' when `negative`, digits, blanks; within the range.
bool IsWholeNumber(const std::string& text, bool negative, int64_t min, int64_t max) {
  size_t at = text.find_first_not_of(" \t");
  if (at == std::string::npos) return false;
  bool minus = false;
  if (negative && text[at] == '-') minus = true, ++at;
  const size_t digits = at;
  int64_t value = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    value = value * 10 + (text[at] - '0');
    if (value > max + 1) return false;
  }
  if (at == digits || text.find_first_not_of(" \t", at) != std::string::npos) return false;
  if (minus) value = -value;
  return value >= min && value <= max;
}

// The message for a value the reader would not take as written; "" when
// it would.
std::string ValueProblem(const ToneKey& key, const std::string& value) {
  const std::string head = "tone value \"" + value + "\" of " + key.key;
  switch (key.kind) {
    case Kind::kUnsigned16:
      if (IsWholeNumber(value, false, 0, 0xFFFF)) return "";
      return head + " is not a number from 0 to 65535; it reads as " + ReadsAs<uint16_t>(value);
    case Kind::kSigned32:
      if (IsWholeNumber(value, true, INT32_MIN, INT32_MAX)) return "";
      return head + " is not a whole number; it reads as " + ReadsAs<int32_t>(value);
    case Kind::kFlag:
      if (IsWholeNumber(value, false, 0, 1)) return "";
      return head + " is not 0 or 1; it reads as " + ReadsAs<bool>(value);
    case Kind::kCadence:
      for (const std::string& piece : StringUtils::ParseCommaLine(value, ','))
        if (!IsWholeNumber(piece, false, 0, 0xFFFFFFFFll))
          return head + " holds \"" + piece +
                 "\", which is not a duration in ms; the player receives it as written";
      return "";
  }
  return "";
}

bool IsToneName(std::string_view name) {
  for (int t = 0; t < kDeviceToneCount; ++t)
    if (name == DeviceToneNames[t]) return true;
  return false;
}

}  // namespace

void CheckTones(const std::vector<CheckedFile>& files, Findings* findings) {
  const CheckedFile* file = FindFile(files, "telephony/regional/tonetypes.cfg");
  if (file == nullptr) return;
  ForEachFirstSection(file->doc, [&](const cfg::Section& section) {
    if (!IsToneName(section.name)) {
      findings->push_back(SectionFinding(
          *file, section, false, "unknown-section",
          "section \"" + std::string(section.name) + "\" names no tone; it is ignored"));
      return;
    }
    for (const cfg::Entry& entry : section.entries) {
      const ToneKey* key = nullptr;
      for (const ToneKey& k : kToneKeys)
        if (entry.key == k.key) key = &k;
      if (key == nullptr) {
        findings->push_back(KeyFinding(*file, entry, false, "unknown-key",
                                       "unknown key \"" + std::string(entry.key) +
                                           "\" in section \"" + std::string(section.name) +
                                           "\"; it is not read"));
        continue;
      }
      // An empty value takes the built-in one; only the first of a key is read.
      if (entry.value.empty() || section.Find(entry.key) != &entry) continue;
      const std::string value(entry.value);
      const std::string message = ValueProblem(*key, value);
      if (!message.empty())
        findings->push_back(FindingAt(file->relative, file->lines, entry.line, value, false,
                                      "bad-value", message));
    }
  });
}

}  // namespace cmcfg_tool
