#ifndef CMCFG_TOOLS_CHECK_DESTINATIONS_H_
#define CMCFG_TOOLS_CHECK_DESTINATIONS_H_

#include <set>
#include <string>
#include <vector>

#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// Checks that every extension named where the agent expects one exists in
// the extension database (a file of any kind): enabled forward destinations
// and hunting targets of call type 0, speed-dial destinations of type 0 in
// user extensions, and the `extension` of each `binding G/L` section of the
// line database, among `files`; `names` holds every extension's name
// (ExtensionNames). Adds warnings to `findings`; a forward destination
// whose address the agent cannot split is an error.
void CheckDestinations(const std::vector<CheckedFile>& files, const std::set<std::string>& names,
                       Findings* findings);

// The names of the extensions of `extensionFiles` (as ListExtensionFiles
// gives them).
std::set<std::string> ExtensionNames(const std::vector<std::string>& extensionFiles);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_DESTINATIONS_H_
