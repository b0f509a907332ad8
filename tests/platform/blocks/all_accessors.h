#ifndef CMCFG_TESTS_PLATFORM_BLOCKS_ALL_ACCESSORS_H_
#define CMCFG_TESTS_PLATFORM_BLOCKS_ALL_ACCESSORS_H_

#include "platform/blocks/authorized_phones_accessor.h"
#include "platform/blocks/fxs_data_accessor.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/general_paths.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/blocks/log_login_accessor.h"
#include "platform/blocks/ring_pattern_params.h"
#include "platform/blocks/sys_message_accessor.h"
#include "platform/blocks/tos_params_accessor.h"

namespace blocks_testing {

// The number of accessors that take createIfMissing.
constexpr int kFlaggedCount = 8;

// Drops one reference of every accessor that takes the flag but
// LogLoginAccessor (whose close wants the instance); harmless for those not
// open.
inline void CloseAll() {
  GeneralSettingsAccessor::CloseInstance();
  GeneralPaths::CloseInstance();
  GatewayAccessor::CloseInstance();
  FxsDataAccessor::CloseInstance();
  TosParamsAccessor::CloseInstance();
  AuthorizedPhonesAccessor::CloseInstance();
  RingPatternParams::CloseInstance();
}

// Opens every accessor that takes the flag, closes them again and returns
// how many gave an instance.
inline int OpenAndCloseAll(bool create) {
  int opened = 0;
  opened += GeneralSettingsAccessor::GetInstance(create) != nullptr;
  opened += GeneralPaths::GetInstance(create) != nullptr;
  opened += GatewayAccessor::GetInstance(create) != nullptr;
  opened += FxsDataAccessor::GetInstance(create) != nullptr;
  opened += TosParamsAccessor::GetInstance(create) != nullptr;
  opened += AuthorizedPhonesAccessor::GetInstance(create) != nullptr;
  opened += RingPatternParams::GetInstance(create) != nullptr;
  LogLoginAccessor* login = LogLoginAccessor::GetInstance(create);
  opened += login != nullptr;
  CloseAll();
  LogLoginAccessor::CloseInstance(login);
  return opened;
}

}  // namespace blocks_testing

#endif  // CMCFG_TESTS_PLATFORM_BLOCKS_ALL_ACCESSORS_H_
