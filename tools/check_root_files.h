#ifndef CMCFG_TOOLS_CHECK_ROOT_FILES_H_
#define CMCFG_TOOLS_CHECK_ROOT_FILES_H_

#include <string>
#include <vector>

#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// What the set of files of the root hides (`extensionFiles` as
// ListExtensionFiles gave them for `root`):
// - a settings file that is missing: the agent uses its defaults (warning);
// - a configuration file in telephony/ (its name holds ".cfg") that nothing
//   reads, such as a renamed settings file (warning);
// - one number answering for two extensions of different kinds: a lookup
//   finds the first in the agent's order (the extension table's kinds as
//   loaded, then the attendants) and never the other (error).
void CheckRootFiles(const std::string& root, const std::vector<std::string>& extensionFiles,
                    Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_ROOT_FILES_H_
