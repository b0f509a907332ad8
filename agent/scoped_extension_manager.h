#ifndef CMCFG_AGENT_SCOPED_EXTENSION_MANAGER_H_
#define CMCFG_AGENT_SCOPED_EXTENSION_MANAGER_H_

#include "cmcfg/cm_agent.h"

class ExtensionManager;

// Gives an operation the agent's extension manager, or, when the agent has
// none (after Destroy), one opened on the configuration root for this call
// only. A manager opened here is put into the agent's member while the guard
// lives and deleted, with the member reset, when it goes, on every path.
class ScopedExtensionManager {
 public:
  explicit ScopedExtensionManager(CMAgent* agent);
  ~ScopedExtensionManager();
  ScopedExtensionManager(const ScopedExtensionManager&) = delete;
  ScopedExtensionManager& operator=(const ScopedExtensionManager&) = delete;

  ExtensionManager* get() const { return agent_->extensionManager; }
  ExtensionManager* operator->() const { return get(); }
  // True when the manager was opened for this call.
  bool temporary() const { return temporary_; }

 private:
  CMAgent* agent_;
  bool temporary_ = false;
};

#endif  // CMCFG_AGENT_SCOPED_EXTENSION_MANAGER_H_
