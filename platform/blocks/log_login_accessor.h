#ifndef CMCFG_PLATFORM_BLOCKS_LOG_LOGIN_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_LOG_LOGIN_ACCESSOR_H_

#include <cstdint>
#include <string>
#include <vector>

// The login logging flags ("telephony/log_login.cfg"). Shared instance as
// FxsDataAccessor, except that CloseInstance is given the instance (a
// pointer that is not the current instance is ignored).
class LogLoginAccessor {
 public:
  static LogLoginAccessor* GetInstance(bool createIfMissing);
  static void CloseInstance(LogLoginAccessor* instance);

  // As FxsDataAccessor's.
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
