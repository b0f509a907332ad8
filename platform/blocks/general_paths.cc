#include "platform/blocks/general_paths.h"

#include <string>
#include <utility>

#include "platform/blocks/accessor_instance.h"

namespace {

using Field = blocks::SettingField<GeneralPaths>;

const Field kFields[] = {
    {"paths", {"external_user_cache_file", &GeneralPaths::externalUserCacheFile}},
    {"paths", {"reg_status_file", &GeneralPaths::regStatusFile}},
    {"paths", {"cdr_stated_db", &GeneralPaths::cdrStatedDb}},
    {"paths", {"cdr_missed_db", &GeneralPaths::cdrMissedDb}},
    {"paths", {"cdr_failed_db", &GeneralPaths::cdrFailedDb}},
};

}  // namespace

GeneralPaths::GeneralPaths(std::string path) : SettingsAccessor(std::move(path), kFields) {}

bool GeneralPaths::Save() { return SettingsAccessor::Save(); }

template class SharedAccessor<GeneralPaths>;
