#ifndef CMCFG_TOOLS_AGENT_PARSERS_H_
#define CMCFG_TOOLS_AGENT_PARSERS_H_

#include <list>
#include <memory>
#include <string>
#include <utility>

#include "tools/session.h"

namespace cmcfg_tool {

// The agent's own parsers of the texts check looks at, so that a finding
// says what the agent makes of a text rather than what a copy of its logic
// would. The agent is loaded over an empty scratch root: it reads nothing
// of the root being checked. One at a time (see AgentSession).
class AgentParsers {
 public:
  AgentParsers();
  AgentParsers(const AgentParsers&) = delete;
  AgentParsers& operator=(const AgentParsers&) = delete;

  // The keys the agent forms from a service code, as typed on the keypad
  // ("*7 2#f1F" gives "*72#f1").
  std::string DialledKeys(const std::string& code);

  // The channels the agent reads from an FXO or ISDN channel list ("1,2,5";
  // empty for "all_channels").
  std::list<unsigned short> Channels(const std::string& spec);

  // The spans, each with its time slots, the agent reads from a CAS
  // specification ("0/1-15;0/17-31").
  std::list<std::pair<unsigned short, std::list<unsigned short>>> CasSpans(const std::string& spec);

 private:
  ScratchDir root_;
  std::unique_ptr<AgentSession> session_;
};

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_AGENT_PARSERS_H_
