#include "agent/scoped_extension_manager.h"

#include "platform/base/config_root.h"
#include "platform/extension/extension_manager.h"

ScopedExtensionManager::ScopedExtensionManager(CMAgent* agent) : agent_(agent) {
  if (agent_->extensionManager == nullptr) {
    agent_->extensionManager = new ExtensionManager(cfg::TelephonyPath("extensiondb"), false);
    temporary_ = true;
  }
}

ScopedExtensionManager::~ScopedExtensionManager() {
  if (temporary_) {
    delete agent_->extensionManager;
    agent_->extensionManager = nullptr;
  }
}
