#ifndef CMCFG_TOOLS_SESSION_H_
#define CMCFG_TOOLS_SESSION_H_

#include <iosfwd>
#include <memory>
#include <string>

#include "cmcfg/cm_agent.h"
#include "platform/base/file_system.h"
#include "tools/progress.h"

namespace cmcfg_tool {

// The root to use, always ending in "/" (the agent joins names to it
// without a separator): explicitRoot, else "ORBA_PATH", else
// "/etc/orba-conf/".
std::string ResolveRoot(const std::string& explicitRoot);
// "" when the root is a folder we can read that holds "telephony/", else
// why not.
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

// A private folder under $TMPDIR (else /tmp), removed with everything in
// it when the object goes; path() is "" when it could not be made.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;
  // Ends in "/" unless empty.
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// What a session may do to its root.
enum class Access {
  kWriteBack,  // as the call manager: the load writes what it always writes
  kInspect,    // the store's read-only mode for the whole session
};

// An agent loaded over `root` exactly as the call manager loads it
// (construction, then Destroy). Its log goes to logDir when given, else to
// $CMCFG_LOG_DIR when set, else to a scratch folder removed with the
// session: a run leaves no log behind unless asked. The records of its
// tables are released with the session. With Access::kInspect the store is
// read-only until the session ends. With progressTo, a progress line goes
// to it while the load runs (see LoadProgressOnTerminal). Sessions run one
// at a time (they set process environment variables).
class AgentSession {
 public:
  AgentSession(const std::string& root, const std::string& logDir,
               Access access = Access::kWriteBack, std::ostream* progressTo = nullptr);
  ~AgentSession();
  AgentSession(const AgentSession&) = delete;
  AgentSession& operator=(const AgentSession&) = delete;

  // The loaded agent; its tables stay valid for the session's lifetime.
  CMAgent& agent() { return agent_; }

 private:
  // Declared before the agent: the mode, the folder and the variables
  // outlive it.
  std::unique_ptr<cfg::ReadOnlyScope> readOnly_;
  std::unique_ptr<ScratchDir> scratchLog_;
  ScopedEnv root_;
  ScopedEnv logDir_;
  std::unique_ptr<ProgressLine> progress_;  // until the load is done
  CMAgent agent_;
};

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_SESSION_H_
