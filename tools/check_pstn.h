#ifndef CMCFG_TOOLS_CHECK_PSTN_H_
#define CMCFG_TOOLS_CHECK_PSTN_H_

#include <string>
#include <vector>

#include "tools/check_findings.h"
#include "tools/agent_parsers.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// What the agent makes of one channel specification that it would not read
// as written: the piece of text concerned (for the caret) and a message.
struct ChannelProblem {
  std::string piece;
  std::string message;
};

// The problems of an FXO or ISDN channel list ("1,2,5" or "all_channels")
// held by `key`: pieces that are not a channel number, with what the agent
// reads from each, and lists longer than the agent keeps, as its own parser
// (`parsers`) reads them. Empty for a well-formed list.
std::vector<ChannelProblem> ChannelListProblems(const std::string& key, const std::string& spec,
                                                AgentParsers& parsers);

// The problems of a CAS specification ("0/1-15;0/17-31" or
// "all_channels"): spans and time slots that are not numbers, groups
// without slots, slot texts that are neither a list nor one range, slots
// past the frame's last, and more spans than the agent keeps; what the
// agent reads, and its limits, come from its own parser (`parsers`).
std::vector<ChannelProblem> CasProblems(const std::string& spec, AgentParsers& parsers);

// Checks `fxo_channels`, `isdn_channels` and `cas_channels` of the
// `pstn_agent` section of every extension file. Adds warnings to `findings`.
void CheckPstnChannels(const std::vector<CheckedFile>& files, AgentParsers& parsers,
                       Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_PSTN_H_
