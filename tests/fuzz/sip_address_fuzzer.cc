// ParseSIPAddress over arbitrary text: what it accepts has the documented
// shape and reads back the same when put together again.
#include <string>

#include "platform/base/string_utils.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

bool HasBlankOrControl(const std::string& text) {
  for (unsigned char c : text)
    if (c <= 0x20 || c == 0x7F) return true;
  return false;
}

bool IsPort(const std::string& port) {
  if (port.empty() || port.size() > 5) return false;
  if (port.find_first_not_of("0123456789") != std::string::npos) return false;
  unsigned long value = std::stoul(port);
  return value >= 1 && value <= 65535;
}

void Check(const std::string& address, bool allowNoScheme) {
  std::string user = "u0", host = "h0", port = "p0";
  if (!ParseSIPAddress(address, user, host, port, allowNoScheme)) {
    // Outputs untouched on failure.
    FUZZ_CHECK(user == "u0" && host == "h0" && port == "p0");
    return;
  }
  FUZZ_CHECK(!host.empty());
  FUZZ_CHECK(host.find('@') == std::string::npos);
  FUZZ_CHECK(port.empty() || IsPort(port));
  FUZZ_CHECK(!HasBlankOrControl(user) && !HasBlankOrControl(host));
  // Every part is taken from the address.
  FUZZ_CHECK(address.find(host) != std::string::npos);
  FUZZ_CHECK(address.find(user) != std::string::npos);

  // Put together again, the address gives the same parts.
  std::string again = "sip:";
  if (!user.empty()) again += user + "@";
  again += host;
  if (!port.empty()) again += ":" + port;
  std::string user2, host2, port2;
  FUZZ_CHECK(ParseSIPAddress(again, user2, host2, port2, false));
  FUZZ_CHECK(user2 == user && host2 == host && port2 == port);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string address(fuzz_support::AsText(data, size));
  Check(address, true);
  Check(address, false);
  return 0;
}
