// The library's free helpers (interfaces, paths, log flags, tokens) and the
// agent's runtime database names.
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <exception>

#include "agent/agent_log.h"
#include "agent/net_interfaces.h"
#include "cmcfg/cm_agent.h"
#include "cmcfg/functions.h"
#include "platform/base/config_root.h"
#include "platform/base/file_utility.h"
#include "platform/base/smart_buffer.h"
#include "platform/blocks/general_paths.h"
#include "platform/blocks/general_settings_accessor.h"

namespace agent_internal {

int ReadInterfaceName(const char* path, std::string& name) {
  int fd = open(path, O_RDONLY | O_NONBLOCK);
  if (fd < 0) return -1;
  char buffer[512];
  ssize_t n = read(fd, buffer, sizeof buffer);
  if (n == 0) {
    name.clear();
  } else if (n > 0) {
    auto visible = [](char c) { return std::isgraph(static_cast<unsigned char>(c)) != 0; };
    ssize_t first = 0, last = n - 1;
    while (first < n && !visible(buffer[first])) ++first;
    while (last >= first && !visible(buffer[last])) --last;
    name.assign(buffer + first, buffer + last + 1);
  }
  return close(fd);
}

}  // namespace agent_internal

int GetWanIfName(std::string& name) {
  return agent_internal::ReadInterfaceName("/proc/orba/wan-if", name);
}

void GetLanIfName(std::string& name) { name = "eth0"; }

void GetPPPIfName(std::string& name) { name = "ppp0"; }

bool CorrectPath(std::string& path, bool directoryOnly) {
  FileUtility::AdjustPathForUnix(path);
  std::string dir = path;
  if (directoryOnly) {
    std::string::size_type slash = dir.rfind('/');
    if (slash != std::string::npos) dir.erase(slash);
  }
  return FileUtility::IsDirExist(dir.c_str());
}

bool FileExist(std::string& path) {
  FileUtility::AdjustPathForUnix(path);
  return FileUtility::IsFileExist(path.c_str());
}

// Both read the file as it is now. The instance may be held open by others
// (the agent's start-up) and be reloaded by other threads at the same time:
// the reload and the reads are one step under the instance's lock.
void GetLogLevel(bool* logEnabled, bool* logDetails) {
  InstanceRef<GeneralSettingsAccessor> settings(false);
  if (!settings) return;
  GeneralSettingsAccessor::Lock lock;
  settings->Reload();
  if (logEnabled) *logEnabled = settings->logEnabled != 0;
  if (logDetails) *logDetails = settings->logDetails != 0;
}

int GetNumberOfFXO() {
  InstanceRef<GeneralSettingsAccessor> settings(false);
  if (!settings) return 2;
  GeneralSettingsAccessor::Lock lock;
  settings->Reload();
  return settings->fxoPorts;
}

std::string TokenMaker(const char* prefix, int number) {
  char buffer[256];
  snprintf(buffer, sizeof buffer, "%s%u", prefix ? prefix : "", static_cast<unsigned>(number));
  return buffer;
}

bool CMAgent::IsFileName(const std::string& name) {
  return name.find('/') == std::string::npos && name.find('\\') == std::string::npos;
}

void CMAgent::GenerateUniqueString(std::string& text, bool append) {
  timeval now;
  gettimeofday(&now, nullptr);
  // Seconds in the high word, microseconds in the low one; the microseconds
  // are widened as a signed value, as the stored tokens always were.
  unsigned long long value = (static_cast<unsigned long long>(static_cast<uint32_t>(now.tv_sec)) << 32) |
                             static_cast<unsigned long long>(static_cast<long long>(now.tv_usec));
  char digits[32];
  snprintf(digits, sizeof digits, "%llu", value);
  if (append)
    text += digits;
  else
    text = digits;
}

void CMAgent::FillUserName(std::string& userName) {
  if (!userName.empty())
    userName = generalData.systemPrefix + userName;
  else
    userName = defaultUserName;
  GenerateUniqueString(userName, true);
}

namespace {

// An empty name gets its default, which is written back.
std::string NameOrDefault(GeneralPaths* paths, std::string& name, const char* fallback) {
  if (name.empty()) {
    name = fallback;
    paths->Save();
  }
  return name;
}

}  // namespace

bool CMAgent::GetRuntimeDbNames(bool createIfMissing) {
  try {
    InstanceRef<GeneralPaths> instance(createIfMissing);
    GeneralPaths* paths = instance.get();
    if (paths == nullptr) return false;
    // Names are filled in and saved on the shared instance, which another
    // thread may be using.
    GeneralPaths::Lock lock;

    std::string cache = NameOrDefault(paths, paths->externalUserCacheFile, "external_user_cache_db");
    // A bare name is replaced by the telephony folder plus an empty buffer:
    // the folder itself. Unlike the status file below; kept as it was.
    if (IsFileName(cache)) {
      SmartBuffer empty;
      cache = telephonyPath + empty.GetData();
    }
    generalData.externalUserCacheDb = cache;
    generalData.externalUserDb = cfg::TelephonyPath("externaluserdb");

    std::string status = NameOrDefault(paths, paths->regStatusFile, "reg_status_file");
    if (IsFileName(status)) status = cfg::TelephonyPath(status);
    generalData.regStatusFile = status;
    return true;
  } catch (const std::exception& e) {
    CMCFG_TRACE(this, "GetRuntimeDbNames: failed to load general paths accessor, reason - %s.\n",
                e.what());
    return false;
  }
}
