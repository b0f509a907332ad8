#ifndef CMCFG_PLATFORM_BASE_NUMBER_RULES_H_
#define CMCFG_PLATFORM_BASE_NUMBER_RULES_H_

#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

// Every way the readers turn a text into a number, each stated once with
// who uses it and why. The strict rule of the settings and extension files
// is ParseValue (value_codec.h): a whole decimal or "0x" number, or the
// caller's default. The others are leniencies the appliance's files have
// always been read with, and are kept for that reason.
namespace cfg {

// C conventions (decimal, "0x" hex, leading-zero octal, optional sign),
// the whole text, within int32; false otherwise. The line database's
// numbers, which its own tools write that way.
bool ParseCNumber(std::string_view text, int32_t* out);

// A field-table member read with ParseCNumber (field_table.h): the
// value, kept when the text is not such a number.
struct CNumber {
  int32_t value = 0;
};
bool ParseValue(std::string_view text, CNumber* out);
std::string FormatValue(CNumber number);  // decimal

// C conventions as ParseCNumber, not negative, within 32 bits; 0 for
// anything else. The fax encodings' parameters ("fax.cfg").
uint32_t CUnsignedOrZero(std::string_view text);

// A formatted read into a zeroed target: leading blanks skipped, then the
// number the text starts with ("425Hz" gives 425); 0 when it starts with
// none. The tone file's and the external-user cache's numbers, which
// other programs write with units and suffixes.
template <typename T>
T LeadingValue(const std::string& text) {
  T value = 0;
  std::istringstream in(text);
  in >> value;
  return value;
}

// The decimal number a piece starts with, as strtol reads it (a sign
// allowed, then digits), wrapped into an unsigned long; 0 without digits.
// Ring cadences, where "400ms" is 400 and a word is a silent 0.
unsigned long CadenceValue(const std::string& piece);

// The decimal digits after leading blanks, wrapped at 32 bits and cut to
// 16; 0 without digits. PSTN channel and time-slot lists, where anything
// after the digits is ignored.
unsigned short LeadingDigits(const std::string& text, std::string::size_type from = 0);

// strtol in base 10 of the piece (0 without digits). Contact identifiers
// given to UpdateContact.
long DecimalPrefix(const std::string& piece);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_NUMBER_RULES_H_
