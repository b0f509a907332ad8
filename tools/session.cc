#include "tools/session.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ostream>

namespace cmcfg_tool {

std::string ResolveRoot(const std::string& explicitRoot) {
  std::string root = explicitRoot;
  if (root.empty()) {
    const char* env = getenv("ORBA_PATH");
    root = env && *env ? env : "/etc/orba-conf/";
  }
  if (root.back() != '/') root += '/';
  return root;
}

std::string CheckRoot(const std::string& root) {
  struct stat st;
  if (stat(root.c_str(), &st) != 0) return strerror(errno);
  if (!S_ISDIR(st.st_mode)) return "not a directory";
  if (access(root.c_str(), R_OK | X_OK) != 0) return strerror(errno);
  return "";
}

bool RootIsUsable(const std::string& root, std::ostream& err) {
  const std::string problem = CheckRoot(root);
  if (problem.empty()) return true;
  err << "cmcfg: cannot read the configuration root " << root << ": " << problem << "\n";
  return false;
}

ScopedEnv::ScopedEnv(const char* name, const std::string& value) : name_(name) {
  if (const char* old = getenv(name)) old_ = old, had_ = true;
  if (!value.empty()) setenv(name, value.c_str(), 1);
}

ScopedEnv::~ScopedEnv() {
  if (had_)
    setenv(name_, old_.c_str(), 1);
  else
    unsetenv(name_);
}

bool IsInside(const std::string& dir, const std::string& root) {
  char* resolvedDir = realpath(dir.c_str(), nullptr);
  char* resolvedRoot = realpath(root.c_str(), nullptr);
  bool inside = false;
  if (resolvedDir != nullptr && resolvedRoot != nullptr) {
    const std::string d = resolvedDir, r = resolvedRoot;
    inside = r == "/" || d == r || d.compare(0, r.size() + 1, r + "/") == 0;
  }
  free(resolvedDir);
  free(resolvedRoot);
  return inside;
}

std::string InspectionLogDir(const std::string& root, const std::string& logDir) {
  if (!logDir.empty()) return logDir;  // asked for: the user's choice
  const char* envDir = getenv("CMCFG_LOG_DIR");
  if (envDir != nullptr && *envDir != '\0') return "";
  if (!IsInside(".", root)) return "";
  // Looking must not leave a log in what is looked at.
  const char* tmp = getenv("TMPDIR");
  std::string dir = tmp != nullptr && *tmp != '\0' ? tmp : "/tmp";
  if (dir.back() != '/') dir += '/';
  return dir;
}

AgentSession::AgentSession(const std::string& root, const std::string& logDir, Access access,
                           std::ostream* progressTo)
    : readOnly_(access == Access::kInspect ? std::make_unique<cfg::ReadOnlyScope>() : nullptr),
      root_("ORBA_PATH", root),
      logDir_("CMCFG_LOG_DIR",
              access == Access::kInspect ? InspectionLogDir(root, logDir) : logDir),
      progress_(progressTo ? LoadProgressOnTerminal(root, *progressTo) : nullptr) {
  progress_.reset();
  // The call manager drops the load-time managers at once; so do we, so
  // that what we print is what it would hold.
  agent_.Destroy();
}

AgentSession::~AgentSession() {
  // The agent leaves its records to its caller.
  for (size_t i = 0; i < agent_.extensionBase.size(); ++i) agent_.EraseExtension(i, true, false);
  while (!agent_.attendants.empty()) agent_.EraseAttendant(agent_.attendants.size() - 1);
}

}  // namespace cmcfg_tool
