#include "tones/tone_key_rules.h"

#include <cstdint>
#include <type_traits>
#include <variant>

#include "platform/base/string_utils.h"
#include "tones/tone_values.h"

namespace tones {
namespace {

// How the reader (tone_type_reader.cc) takes each key's value.
enum class Kind { kUnsigned16, kSigned32, kFlag, kCadence };

// One key of a tone's section: how its value is taken, and the field of
// ToneType it fills (none for the keys the cadence is made of, which the
// reader puts together itself).
struct ToneKey {
  const char* key;
  Kind kind;
  std::variant<std::monostate, uint32_t ToneType::*, uint16_t ToneType::*, int32_t ToneType::*,
               bool ToneType::*>
      field;
};

const ToneKey kToneKeys[] = {
    {"mode", Kind::kUnsigned16, &ToneType::mode},
    {"tone_level_1", Kind::kSigned32, &ToneType::tone_level_1},
    {"tone_level_2", Kind::kSigned32, &ToneType::tone_level_2},
    {"frequency_1", Kind::kUnsigned16, &ToneType::frequency_1},
    {"frequency_2", Kind::kUnsigned16, &ToneType::frequency_2},
    {"is_play_wav_on", Kind::kFlag, &ToneType::is_play_wav_on},
    {"pattern", Kind::kCadence, {}},
    {"tone_duration", Kind::kUnsigned16, {}},
    {"silence_duration", Kind::kUnsigned16, {}},
};

// A value as the reader takes it for a key of that kind.
int64_t Take(Kind kind, const std::string& text) {
  switch (kind) {
    case Kind::kUnsigned16: return ReadNumber<uint16_t>(text);
    case Kind::kSigned32: return ReadNumber<int32_t>(text);
    case Kind::kFlag: return ReadFlag(text);
    case Kind::kCadence: break;
  }
  return 0;
}

const ToneKey* Find(std::string_view key) {
  for (const ToneKey& k : kToneKeys)
    if (key == k.key) return &k;
  return nullptr;
}

// Blanks, an optional '-' when `negative`, digits, blanks; within the range:
// what the formatted read takes whole.
bool IsWholeNumber(std::string_view text, bool negative, int64_t min, int64_t max) {
  size_t at = text.find_first_not_of(" \t");
  if (at == std::string_view::npos) return false;
  bool minus = false;
  if (negative && text[at] == '-') minus = true, ++at;
  const size_t digits = at;
  int64_t value = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    value = value * 10 + (text[at] - '0');
    if (value > max + 1) return false;
  }
  if (at == digits || text.find_first_not_of(" \t", at) != std::string_view::npos) return false;
  if (minus) value = -value;
  return value >= min && value <= max;
}

}  // namespace

bool IsToneKey(std::string_view key) { return Find(key) != nullptr; }

void ReadToneFields(const std::function<const char*(const char* key)>& text, const ToneType& def,
                    ToneType* type) {
  for (const ToneKey& k : kToneKeys) {
    std::visit(
        [&](auto field) {
          if constexpr (!std::is_same_v<decltype(field), std::monostate>) {
            using T = std::remove_reference_t<decltype(type->*field)>;
            const char* value = text(k.key);
            type->*field = value != nullptr && *value != '\0'
                               ? static_cast<T>(Take(k.kind, value))
                               : def.*field;
          }
        },
        k.field);
  }
}

std::string ToneValueProblem(std::string_view key, std::string_view value) {
  const ToneKey* tone = Find(key);
  if (tone == nullptr || value.empty()) return "";
  const std::string text(value);
  switch (tone->kind) {
    case Kind::kUnsigned16:
      if (IsWholeNumber(value, false, 0, 0xFFFF)) return "";
      return "is not a number from 0 to 65535; it reads as " +
             std::to_string(ReadNumber<uint16_t>(text));
    case Kind::kSigned32:
      if (IsWholeNumber(value, true, INT32_MIN, INT32_MAX)) return "";
      return "is not a whole number; it reads as " + std::to_string(ReadNumber<int32_t>(text));
    case Kind::kFlag:
      if (IsWholeNumber(value, false, 0, 1)) return "";
      return "is not 0 or 1; it reads as " + std::to_string(ReadFlag(text));
    case Kind::kCadence:
      // The player takes the cadence as written; each piece must be a duration.
      for (const std::string& piece : StringUtils::ParseCommaLine(text, ','))
        if (!IsWholeNumber(piece, false, 0, 0xFFFFFFFFll))
          return "holds \"" + piece +
                 "\", which is not a duration in ms; the player receives it as written";
      return "";
  }
  return "";
}

}  // namespace tones
