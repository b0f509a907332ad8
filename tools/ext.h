#ifndef CMCFG_TOOLS_EXT_H_
#define CMCFG_TOOLS_EXT_H_

#include <iosfwd>
#include <string>

#include "tools/verb.h"

class Attendant;
class CMAgent;
class ExtensionData;

namespace cmcfg_tool {

// What a name stands for in a loaded agent; both null when nothing.
struct FoundRecord {
  const ExtensionData* extension = nullptr;
  const Attendant* attendant = nullptr;
  bool systemAttendant = false;  // the attendant is the system attendant
};

// Looks the name up as the call manager would: the extension table first,
// then the attendants, then the system attendant.
FoundRecord FindRecord(const CMAgent& agent, const std::string& name);

// "cmcfg ext NAME [--json]": the record's tree (ExtensionTree or
// AttendantTree) as text or JSON, loaded from a ShadowRoot that holds only
// NAME's files. kOk; kFindings (one line on err) when the name is neither
// an extension nor an attendant; kUsage when the root is not usable.
int RunExt(const Invocation& invocation, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_EXT_H_
