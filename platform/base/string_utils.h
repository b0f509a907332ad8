#ifndef CMCFG_PLATFORM_BASE_STRING_UTILS_H_
#define CMCFG_PLATFORM_BASE_STRING_UTILS_H_

#include <string>
#include <vector>

class StringUtils {
 public:
  // Splits `line` at `separator`. An empty line gives no piece; otherwise n
  // separators give n + 1 pieces, empty ones included, untrimmed.
  static std::vector<std::string> ParseCommaLine(const std::string& line, char separator = ',');
};

// Splits a SIP address "[sip:]user@host[:port]" (or "host[:port]" without a
// user) into its parts. With `allowNoScheme` the "sip:" prefix may be left
// out. False, and the outputs untouched, when the host is empty, the port is
// not a number, or the address holds blanks or control characters.
bool ParseSIPAddress(const std::string& address, std::string& user, std::string& host,
                     std::string& port, bool allowNoScheme);

#endif  // CMCFG_PLATFORM_BASE_STRING_UTILS_H_
