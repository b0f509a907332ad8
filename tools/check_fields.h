#ifndef CMCFG_TOOLS_CHECK_FIELDS_H_
#define CMCFG_TOOLS_CHECK_FIELDS_H_

#include <vector>

#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// Checks the block files of the root (gateways.cfg, tos.cfg,
// authorized_phones.cfg, ringpatterns.cfg) with the rules each block type
// publishes beside its reader: sections whose name is no block id (ignored
// by the store), keys the block does not read, and values it does not
// take. Adds warnings to `findings`.
void CheckBlockFiles(const std::vector<CheckedFile>& files, Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_FIELDS_H_
