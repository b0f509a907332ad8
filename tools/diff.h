#ifndef CMCFG_TOOLS_DIFF_H_
#define CMCFG_TOOLS_DIFF_H_

#include <iosfwd>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace cmcfg_tool {

// Options of "cmcfg diff ROOT_A ROOT_B".
struct DiffOptions {
  std::string rootA;
  std::string rootB;
  std::string logDir;  // "" : relative logs go to the current directory
};

// Replaces what differs on every load of the same root by something stable:
// the digits of each extension's SIP user name (the agent appends a
// time-based suffix) are dropped, and a text starting with `root` (ending
// in "/"; "" for none) starts with "ROOT/" instead, so that two roots' own
// paths compare equal. Works on a DumpJson document in place.
void StabiliseDump(nlohmann::ordered_json* dump, const std::string& root);

// The differences between two DumpJson documents, one line each, as
// "PATH: OLD -> NEW", "PATH: added" or "PATH: removed". PATH names objects
// in words ("extension 105: contact *: forward busy: destinations"); see
// docs/man/diff.md. Empty when the documents are equal.
std::vector<std::string> DiffDumps(const nlohmann::ordered_json& a,
                                   const nlohmann::ordered_json& b);

// "cmcfg diff": loads both roots, prints the differences on out; 0 when
// there are none, 1 when there are, 2 (one line on err) when a root is not
// usable.
int RunDiff(const DiffOptions& options, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_DIFF_H_
