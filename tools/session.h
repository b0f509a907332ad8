#ifndef CMCFG_TOOLS_SESSION_H_
#define CMCFG_TOOLS_SESSION_H_

#include <iosfwd>
#include <string>

#include "cmcfg/cm_agent.h"

namespace cmcfg_tool {

// The root to use, always ending in "/" (the agent joins names to it
// without a separator): explicitRoot, else "ORBA_PATH", else
// "/etc/orba-conf/".
std::string ResolveRoot(const std::string& explicitRoot);
// "" when the root is a folder we can read, else why not.
std::string CheckRoot(const std::string& root);
// True when the root is usable; else false after one line on err:
// "cmcfg: cannot read the configuration root ROOT: WHY".
bool RootIsUsable(const std::string& root, std::ostream& err);

// Sets an environment variable for the object's lifetime (an empty value
// leaves it as it is) and puts the old state back afterwards.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const std::string& value);
  ~ScopedEnv();
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  const char* name_;
  std::string old_;
  bool had_ = false;
};

// An agent loaded over `root` exactly as the call manager loads it
// (construction, then Destroy), with its log in logDir ("" : the current
// directory). The records of its tables are released with the session.
class AgentSession {
 public:
  AgentSession(const std::string& root, const std::string& logDir);
  ~AgentSession();
  AgentSession(const AgentSession&) = delete;
  AgentSession& operator=(const AgentSession&) = delete;

  // The loaded agent; its tables stay valid for the session's lifetime.
  CMAgent& agent() { return agent_; }

 private:
  // Declared before the agent: the variables outlive it.
  ScopedEnv root_;
  ScopedEnv logDir_;
  CMAgent agent_;
};

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_SESSION_H_
