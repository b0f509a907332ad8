// The media agent's configuration facade.
#include "cmcfg/media_agent_config.h"

#include <cstdint>

#include "platform/base/config_root.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/line/line_manager.h"

namespace {

void UnsetManager(LineManager** held, int* owned) {
  if (*owned && *held != nullptr) delete *held;
  *owned = 0;
  *held = nullptr;
}

// Shared by the FXS and FXO setters: hold `given` (not owned) or open an
// owned manager of `type` when nothing is held.
void SetManager(LineManager* given, LineManagerBase::LineMngType type, LineManager** held,
                int* owned) {
  if (given != nullptr) {
    // Handing back the held manager changes nothing; unsetting first would
    // delete it under the caller.
    if (given == *held) return;
    UnsetManager(held, owned);
    *held = given;
    return;
  }
  if (*held != nullptr) return;
  *held = new LineManager(type, cfg::TelephonyPath("linedb"), true);
  *owned = 1;
}

// One interface count, read from the file as it is now.
unsigned ReadCount(uint32_t GeneralSettingsAccessor::*field) {
  InstanceRef<GeneralSettingsAccessor> settings(false);
  // The media agent always drives at least one interface, so no settings
  // means one rather than none.
  if (!settings) return 1;
  // Another thread may reload the shared instance too: the reload and the
  // read are one step.
  GeneralSettingsAccessor::Lock lock;
  settings->Reload();  // the shared instance may predate the last change
  return settings.get()->*field;
}

}  // namespace

MediaAgentConfig::~MediaAgentConfig() {
  UnsetFxsLineManager();
  UnsetFxoLineManager();
  UnsetGatewayAccessor();
}

void MediaAgentConfig::SetFxsLineManager(LineManager* manager) {
  SetManager(manager, LineManagerBase::kFxsLines, &fxsLineManager, &ownsFxsLineManager);
}

void MediaAgentConfig::SetFxoLineManager(LineManager* manager) {
  SetManager(manager, LineManagerBase::kFxoLines, &fxoLineManager, &ownsFxoLineManager);
}

void MediaAgentConfig::UnsetFxsLineManager() { UnsetManager(&fxsLineManager, &ownsFxsLineManager); }

void MediaAgentConfig::UnsetFxoLineManager() { UnsetManager(&fxoLineManager, &ownsFxoLineManager); }

void MediaAgentConfig::SetGatewayAccessor(GatewayAccessor* accessor) {
  if (accessor != nullptr) {
    if (accessor == gatewayAccessor) return;  // as for the managers
    UnsetGatewayAccessor();
    gatewayAccessor = accessor;
    ownsGatewayAccessor = 0;
    return;
  }
  if (gatewayAccessor != nullptr) return;
  gatewayAccessor = GatewayAccessor::GetInstance(true);
  ownsGatewayAccessor = 1;
}

void MediaAgentConfig::UnsetGatewayAccessor() {
  if (ownsGatewayAccessor && gatewayAccessor != nullptr) GatewayAccessor::CloseInstance();
  ownsGatewayAccessor = 0;
  gatewayAccessor = nullptr;
}

unsigned MediaAgentConfig::GetNumOfIsdn() const {
  return ReadCount(&GeneralSettingsAccessor::isdnInterfaces);
}

unsigned MediaAgentConfig::GetNumOfE1T1() const {
  return ReadCount(&GeneralSettingsAccessor::e1t1Interfaces);
}
