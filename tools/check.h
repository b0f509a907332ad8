#ifndef CMCFG_TOOLS_CHECK_H_
#define CMCFG_TOOLS_CHECK_H_

#include <iosfwd>
#include <string>

#include "tools/check_findings.h"

namespace cmcfg_tool {

// Options of `cmcfg check`.
struct CheckOptions {
  std::string root;  // "" : $ORBA_PATH, else /etc/orba-conf/
  bool json = false;
};

// Every finding for the root `root` (ending in "/"), in file order: the
// syntax of each file the agent reads, then what the agent would skip.
// Reads only.
Findings FindProblems(const std::string& root);

// `cmcfg check`: prints the findings on out (text or JSON). Status 0 when
// there is no error (warnings allowed), 1 with an error, 2 when the root
// cannot be read (one line on err).
int RunCheck(const CheckOptions& options, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_H_
