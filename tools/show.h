#ifndef CMCFG_TOOLS_SHOW_H_
#define CMCFG_TOOLS_SHOW_H_

#include <iosfwd>
#include <string>

#include <nlohmann/json.hpp>

#include "tools/session.h"

class CMAgent;

namespace cmcfg_tool {

// Options of "cmcfg show".
struct ShowOptions {
  std::string root;    // "" : "ORBA_PATH", else the built-in default
  std::string logDir;  // "" : relative logs go to the current directory
  bool json = false;
};

// The human summary of an agent that has been loaded: every extension with
// its SIP address, FXS endpoints and codec counts, the attendants, the
// general data, call records, users and tones.
void PrintSummary(const CMAgent& agent, std::ostream& out);
// The same summary as one JSON object.
nlohmann::json SummaryJson(const CMAgent& agent);

// "cmcfg show": 0 when the summary was printed, 2 (and one line on err)
// when the root is not usable.
int RunShow(const ShowOptions& options, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_SHOW_H_
