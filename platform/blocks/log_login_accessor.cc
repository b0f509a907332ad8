#include "platform/blocks/log_login_accessor.h"

#include <string>
#include <utility>

#include "platform/blocks/accessor_instance.h"

namespace {

using Field = blocks::SettingField<LogLoginAccessor>;

const Field kFields[] = {
    {"login", {"login_trace", &LogLoginAccessor::loginTrace}},
    {"login", {"login_audit", &LogLoginAccessor::loginAudit}},
};

}  // namespace

LogLoginAccessor::LogLoginAccessor(std::string path) : SettingsAccessor(std::move(path), kFields) {}

void LogLoginAccessor::CloseInstance(LogLoginAccessor* instance) { Shared().Release(instance); }

template class SharedAccessor<LogLoginAccessor>;
