#include "platform/base/value_codec.h"

#include <cstdio>
#include <limits>

namespace cfg {
namespace {

std::string_view Trim(std::string_view text) {
  const char* kBlanks = " \t";
  size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  size_t last = text.find_last_not_of(kBlanks);
  return text.substr(first, last - first + 1);
}

int DigitValue(char c, int base) {
  int v = -1;
  if (c >= '0' && c <= '9')
    v = c - '0';
  else if (c >= 'a' && c <= 'f')
    v = c - 'a' + 10;
  else if (c >= 'A' && c <= 'F')
    v = c - 'A' + 10;
  return v < base ? v : -1;
}

// Sign and magnitude of a decimal or "0x" hex number; false on anything
// else, including a magnitude past 64 bits.
bool ParseMagnitude(std::string_view text, bool* negative, unsigned long long* magnitude) {
  text = Trim(text);
  *negative = !text.empty() && text[0] == '-';
  if (*negative) text.remove_prefix(1);
  int base = 10;
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
    base = 16;
    text.remove_prefix(2);
  }
  if (text.empty()) return false;
  const unsigned long long kMax = std::numeric_limits<unsigned long long>::max();
  unsigned long long value = 0;
  for (char c : text) {
    int digit = DigitValue(c, base);
    if (digit < 0) return false;
    if (value > (kMax - digit) / base) return false;
    value = value * base + digit;
  }
  *magnitude = value;
  return true;
}

template <typename T>
bool ParseInteger(std::string_view text, T* out) {
  bool negative = false;
  unsigned long long magnitude = 0;
  if (!ParseMagnitude(text, &negative, &magnitude)) return false;
  if (negative) {
    if (!std::numeric_limits<T>::is_signed) return magnitude == 0 ? (*out = 0, true) : false;
    // |min| of a two's complement type is max + 1.
    unsigned long long limit = static_cast<unsigned long long>(std::numeric_limits<T>::max()) + 1;
    if (magnitude > limit) return false;
    *out = magnitude == limit ? std::numeric_limits<T>::min()
                              : static_cast<T>(-static_cast<long long>(magnitude));
    return true;
  }
  if (magnitude > static_cast<unsigned long long>(std::numeric_limits<T>::max())) return false;
  *out = static_cast<T>(magnitude);
  return true;
}

// Calls `piece` for each comma-separated piece of `text`, trimmed.
template <typename Fn>
void ForEachPiece(std::string_view text, Fn piece) {
  while (true) {
    size_t comma = text.find(',');
    piece(Trim(text.substr(0, comma)));
    if (comma == std::string_view::npos) return;
    text.remove_prefix(comma + 1);
  }
}

}  // namespace

bool ParseValue(std::string_view text, int32_t* out) { return ParseInteger(text, out); }
bool ParseValue(std::string_view text, uint32_t* out) { return ParseInteger(text, out); }
bool ParseValue(std::string_view text, uint16_t* out) { return ParseInteger(text, out); }
bool ParseValue(std::string_view text, uint8_t* out) { return ParseInteger(text, out); }
bool ParseValue(std::string_view text, unsigned long* out) { return ParseInteger(text, out); }

bool ParseValue(std::string_view text, std::string* out) {
  out->assign(text.data(), text.size());
  return true;
}

bool ParseValue(std::string_view text, std::list<std::string>* out) {
  std::list<std::string> names;
  ForEachPiece(text, [&](std::string_view name) {
    if (!name.empty()) names.emplace_back(name);
  });
  out->swap(names);
  return true;
}

bool ParseValue(std::string_view text, std::vector<unsigned long>* out) {
  if (Trim(text).empty()) return false;
  std::vector<unsigned long> numbers;
  bool ok = true;
  ForEachPiece(text, [&](std::string_view piece) {
    unsigned long n = 0;
    if (ok && ParseInteger(piece, &n))
      numbers.push_back(n);
    else
      ok = false;
  });
  if (ok) out->swap(numbers);
  return ok;
}

std::string FormatValue(int32_t value) { return std::to_string(value); }
std::string FormatValue(uint32_t value) { return std::to_string(value); }
std::string FormatValue(uint16_t value) { return std::to_string(value); }
std::string FormatValue(unsigned long value) { return std::to_string(value); }
std::string FormatValue(const std::string& value) { return value; }

std::string FormatValue(const std::list<std::string>& value) {
  std::string text;
  for (const std::string& name : value) {
    if (!text.empty()) text += ',';
    text += name;
  }
  return text;
}

std::string FormatValue(const std::vector<unsigned long>& value) {
  std::string text;
  for (unsigned long n : value) {
    if (!text.empty()) text += ',';
    text += std::to_string(n);
  }
  return text;
}

std::string FormatHexByte(uint8_t value) {
  char text[8];
  snprintf(text, sizeof(text), "0x%02X", static_cast<unsigned>(value));
  return text;
}

bool IsListMember(std::string_view text) { return text.find(',') == std::string_view::npos; }

bool AreListMembers(const std::list<std::string>& names) {
  for (const std::string& name : names)
    if (!IsListMember(name)) return false;
  return true;
}

}  // namespace cfg
