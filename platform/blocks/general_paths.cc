#include "platform/blocks/general_paths.h"

#include "platform/base/config_root.h"
#include "platform/blocks/settings_fields.h"
#include "platform/blocks/shared_instance.h"

namespace {

using Field = blocks::SettingField<GeneralPaths>;

const Field kFields[] = {
    {"paths", "external_user_cache_file", &GeneralPaths::externalUserCacheFile},
    {"paths", "reg_status_file", &GeneralPaths::regStatusFile},
    {"paths", "cdr_stated_db", &GeneralPaths::cdrStatedDb},
    {"paths", "cdr_missed_db", &GeneralPaths::cdrMissedDb},
    {"paths", "cdr_failed_db", &GeneralPaths::cdrFailedDb},
};

}  // namespace

struct GeneralPathsInstance {
  static GeneralPaths* Make(bool createIfMissing) {
    GeneralPaths* paths = nullptr;
    try {
      paths = new GeneralPaths();
      paths->known_ = blocks::FormatFields(*paths, kFields);
      paths->path_ = cfg::TelephonyPath("paths.cfg");
      if (paths->Reload() || createIfMissing) return paths;
    } catch (...) {  // out of memory: no instance
    }
    delete paths;
    return nullptr;
  }
  static void Destroy(GeneralPaths* paths) { delete paths; }
  static SharedInstance<GeneralPaths>& Shared() {
    static SharedInstance<GeneralPaths> shared(&Make, &Destroy);
    return shared;
  }
};

ThreadMutex& GeneralPaths::InstanceMutex() { return GeneralPathsInstance::Shared().values_mutex(); }

GeneralPaths* GeneralPaths::GetInstance(bool createIfMissing) {
  return GeneralPathsInstance::Shared().Acquire(createIfMissing);
}

void GeneralPaths::CloseInstance() { GeneralPathsInstance::Shared().Release(); }

bool GeneralPaths::Reload() {
  try {
    GeneralPaths fresh;
    if (!blocks::LoadFields(path_, kFields, &fresh, &fresh.known_).ok()) return false;
    fresh.path_ = path_;
    *this = fresh;
    return true;
  } catch (...) {
    return false;
  }
}

bool GeneralPaths::Save() { return blocks::SaveFields(path_, kFields, *this, &known_); }
