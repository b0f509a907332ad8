#include "agent/extension_frame.h"

#include "agent/agent_log.h"
#include "platform/base/config_root.h"

namespace {

// The outermost frame on this thread that opened a manager of its own.
thread_local ExtensionFrame* t_opener = nullptr;

}  // namespace

ExtensionFrame::~ExtensionFrame() {
  if (t_opener == this) t_opener = nullptr;
}

ExtensionManager* ExtensionFrame::manager() {
  if (agent_->extensionManager != nullptr) return agent_->extensionManager;
  if (own_ != nullptr) return own_.get();
  if (borrowed_ != nullptr) return borrowed_;
  if (t_opener != nullptr && t_opener->agent_ == agent_) return borrowed_ = t_opener->own_.get();
  own_.reset(new ExtensionManager(cfg::TelephonyPath("extensiondb"), false));
  if (t_opener == nullptr) t_opener = this;
  return own_.get();
}

Extension* ExtensionFrame::Find(ExtType type, const std::string& name, bool preloadAll) {
  Extension* stored = manager()->GetExtension(type, name, preloadAll);
  if (stored == nullptr) Log(lines_.missing, name);
  return stored;
}

CHAttendant* ExtensionFrame::FindAttendant(const std::string& name, bool system,
                                           bool preloadAll) {
  CHAttendant* stored = system ? manager()->GetSystemExtension(preloadAll)
                               : manager()->GetAttendant(name, preloadAll);
  if (stored == nullptr) Log(lines_.missing, name);
  return stored;
}

void ExtensionFrame::Log(const char* line, const std::string& name) {
  if (line != nullptr) CMCFG_TRACE(agent_, line, name.c_str());
}
