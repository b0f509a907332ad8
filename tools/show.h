#ifndef CMCFG_TOOLS_SHOW_H_
#define CMCFG_TOOLS_SHOW_H_

#include <iosfwd>
#include <string>

#include <nlohmann/json.hpp>

class CMAgent;

namespace cmcfg_tool {

struct ShowOptions {
  std::string root;    // "" : "ORBA_PATH", else the built-in default
  std::string logDir;  // "" : relative logs go to the current directory
  bool json = false;
};

// The root to use, always ending in "/" (the agent joins names to it
// without a separator).
std::string ResolveRoot(const std::string& explicitRoot);
// "" when the root is a folder we can read, else why not.
std::string CheckRoot(const std::string& root);

// The human summary and its JSON form, of an agent that has been loaded.
void PrintSummary(const CMAgent& agent, std::ostream& out);
nlohmann::json SummaryJson(const CMAgent& agent);

// "cmcfg show": 0 when the summary was printed, 2 when the root is not usable.
int RunShow(const ShowOptions& options, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_SHOW_H_
