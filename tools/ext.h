#ifndef CMCFG_TOOLS_EXT_H_
#define CMCFG_TOOLS_EXT_H_

#include <iosfwd>
#include <nlohmann/json.hpp>
#include <string>

class Attendant;
class CMAgent;
class ExtensionData;

namespace cmcfg_tool {

// Options of "cmcfg ext NAME".
struct ExtOptions {
  std::string name;    // the extension or attendant
  std::string root;    // "" : "ORBA_PATH", else the built-in default
  std::string logDir;  // "" : relative logs go to the current directory
  bool json = false;
};

// What a name stands for in a loaded agent; both null when nothing.
struct FoundRecord {
  const ExtensionData* extension = nullptr;
  const Attendant* attendant = nullptr;
  bool systemAttendant = false;  // the attendant is the system attendant
};

// Looks the name up as the call manager would: the extension table first,
// then the attendants, then the system attendant.
FoundRecord FindRecord(const CMAgent& agent, const std::string& name);

// Everything loaded for one extension: SIP, personal data, services and
// time-outs, line settings, the four media lists, functional table, speed
// dial, address book in its stored order, PSTN channels, access list and
// group members. Passwords are never printed, only whether one is set.
void PrintExtension(const ExtensionData& extension, std::ostream& out);
nlohmann::json ExtensionJson(const ExtensionData& extension);

// Everything loaded for one attendant console.
void PrintAttendant(const Attendant& attendant, bool systemAttendant, std::ostream& out);
nlohmann::json AttendantJson(const Attendant& attendant, bool systemAttendant);

// "cmcfg ext": 0 when printed; 1 (one line on err) when the name is neither
// an extension nor an attendant; 2 (one line on err) when the root is not
// usable.
int RunExt(const ExtOptions& options, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_EXT_H_
