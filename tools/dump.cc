#include "tools/dump.h"

#include "tools/document.h"
#include "tools/session.h"

namespace cmcfg_tool {

int RunDump(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  const std::string root = ResolveRoot(invocation.root);
  if (!RootIsUsable(root, err)) return kUsage;
  AgentSession session(root, invocation.logDir, Access::kInspect, &err);
  WriteDocumentJson(session.agent(), root, Detail::kFull, out);
  return kOk;
}

}  // namespace cmcfg_tool
