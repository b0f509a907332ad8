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

// What a session may do to its root.
enum class Access {
  kWriteBack,  // as the call manager: the load writes what it always writes
  kInspect,    // the store's read-only mode for the whole session
};

// True when the folder `dir` is `root` or below it (both resolved through
// symbolic links); false when either cannot be resolved.
bool IsInside(const std::string& dir, const std::string& root);

// The log folder of an inspection of `root`: logDir when given; else ""
// (meaning $CMCFG_LOG_DIR, else the current directory) unless the log would
// then land in the root, that is $CMCFG_LOG_DIR is unset and the current
// directory is inside the root: then $TMPDIR, else "/tmp/".
std::string InspectionLogDir(const std::string& root, const std::string& logDir);

// An agent loaded over `root` exactly as the call manager loads it
// (construction, then Destroy), with its log in logDir ("" : $CMCFG_LOG_DIR,
// else the current directory). The records of its tables are released with
// the session. With Access::kInspect the store is read-only until the
// session ends (nothing is written into the root; what the agent would
// have saved it still holds) and the log folder is InspectionLogDir's.
// With progressTo, a progress line goes to it while the load runs (see
// LoadProgressOnTerminal). Sessions run one at a time (they set process
// environment variables).
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
  // Declared before the agent: the mode and the variables outlive it.
  std::unique_ptr<cfg::ReadOnlyScope> readOnly_;
  ScopedEnv root_;
  ScopedEnv logDir_;
  std::unique_ptr<ProgressLine> progress_;  // until the load is done
  CMAgent agent_;
};

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_SESSION_H_
