#include "tools/ext.h"

#include <ostream>

#include "cmcfg/cm_agent.h"
#include "tools/document.h"
#include "tools/model.h"
#include "tools/session.h"
#include "tools/shadow_root.h"
#include "tools/text_render.h"

namespace cmcfg_tool {

FoundRecord FindRecord(const CMAgent& agent, const std::string& name) {
  FoundRecord found;
  const Attendant* system = agent.generalData.sysAttendant;
  for (const ExtensionData* e : agent.extensionBase) {
    if (e != nullptr && e->name == name) {
      found.extension = e;
      return found;
    }
  }
  for (const Attendant* a : agent.attendants) {
    if (a != nullptr && a->name == name) {
      found.attendant = a;
      found.systemAttendant = system != nullptr && system->name == name;
      return found;
    }
  }
  if (system != nullptr && system->name == name) {
    found.attendant = system;
    found.systemAttendant = true;
  }
  return found;
}

int RunExt(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  const std::string& name = invocation.operands.at(0);
  const std::string root = ResolveRoot(invocation.root);
  if (!RootIsUsable(root, err)) return kUsage;
  // One extension needs its own file, not the whole database.
  const ShadowRoot shadow(root, {name});
  AgentSession session(shadow.path().empty() ? root : shadow.path(), invocation.logDir,
                       Access::kInspect, &err);
  const FoundRecord found = FindRecord(session.agent(), name);
  if (found.extension == nullptr && found.attendant == nullptr) {
    err << "cmcfg: no extension or attendant named \"" << name << "\" under " << root << "\n";
    return kFindings;
  }
  const Tree record = found.extension ? ExtensionTree(*found.extension)
                                      : AttendantTree(*found.attendant, found.systemAttendant);
  if (invocation.json)
    out << JsonText(record);
  else
    RenderText(record, out);
  return kOk;
}

}  // namespace cmcfg_tool
