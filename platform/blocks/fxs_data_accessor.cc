#include "platform/blocks/fxs_data_accessor.h"

#include "platform/base/config_root.h"
#include "platform/blocks/settings_fields.h"
#include "platform/blocks/shared_instance.h"

namespace {

using Field = blocks::SettingField<FxsDataAccessor>;

const Field kFields[] = {
    {"fxs", "ring_cadence", &FxsDataAccessor::ringCadence},
    {"fxs", "ring_voltage", &FxsDataAccessor::ringVoltage},
    {"fxs", "ring_frequency", &FxsDataAccessor::ringFrequency},
    {"fxs", "flash_time_min", &FxsDataAccessor::flashTimeMin},
    {"fxs", "flash_time_max", &FxsDataAccessor::flashTimeMax},
};

}  // namespace

struct FxsDataAccessorInstance {
  static FxsDataAccessor* Make(bool createIfMissing) {
    FxsDataAccessor* fxs = nullptr;
    try {
      fxs = new FxsDataAccessor();
      fxs->known_ = blocks::FormatFields(*fxs, kFields);
      fxs->path_ = cfg::TelephonyPath("fxs.cfg");
      if (fxs->Reload() || createIfMissing) return fxs;
    } catch (...) {  // out of memory: no instance
    }
    delete fxs;
    return nullptr;
  }
  static void Destroy(FxsDataAccessor* fxs) { delete fxs; }
  static SharedInstance<FxsDataAccessor>& Shared() {
    static SharedInstance<FxsDataAccessor> shared(&Make, &Destroy);
    return shared;
  }
};

ThreadMutex& FxsDataAccessor::InstanceMutex() {
  return FxsDataAccessorInstance::Shared().values_mutex();
}

FxsDataAccessor* FxsDataAccessor::GetInstance(bool createIfMissing) {
  return FxsDataAccessorInstance::Shared().Acquire(createIfMissing);
}

void FxsDataAccessor::CloseInstance() { FxsDataAccessorInstance::Shared().Release(); }

bool FxsDataAccessor::Reload() {
  try {
    FxsDataAccessor fresh;
    if (!blocks::LoadFields(path_, kFields, &fresh, &fresh.known_).ok()) return false;
    fresh.path_ = path_;
    *this = fresh;
    return true;
  } catch (...) {
    return false;
  }
}

bool FxsDataAccessor::Save() { return blocks::SaveFields(path_, kFields, *this, &known_); }
