#ifndef CMCFG_PLATFORM_BLOCKS_FXS_DATA_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_FXS_DATA_ACCESSOR_H_

#include <cstdint>
#include <string>
#include <vector>

#include "platform/blocks/shared_instance.h"

// Settings shared by every FXS port ("telephony/fxs.cfg"). One shared,
// reference-counted instance per process: with createIfMissing a missing or
// unreadable file gives an instance with the defaults below (never
// nullptr), without it nullptr. A missing key or a value that does not
// parse keeps the default. Threads: as GeneralSettingsAccessor.
class FxsDataAccessor {
 public:
  // Holds the shared instance's lock while in scope (as
  // GeneralSettingsAccessor::Lock, under the same rule).
  using Lock = SharedValuesLock<FxsDataAccessor>;
  static ThreadMutex& InstanceMutex();

  // The shared instance (see above); every non-null one is paired with one
  // CloseInstance, the last of which deletes it.
  static FxsDataAccessor* GetInstance(bool createIfMissing);
  static void CloseInstance();

  // Reads the file again from the defaults; false (values unchanged) when it
  // cannot be read. Under Lock when other threads may use the instance.
  bool Reload();
  // Writes the values changed since the file was read or last saved,
  // atomically and under the file's lock (as GeneralSettingsAccessor::Save).
  // Under Lock as Reload.
  bool Save();

  std::vector<unsigned long> ringCadence{1000, 2500};  // ms, ring and pause alternately
  int32_t ringVoltage = 45;                            // Vrms
  int32_t ringFrequency = 25;                          // Hz
  int32_t flashTimeMin = 100;                          // ms; shorter on-hooks are ignored
  int32_t flashTimeMax = 800;                          // ms; longer on-hooks hang up

 private:
  FxsDataAccessor() = default;
  ~FxsDataAccessor() = default;
  friend struct FxsDataAccessorInstance;
  std::string path_;
  std::vector<std::string> known_;  // value texts as last read or saved
};

#endif  // CMCFG_PLATFORM_BLOCKS_FXS_DATA_ACCESSOR_H_
