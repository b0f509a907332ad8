#ifndef CMCFG_TOOLS_WRITE_BACK_H_
#define CMCFG_TOOLS_WRITE_BACK_H_

// The verbs that drive the agent's write-back operations on a root, so
// that an engineer can reproduce what a telephone or the web configuration
// made the call manager do. Each loads the agent as "show" does, calls one
// operation on the loaded record, and prints the affected data before and
// after the call as the record holds it.
//
// Exit statuses shared by all of them: 0 done (or nothing to do), 1 the
// extension is unknown, an edited file could not be put in place or the
// operation failed (one message on err), 2 the root is not usable.

#include <iosfwd>
#include <string>

#include "cmcfg/types.h"
#include "cmcfg/update_type_codes.h"

namespace cmcfg_tool {

// What every write-back verb is given.
struct TargetOptions {
  std::string name;    // the extension, looked up in extensionBase
  std::string root;    // "" : "ORBA_PATH", else the built-in default
  std::string logDir;  // "" : relative logs go to the current directory
};

enum class ForwardAction { kOn, kOff, kToggle };

// "cmcfg forward EXT on NUMBER [--replace] | off | toggle".
struct ForwardOptions : TargetOptions {
  ForwardAction action = ForwardAction::kToggle;
  std::string number;    // kOn only
  bool replace = false;  // kOn only
};

// "cmcfg block EXT NUMBER --incoming|--outgoing [--call-type T]".
struct BlockOptions : TargetOptions {
  std::string number;
  bool incoming = true;  // false: the outgoing black list
  CallType callType = kCallNumber;
};

// "cmcfg contact EXT add|change|erase IDS".
struct ContactOptions : TargetOptions {
  UpdateTypeCodes::UpdateTypeMode mode = UpdateTypeCodes::kModeAdd;
  std::string ids;  // comma-separated contact identifiers, handed over as typed
  // "" or a file put in place of the extension's file after the load and
  // before the call, as the web configuration saves it.
  std::string edited;
};

// "cmcfg port GATEWAY LINE".
struct PortOptions {
  std::string root;
  std::string logDir;
  unsigned long gatewayId = 0;
  unsigned long lineId = 0;
  // "" or a file put in place of telephony/linedb after the load and
  // before the call.
  std::string edited;
};

// on: UpdateForwardService(ext, number, true, replace); off:
// UpdateForwardService(ext, "", false, false); toggle: SwitchForwardService.
// Prints the any-caller contact's unconditional forward (flag, text,
// destinations) before and after. 1 when the operation gives false.
int RunForward(const ForwardOptions& options, std::ostream& out, std::ostream& err);

// BlockContact. Prints the contact's blocking before and after; "already
// blocked" (status 0) when nothing was stored; 1 on the operation's failure.
int RunBlock(const BlockOptions& options, std::ostream& out, std::ostream& err);

// UpdateContact, after putting options.edited in place when given (a load
// already holds what the files say, so only an edit made after it shows
// in the book). Prints the address book (name, call type, id) before and
// after; 1 when the operation stops at an unknown identifier (the message
// names it and which identifiers were applied) or cannot read the file.
int RunContact(const ContactOptions& options, std::ostream& out, std::ostream& err);

// UpdateFxsData under LockBase, after putting options.edited in place of
// the line database when given. Prints each loaded extension whose local
// binding changed, before and after; 1 (after printing any change) when the
// operation gives false.
int RunPort(const PortOptions& options, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_WRITE_BACK_H_
