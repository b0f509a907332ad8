#ifndef CMCFG_TOOLS_CHECK_H_
#define CMCFG_TOOLS_CHECK_H_

#include <iosfwd>
#include <string>

#include "tools/check_findings.h"
#include "tools/verb.h"

namespace cmcfg_tool {


// Every finding for the root `root` (ending in "/"): the settings files'
// syntax, the missing, unread and shared-number files, the settings files'
// values, then each extension file in turn (its syntax, then what the agent
// would skip in it). Reads only, one extension file at a time.
Findings FindProblems(const std::string& root);

// `cmcfg check [--json]`: prints the findings on out (text or JSON). kOk
// when there is no error (warnings allowed), kFindings with an error,
// kUsage when the root cannot be read (one line on err).
int RunCheck(const Invocation& invocation, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_H_
