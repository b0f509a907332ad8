#ifndef CMCFG_PLATFORM_BLOCKS_LOG_LOGIN_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_LOG_LOGIN_ACCESSOR_H_

#include <cstdint>
#include <string>

#include "platform/blocks/settings_accessor.h"

// The login logging flags ("telephony/log_login.cfg"). Shared instance,
// thread rule and file handling as FxsDataAccessor, except that
// CloseInstance is given the instance.
class LogLoginAccessor : public SettingsAccessor<LogLoginAccessor> {
 public:
  static constexpr const char* kFileName = "log_login.cfg";

  // Drops one reference when `instance` is the current one; else nothing
  // (a stale or null pointer is ignored).
  static void CloseInstance(LogLoginAccessor* instance);

  int32_t loginTrace = 0;  // non-zero: trace logins
  int32_t loginAudit = 0;  // non-zero: keep an audit record of logins

 private:
  explicit LogLoginAccessor(std::string path);
  ~LogLoginAccessor() = default;
  friend class SharedAccessor<LogLoginAccessor>;
  friend class SettingsAccessor<LogLoginAccessor>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_LOG_LOGIN_ACCESSOR_H_
