// ParseSIPAddress: splits "[sip:|sips:]user@host[:port]" into its parts.
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/base/string_utils.h"

namespace {

bool HasBlankOrControl(std::string_view text) {
  for (unsigned char c : text) {
    if (c <= 0x20 || c == 0x7F) return true;
  }
  return false;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i) {
    char c = text[i];
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c != prefix[i]) return false;
  }
  return true;
}

// Removes a "sip:" or "sips:" scheme; false when there is none.
bool StripScheme(std::string_view* text) {
  for (std::string_view scheme : {std::string_view("sip:"), std::string_view("sips:")}) {
    if (StartsWithNoCase(*text, scheme)) {
      text->remove_prefix(scheme.size());
      return true;
    }
  }
  return false;
}

bool IsValidPort(std::string_view port) {
  if (port.empty() || port.size() > 5) return false;
  unsigned long value = 0;
  for (char c : port) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + static_cast<unsigned long>(c - '0');
  }
  return value >= 1 && value <= 65535;
}

// Splits "host[:port]"; an IPv6 host keeps its brackets ("[::1]:5060").
bool SplitHostPort(std::string_view hostport, std::string_view* host, std::string_view* port) {
  size_t host_end;
  if (!hostport.empty() && hostport[0] == '[') {
    size_t close = hostport.find(']');
    if (close == std::string_view::npos) return false;
    host_end = close + 1;
    if (host_end < hostport.size() && hostport[host_end] != ':') return false;
  } else {
    host_end = hostport.find(':');
    if (host_end == std::string_view::npos) host_end = hostport.size();
  }
  *host = hostport.substr(0, host_end);
  *port = std::string_view();
  if (host_end < hostport.size()) {
    *port = hostport.substr(host_end + 1);
    if (!IsValidPort(*port)) return false;
  }
  return !host->empty() && host->find('@') == std::string_view::npos;
}

}  // namespace

bool ParseSIPAddress(const std::string& address, std::string& user, std::string& host,
                     std::string& port, bool allowNoScheme) {
  std::string_view rest(address);
  if (rest.empty() || HasBlankOrControl(rest)) return false;
  if (!StripScheme(&rest) && !allowNoScheme) return false;

  std::string_view user_part;
  size_t at = rest.rfind('@');
  if (at != std::string_view::npos) {
    user_part = rest.substr(0, at);
    if (user_part.empty()) return false;
    rest.remove_prefix(at + 1);
  }
  // URI parameters and headers (";transport=udp", "?subject=x") are not
  // part of the host or port.
  size_t params = rest.find_first_of(";?");
  if (params != std::string_view::npos) rest = rest.substr(0, params);

  std::string_view host_part, port_part;
  if (!SplitHostPort(rest, &host_part, &port_part)) return false;
  user.assign(user_part);
  host.assign(host_part);
  port.assign(port_part);
  return true;
}
