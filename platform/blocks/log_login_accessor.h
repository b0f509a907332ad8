#ifndef CMCFG_PLATFORM_BLOCKS_LOG_LOGIN_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_LOG_LOGIN_ACCESSOR_H_

#include <cstdint>
#include <string>
#include <vector>

#include "platform/blocks/shared_instance.h"

// The login logging flags ("telephony/log_login.cfg"). Shared instance as
// FxsDataAccessor, except that CloseInstance is given the instance (a
// pointer that is not the current instance is ignored). Threads: as
// GeneralSettingsAccessor (Reload, Save and reads that must agree with
// another thread's reload under Lock).
class LogLoginAccessor {
 public:
  // Holds the shared instance's lock while in scope (as
  // GeneralSettingsAccessor::Lock, under the same rule).
  using Lock = SharedValuesLock<LogLoginAccessor>;
  static ThreadMutex& InstanceMutex();

  // The shared instance, as FxsDataAccessor::GetInstance.
  static LogLoginAccessor* GetInstance(bool createIfMissing);
  // Drops one reference when `instance` is the current one; else nothing.
  static void CloseInstance(LogLoginAccessor* instance);

  // As FxsDataAccessor's; under Lock when other threads may use the
  // instance.
  bool Reload();
  bool Save();

  int32_t loginTrace = 0;  // non-zero: trace logins
  int32_t loginAudit = 0;  // non-zero: keep an audit record of logins

 private:
  LogLoginAccessor() = default;
  ~LogLoginAccessor() = default;
  friend struct LogLoginAccessorInstance;
  std::string path_;
  std::vector<std::string> known_;  // value texts as last read or saved
};

#endif  // CMCFG_PLATFORM_BLOCKS_LOG_LOGIN_ACCESSOR_H_
