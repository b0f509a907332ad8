#include "platform/blocks/log_login_accessor.h"

#include "platform/base/config_root.h"
#include "platform/blocks/settings_fields.h"
#include "platform/blocks/shared_instance.h"

namespace {

using Field = blocks::SettingField<LogLoginAccessor>;

const Field kFields[] = {
    {"login", "login_trace", &LogLoginAccessor::loginTrace},
    {"login", "login_audit", &LogLoginAccessor::loginAudit},
};

}  // namespace

struct LogLoginAccessorInstance {
  static LogLoginAccessor* Make(bool createIfMissing) {
    LogLoginAccessor* login = nullptr;
    try {
      login = new LogLoginAccessor();
      login->known_ = blocks::FormatFields(*login, kFields);
      login->path_ = cfg::TelephonyPath("log_login.cfg");
      if (login->Reload() || createIfMissing) return login;
    } catch (...) {  // out of memory: no instance
    }
    delete login;
    return nullptr;
  }
  static void Destroy(LogLoginAccessor* login) { delete login; }
  static SharedInstance<LogLoginAccessor>& Shared() {
    static SharedInstance<LogLoginAccessor> shared(&Make, &Destroy);
    return shared;
  }
};

ThreadMutex& LogLoginAccessor::InstanceMutex() {
  return LogLoginAccessorInstance::Shared().values_mutex();
}

LogLoginAccessor* LogLoginAccessor::GetInstance(bool createIfMissing) {
  return LogLoginAccessorInstance::Shared().Acquire(createIfMissing);
}

void LogLoginAccessor::CloseInstance(LogLoginAccessor* instance) {
  LogLoginAccessorInstance::Shared().Release(instance);
}

bool LogLoginAccessor::Reload() {
  try {
    LogLoginAccessor fresh;
    if (!blocks::LoadFields(path_, kFields, &fresh, &fresh.known_).ok()) return false;
    fresh.path_ = path_;
    *this = fresh;
    return true;
  } catch (...) {
    return false;
  }
}

bool LogLoginAccessor::Save() { return blocks::SaveFields(path_, kFields, *this, &known_); }
