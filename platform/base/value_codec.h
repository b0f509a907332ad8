#ifndef CMCFG_PLATFORM_BASE_VALUE_CODEC_H_
#define CMCFG_PLATFORM_BASE_VALUE_CODEC_H_

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <vector>

namespace cfg {

// Value texts of the settings files. Numbers are decimal or "0x" hex, with
// an optional "-" for signed types, surrounded by optional blanks. Every
// Parse function leaves *out untouched and returns false when the text is
// not a number of that type (empty, trailing junk, out of range), so the
// caller's default stays.
bool ParseValue(std::string_view text, int32_t* out);
bool ParseValue(std::string_view text, uint32_t* out);
bool ParseValue(std::string_view text, uint16_t* out);
bool ParseValue(std::string_view text, uint8_t* out);
bool ParseValue(std::string_view text, unsigned long* out);
// Any text; taken as it stands.
bool ParseValue(std::string_view text, std::string* out);
// Comma-separated names ("G711A, G711U"); blanks around a name and empty
// names are dropped, so an empty text is an empty list. Never fails.
bool ParseValue(std::string_view text, std::list<std::string>* out);
// Comma-separated numbers ("1000,2500"). Fails, keeping *out, when any
// piece is not a number or the text holds none.
bool ParseValue(std::string_view text, std::vector<unsigned long>* out);

std::string FormatValue(int32_t value);
std::string FormatValue(uint32_t value);
std::string FormatValue(uint16_t value);
std::string FormatValue(unsigned long value);
std::string FormatValue(const std::string& value);
std::string FormatValue(const std::list<std::string>& value);      // "a,b,c"
std::string FormatValue(const std::vector<unsigned long>& value);  // "1000,2500"
// A byte as "0x" and two upper-case hex digits ("0xB8").
std::string FormatHexByte(uint8_t value);

// True when `text` may stand as one member of a comma-separated list: it
// holds no comma, which the next read would take for a separator. Writers
// of lists refuse any other member instead of storing it split.
bool IsListMember(std::string_view text);
// True when every name of the list IsListMember.
bool AreListMembers(const std::list<std::string>& names);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_VALUE_CODEC_H_
