#include "tools/session.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <vector>

namespace cmcfg_tool {
namespace {

bool EnvSet(const char* name) {
  const char* value = getenv(name);
  return value != nullptr && *value != '\0';
}

}  // namespace

std::string ResolveRoot(const std::string& explicitRoot) {
  std::string root = explicitRoot;
  if (root.empty()) root = EnvSet("ORBA_PATH") ? getenv("ORBA_PATH") : "/etc/orba-conf/";
  if (root.back() != '/') root += '/';
  return root;
}

std::string CheckRoot(const std::string& root) {
  struct stat st;
  if (stat(root.c_str(), &st) != 0) return strerror(errno);
  if (!S_ISDIR(st.st_mode)) return "not a directory";
  if (access(root.c_str(), R_OK | X_OK) != 0) return strerror(errno);
  const std::string telephony = root + "telephony";
  if (stat(telephony.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
    return "not a configuration root (no telephony/ folder)";
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

ScratchDir::ScratchDir() {
  std::string base = EnvSet("TMPDIR") ? getenv("TMPDIR") : "/tmp";
  if (base.back() != '/') base += '/';
  std::string pattern = base + "cmcfg.XXXXXX";
  std::vector<char> buffer(pattern.begin(), pattern.end());
  buffer.push_back('\0');
  if (mkdtemp(buffer.data()) != nullptr) path_ = std::string(buffer.data()) + "/";
}

ScratchDir::~ScratchDir() {
  if (path_.empty()) return;
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

AgentSession::AgentSession(const std::string& root, const std::string& logDir, Access access,
                           std::ostream* progressTo)
    : readOnly_(access == Access::kInspect ? std::make_unique<cfg::ReadOnlyScope>() : nullptr),
      scratchLog_(logDir.empty() && !EnvSet("CMCFG_LOG_DIR") ? std::make_unique<ScratchDir>()
                                                             : nullptr),
      root_("ORBA_PATH", root),
      logDir_("CMCFG_LOG_DIR", scratchLog_ ? scratchLog_->path() : logDir),
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
