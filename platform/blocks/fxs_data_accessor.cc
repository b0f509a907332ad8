#include "platform/blocks/fxs_data_accessor.h"

#include <string>
#include <utility>

#include "platform/blocks/accessor_instance.h"

namespace {

using Field = blocks::SettingField<FxsDataAccessor>;

const Field kFields[] = {
    {"fxs", {"ring_cadence", &FxsDataAccessor::ringCadence}},
    {"fxs", {"ring_voltage", &FxsDataAccessor::ringVoltage}},
    {"fxs", {"ring_frequency", &FxsDataAccessor::ringFrequency}},
    {"fxs", {"flash_time_min", &FxsDataAccessor::flashTimeMin}},
    {"fxs", {"flash_time_max", &FxsDataAccessor::flashTimeMax}},
};

}  // namespace

FxsDataAccessor::FxsDataAccessor(std::string path) : SettingsAccessor(std::move(path), kFields) {}

template class SharedAccessor<FxsDataAccessor>;
