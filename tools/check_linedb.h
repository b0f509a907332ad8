#ifndef CMCFG_TOOLS_CHECK_LINEDB_H_
#define CMCFG_TOOLS_CHECK_LINEDB_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// Checks "telephony/linedb": sections the line database ignores (another
// name, or an endpoint that is not G/L), FXS ports bound twice under
// different spellings (the first binding is read), and bindings the agent
// cannot resolve: a gateway that "telephony/gateways.cfg" does not have, or
// no `fxs G/L` section for the port. Adds warnings to `findings`.
void CheckLineDatabase(const std::vector<CheckedFile>& files, Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_LINEDB_H_
