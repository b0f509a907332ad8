#include "platform/base/config_root.h"

#include <cstdlib>

namespace cfg {

std::string ConfigRoot() {
  // Looked up on every call: tests and the appliance's tools switch roots
  // while the library is loaded.
  const char* root = std::getenv("ORBA_PATH");
  return root != nullptr ? std::string(root) : std::string("/etc/orba-conf/");
}

std::string TelephonyPath(const std::string& name) {
  return ConfigRoot() + "telephony/" + name;
}

}  // namespace cfg
