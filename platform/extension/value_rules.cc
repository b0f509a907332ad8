#include "platform/extension/value_rules.h"

#include <string>

#include "cmcfg/types.h"
#include "platform/base/string_utils.h"

namespace extdb {
namespace {

// The value as a message shows it: quoted, cut short, control characters
// escaped so that the message stays one line.
std::string Shown(std::string_view value) {
  constexpr size_t kShown = 40;
  std::string out = "\"";
  for (size_t i = 0; i < value.size() && i < kShown; ++i) {
    const unsigned char c = static_cast<unsigned char>(value[i]);
    if (c < 0x20 || c == 0x7F) {
      static const char kHex[] = "0123456789abcdef";
      out += "\\x";
      out += kHex[c >> 4];
      out += kHex[c & 15];
    } else {
      out += static_cast<char>(c);
    }
  }
  if (value.size() > kShown) out += "...";
  return out + "\"";
}

cfg::Status Refuse(std::string_view what, std::string_view value, const std::string& why) {
  return cfg::Status::InvalidArgument(std::string(what) + " " + Shown(value) + " " + why);
}

size_t FindControl(std::string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (c < 0x20 || c == 0x7F) return i;
  }
  return std::string_view::npos;
}

// `allowed` besides the digits and a leading '+'; `listed` names them.
cfg::Status CheckNumberChars(std::string_view what, std::string_view number,
                             std::string_view allowed, std::string_view listed) {
  if (number.empty()) return Refuse(what, number, "is empty");
  if (number.size() > kMaxNumberLength)
    return Refuse(what, number,
                  "is longer than " + std::to_string(kMaxNumberLength) + " characters");
  for (size_t i = 0; i < number.size(); ++i) {
    const char c = number[i];
    if ((c >= '0' && c <= '9') || (c == '+' && i == 0) ||
        allowed.find(c) != std::string_view::npos)
      continue;
    const std::string held = FindControl(number.substr(i, 1)) == 0
                                 ? std::string("a control character")
                                 : "'" + std::string(1, c) + "'";
    return Refuse(what, number,
                  "holds " + held + "; it may hold only digits, " + std::string(listed) +
                      " and a leading '+'");
  }
  return cfg::Status::OK();
}

}  // namespace

cfg::Status CheckPhoneNumber(std::string_view number) {
  return CheckNumberChars("number", number, "*#", "'*', '#'");
}

cfg::Status CheckSipAddress(std::string_view address) {
  cfg::Status text = CheckText("SIP address", address);
  if (!text.ok()) return text;
  std::string user, host, port;
  if (!ParseSIPAddress(std::string(address), user, host, port, true))
    return Refuse("SIP address", address,
                  "is not \"[sip:]user@host[:port]\" with a host, no blank and a port of 1 to 65535");
  if (user.find('@') != std::string::npos)
    return Refuse("SIP address", address, "holds more than one '@'");
  return cfg::Status::OK();
}

cfg::Status CheckText(std::string_view what, std::string_view text) {
  if (FindControl(text) != std::string_view::npos)
    return Refuse(what, text, "holds a control character");
  if (text.size() > kMaxTextLength)
    return Refuse(what, text, "is longer than " + std::to_string(kMaxTextLength) + " bytes");
  return cfg::Status::OK();
}

cfg::Status CheckDestination(int32_t type, std::string_view address) {
  if (type == kCallSip) return CheckSipAddress(address);
  if (type == kCallFromPhone) return CheckPhoneNumber(address);
  return CheckText("destination", address);
}

cfg::Status CheckContactName(int32_t callType, std::string_view name) {
  if (callType == kCallSip) return CheckSipAddress(name);
  return CheckNumberChars("contact name", name, "*#?\\", "'*', '#', '?', '\\'");
}

}  // namespace extdb
