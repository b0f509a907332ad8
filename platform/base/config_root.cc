#include "platform/base/config_root.h"

#include <limits.h>
#include <stdlib.h>

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

namespace {

// The resolved form of `path`, or "" when it cannot be resolved.
std::string Resolved(const std::string& path) {
  char buffer[PATH_MAX];
  return realpath(path.c_str(), buffer) != nullptr ? std::string(buffer) : std::string();
}

}  // namespace

bool IsInsideRoot(const std::string& path) {
  std::string root = Resolved(ConfigRoot());
  if (root.empty() || path.empty()) return false;
  // The file itself may not exist yet; its folder must.
  std::string resolved = Resolved(path);
  if (resolved.empty()) {
    size_t slash = path.rfind('/');
    std::string dir = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..") return false;
    std::string folder = Resolved(dir);
    if (folder.empty()) return false;
    resolved = folder + "/" + name;
  }
  if (root == "/") return true;
  return resolved.size() > root.size() && resolved.compare(0, root.size(), root) == 0 &&
         resolved[root.size()] == '/';
}

}  // namespace cfg
