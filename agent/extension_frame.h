#ifndef CMCFG_AGENT_EXTENSION_FRAME_H_
#define CMCFG_AGENT_EXTENSION_FRAME_H_

#include <memory>
#include <string>

#include "cmcfg/cm_agent.h"
#include "platform/extension/ext_property.h"
#include "platform/extension/extension_manager.h"

// The two failure lines of one operation: the stored extension is missing,
// or it has no such property. Each takes the extension's name.
struct FrameLines {
  const char* missing;
  const char* property;
};

// The lines of the usual wording, for an operation named `op` (a literal).
#define CMCFG_FRAME_LINES(op) \
  FrameLines { op ": failed to load extension %s.\n", op ": failed to load property for extension %s.\n" }

// The frame every per-extension read shares: the agent's extension manager,
// else one opened on the configuration root for this call only; the stored
// extension; its property; the property's block; the operation's failure
// lines. A manager opened here belongs to the frame, never to the agent's
// member, so two callers after Destroy cannot delete each other's manager;
// it goes with the frame, and with it every block it handed out. Frames
// nested on one thread (a loader calling the next) share the outermost
// frame's manager, so an extension is read once per load. Not thread-safe
// beyond that: it uses the agent's manager as the agent does.
class ExtensionFrame {
 public:
  ExtensionFrame(CMAgent* agent, FrameLines lines) : agent_(agent), lines_(lines) {}
  ~ExtensionFrame();
  ExtensionFrame(const ExtensionFrame&) = delete;
  ExtensionFrame& operator=(const ExtensionFrame&) = delete;

  // The agent's manager, or the frame's own (opened on first use).
  ExtensionManager* manager();
  // True when the manager was opened for this call (by this frame or an
  // enclosing one).
  bool temporary() const { return borrowed_ != nullptr || own_ != nullptr; }

  // The stored extension, or nullptr after logging the missing line.
  // preloadAll is handed to the manager.
  Extension* Find(ExtType type, const std::string& name, bool preloadAll = false);
  // The stored attendant (the system attendant's record when `system`),
  // or nullptr after logging the missing line.
  CHAttendant* FindAttendant(const std::string& name, bool system, bool preloadAll = false);

  // Loads the property whose block is Block of `stored` and returns the
  // block, or nullptr after logging the property line.
  template <typename Block>
  Block* Property(Extension* stored, const std::string& name) {
    const extdb::Property<Block>& row = extdb::PropertyOf<Block>();
    return Load(stored, name, row.mask, row.get);
  }

  // The same for a property of more than one section (the address book).
  template <typename Block>
  Block* Load(Extension* stored, const std::string& name, unsigned mask,
              Block* (Extension::*get)()) {
    stored->LoadProperty(mask);
    Block* found = (stored->*get)();
    if (found == nullptr) Log(lines_.property, name);
    return found;
  }

  // The whole read: `given` when the caller has the block, else the
  // block of the stored extension of that type and name.
  template <typename Block>
  Block* Fetch(Block* given, ExtType type, const std::string& name) {
    if (given != nullptr) return given;
    Extension* stored = Find(type, name);
    return stored ? Property<Block>(stored, name) : nullptr;
  }

  // The same for an attendant.
  template <typename Block>
  Block* FetchAttendant(Block* given, const std::string& name, bool system) {
    if (given != nullptr) return given;
    Extension* stored = FindAttendant(name, system);
    return stored ? Property<Block>(stored, name) : nullptr;
  }

  // Logs one of the operation's lines (when the agent logs); a null line
  // is an operation's way of staying silent.
  void Log(const char* line, const std::string& name);

 private:
  CMAgent* agent_;
  FrameLines lines_;
  std::unique_ptr<ExtensionManager> own_;
  ExtensionManager* borrowed_ = nullptr;  // an enclosing frame's own
};

// True when `attendant` is the agent's system attendant, whose record the
// database keeps apart from the other attendants.
inline bool IsSystemAttendant(const CMAgent& agent, const Attendant& attendant) {
  return agent.generalData.sysAttendant != nullptr &&
         agent.generalData.sysAttendant->name == attendant.name;
}

#endif  // CMCFG_AGENT_EXTENSION_FRAME_H_
