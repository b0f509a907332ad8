#include "cmcfg/system_records.h"

#include <cstdlib>

#include "platform/base/number_rules.h"
#include "platform/base/string_utils.h"
#include "platform/base/thread_mutex.h"
#include "platform/blocks/fxs_data_accessor.h"
#include "platform/extension/ext_params.h"
#include "platform/line/line_manager.h"

// Both are set before any dynamic initialisation: records built by other
// static objects already see the unset line.
uint32_t INACTIVE_PARTY = gUndefinedLine;
DefaultRingpattern _gDefRingPattern;

DefaultRingpattern::DefaultRingpattern() : mutex(new ThreadMutex) {}

DefaultRingpattern::~DefaultRingpattern() { delete mutex; }

void DefaultRingpattern::Init() {
  MutexLock lock(mutex);
  cadence.clear();
  if (InstanceRef<FxsDataAccessor> fxs{true}) cadence = fxs->ringCadence;
  if (cadence.size() < 2) {
    cadence.clear();
    for (const std::string& piece : StringUtils::ParseCommaLine("1000,2500", ',')) {
      cadence.push_back(cfg::CadenceValue(piece));
    }
  }
}

PasswordData& PasswordData::operator=(const ExtPersonalInfoParams& params) {
  setting = params.passwordPolicy;
  keys.clear();
  for (char c : params.password) {
    if (c >= '0' && c <= '9') {
      keys.push_back(0x100 + (c - '0'));
    } else if (c == '*') {
      keys.push_back(0x12A);
    }
  }
  return *this;
}
