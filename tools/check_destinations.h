#ifndef CMCFG_TOOLS_CHECK_DESTINATIONS_H_
#define CMCFG_TOOLS_CHECK_DESTINATIONS_H_

#include <vector>

#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// Checks that every extension named where the agent expects one exists in
// the extension database (a file of any kind): enabled forward destinations
// and hunting targets of call type 0, speed-dial destinations of type 0 in
// user extensions, and the `extension` of each `binding G/L` section of the
// line database. Adds warnings to `findings`.
void CheckDestinations(const std::vector<CheckedFile>& files, Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_DESTINATIONS_H_
