#ifndef CMCFG_TOOLS_DIFF_H_
#define CMCFG_TOOLS_DIFF_H_

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/verb.h"

namespace cmcfg_tool {

// The differences between two documents (tools/document.h), one line each,
// as "PATH: OLD -> NEW", "PATH: added" or "PATH: removed". PATH names
// objects in words ("extension 105: contact *: forward busy: destinations");
// see docs/man/diff.md. Empty when the documents are equal.
std::vector<std::string> DiffDumps(const nlohmann::ordered_json& a,
                                   const nlohmann::ordered_json& b);

// "cmcfg diff ROOT_A ROOT_B": compares the roots' files, then builds the
// records only where they differ (when only extension files differ, only
// those extensions are loaded); prints the differences on out. kOk when
// there are none, kFindings when there are, kUsage (one line on err) when a
// root is not usable.
int RunDiff(const Invocation& invocation, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_DIFF_H_
