#ifndef CMCFG_TOOLS_CHECK_LINEDB_H_
#define CMCFG_TOOLS_CHECK_LINEDB_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// Reads a line-database section name "KIND G/L" (KIND one of binding, fxs,
// fxo; G and L decimal, 32 bits) the way the line database does. False for
// any other name.
bool ParseLineSection(std::string_view name, std::string_view* kind, uint32_t* gateway,
                      uint32_t* line);

// Checks "telephony/linedb": sections the line database ignores (another
// name, or an endpoint that is not G/L), FXS ports bound twice under
// different spellings (the first binding is read), and bindings the agent
// cannot resolve: a gateway that "telephony/gateways.cfg" does not have, or
// no `fxs G/L` section for the port. Adds warnings to `findings`.
void CheckLineDatabase(const std::vector<CheckedFile>& files, Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_LINEDB_H_
