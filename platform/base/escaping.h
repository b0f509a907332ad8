#ifndef CMCFG_PLATFORM_BASE_ESCAPING_H_
#define CMCFG_PLATFORM_BASE_ESCAPING_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace cfg {

// Values of the multi-section format are written bare when they read back
// identical that way, and otherwise in double quotes with the escapes
// \\ \" \n \r \t \xHH. Bare values are literal: backslashes in them (dial
// patterns such as "\?1?") need no doubling.

// True when `value` would not read back identical if written bare: it holds
// a line break or another control character, starts or ends with a blank,
// or starts with a double quote.
bool NeedsQuoting(std::string_view value);

// Appends `value` to `out` in double quotes, escaped.
void AppendQuoted(std::string_view value, std::string* out);

// True when `text` is a quoted value: at least two bytes, a double quote at
// each end.
inline bool IsQuoted(std::string_view text) {
  return text.size() >= 2 && text.front() == '"' && text.back() == '"';
}

// Decodes the text between the quotes of a quoted value into `out`. An
// escape that is not understood is kept as it stands; the offset of the
// first such backslash goes to `*bad_offset` and the result is false.
bool Unescape(std::string_view inner, std::string* out, size_t* bad_offset);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_ESCAPING_H_
