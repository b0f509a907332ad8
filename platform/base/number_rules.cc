#include "platform/base/number_rules.h"

#include <cstdint>
#include <cstdlib>

namespace cfg {

bool ParseCNumber(std::string_view text, int32_t* out) {
  if (text.empty()) return false;
  const std::string value(text);
  char* end = nullptr;
  long v = std::strtol(value.c_str(), &end, 0);
  if (*end != '\0' || v < INT32_MIN || v > INT32_MAX) return false;
  *out = static_cast<int32_t>(v);
  return true;
}

bool ParseValue(std::string_view text, CNumber* out) { return ParseCNumber(text, &out->value); }

std::string FormatValue(CNumber number) { return std::to_string(number.value); }

uint32_t CUnsignedOrZero(std::string_view text) {
  std::string value(text);
  if (value.empty() || value[0] == '-') return 0;
  char* end = nullptr;
  unsigned long long v = std::strtoull(value.c_str(), &end, 0);
  return (*end == '\0' && v <= 0xFFFFFFFFull) ? static_cast<uint32_t>(v) : 0;
}

unsigned long CadenceValue(const std::string& piece) {
  return static_cast<unsigned long>(std::strtol(piece.c_str(), nullptr, 10));
}

unsigned short LeadingDigits(const std::string& text, std::string::size_type from) {
  while (from < text.size() && (text[from] == ' ' || text[from] == '\t')) ++from;
  unsigned long value = 0;
  for (; from < text.size() && text[from] >= '0' && text[from] <= '9'; ++from)
    value = (value * 10 + static_cast<unsigned long>(text[from] - '0')) & 0xFFFFFFFFul;
  return static_cast<unsigned short>(value);
}

long DecimalPrefix(const std::string& piece) { return std::strtol(piece.c_str(), nullptr, 10); }

}  // namespace cfg
