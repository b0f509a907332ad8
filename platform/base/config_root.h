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

// True when `path` (a file that may not exist yet) lies inside the
// configuration root once symbolic links and ".." are resolved. Writes are
// confined to the root: a path named in a settings file must not let the
// agent change files elsewhere. False when the root does not exist.
bool IsInsideRoot(const std::string& path);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_CONFIG_ROOT_H_
