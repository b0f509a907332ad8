#ifndef CMCFG_PLATFORM_BASE_CONFIG_ROOT_H_
#define CMCFG_PLATFORM_BASE_CONFIG_ROOT_H_

#include <string>

namespace cfg {

// The configuration root: "ORBA_PATH", or "/etc/orba-conf/" when unset.
// Read afresh on every call; never cached. Paths are made by plain
// concatenation, so a root without its trailing "/" runs into the names.
std::string ConfigRoot();

// ConfigRoot() + "telephony/" + name.
std::string TelephonyPath(const std::string& name);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_CONFIG_ROOT_H_
