#ifndef CMCFG_TOOLS_CHECK_SERVICE_CODES_H_
#define CMCFG_TOOLS_CHECK_SERVICE_CODES_H_

#include <string>
#include <vector>

#include "tools/check_findings.h"
#include "tools/agent_parsers.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// Checks the `service_codes` section of every user extension file (only
// users have a functional table): keys other than code_1 .. code_N of the
// store, codes holding characters that form no key, codes that form none
// at all, and codes that can never be reached because another code of the
// file is a proper prefix of them. The keys a code dials are the agent's
// own (`parsers`). Adds warnings to `findings`.
void CheckServiceCodes(const std::vector<CheckedFile>& files, AgentParsers& parsers,
                       Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_SERVICE_CODES_H_
