#ifndef CMCFG_TOOLS_DUMP_H_
#define CMCFG_TOOLS_DUMP_H_

#include <iosfwd>

#include "tools/verb.h"

namespace cmcfg_tool {

// "cmcfg dump": every loaded record as one JSON document (tools/document.h,
// Detail::kFull), written record by record; kOk, or kUsage (one line on
// err) when the root is not usable.
int RunDump(const Invocation& invocation, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_DUMP_H_
