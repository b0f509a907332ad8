#ifndef CMCFG_PLATFORM_BLOCKS_FXS_DATA_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_FXS_DATA_ACCESSOR_H_

#include <cstdint>
#include <string>
#include <vector>

#include "platform/blocks/settings_accessor.h"

// Settings shared by every FXS port ("telephony/fxs.cfg"). Shared instance
// and thread rule of SharedAccessor, file handling of SettingsAccessor: a
// missing key or a value that does not parse keeps the default below.
class FxsDataAccessor : public SettingsAccessor<FxsDataAccessor> {
 public:
  static constexpr const char* kFileName = "fxs.cfg";

  std::vector<unsigned long> ringCadence{1000, 2500};  // ms, ring and pause alternately
  int32_t ringVoltage = 45;                            // Vrms
  int32_t ringFrequency = 25;                          // Hz
  int32_t flashTimeMin = 100;                          // ms; shorter on-hooks are ignored
  int32_t flashTimeMax = 800;                          // ms; longer on-hooks hang up

 private:
  explicit FxsDataAccessor(std::string path);
  ~FxsDataAccessor() = default;
  friend class SharedAccessor<FxsDataAccessor>;
  friend class SettingsAccessor<FxsDataAccessor>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_FXS_DATA_ACCESSOR_H_
