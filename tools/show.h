#ifndef CMCFG_TOOLS_SHOW_H_
#define CMCFG_TOOLS_SHOW_H_

#include <iosfwd>

#include "tools/verb.h"

class CMAgent;

namespace cmcfg_tool {

// The summary of a loaded agent as text: each extension and attendant on
// one line (name, type, SIP address, FXS endpoints, codec counts, PSTN
// channels, description), then the system settings as RenderText writes
// them. Paths below `root` are relative to it.
void PrintSummary(const CMAgent& agent, const std::string& root, std::ostream& out);

// "cmcfg show [--json]": the summary, or the document with Detail::kSummary;
// kOk, or kUsage (one line on err) when the root is not usable.
int RunShow(const Invocation& invocation, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_SHOW_H_
