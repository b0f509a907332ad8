#ifndef CMCFG_TOOLS_WRITE_BACK_H_
#define CMCFG_TOOLS_WRITE_BACK_H_

// The verbs that change an extension's file as a telephone or the web
// configuration does, and have the agent take the change, so that an
// engineer can make or reproduce it. Each checks its values with the
// store's own rules before anything is loaded (kFindings and the message
// when one is refused), loads the agent over the root, makes the change
// and prints what it changed, before and after. With --dry-run the change
// is made on a scratch copy of what the extension needs and the unified
// diff of its file is printed; nothing in the root is written.
//
// Statuses: kOk done, or nothing to change (said on out); kFindings no such
// extension, a refused value, or the change could not be stored (whatever
// the agent's operation gave; why on err); kUsage a wrong operand or a root
// that is not usable.

#include <iosfwd>

#include "tools/verb.h"

namespace cmcfg_tool {

// "forward EXT on|off|toggle|clear|set NUMBER [--replace]": the any-caller
// contact's unconditional forward. on/off set its flag (SwitchForwardService
// when it differs), toggle flips it, set and clear set and remove the
// number dialled from the phone (UpdateForwardService).
int RunForward(const Invocation& invocation, std::ostream& out, std::ostream& err);

// "block EXT NUMBER [--outgoing] [--call-type T]": BlockContact.
int RunBlock(const Invocation& invocation, std::ostream& out, std::ostream& err);

// "unblock EXT NUMBER [--outgoing] [--call-type T]": switches the contact's
// blocking off in the file, then UpdateSupServices re-reads it.
int RunUnblock(const Invocation& invocation, std::ostream& out, std::ostream& err);

// "contact EXT add NAME | change ID NAME | erase ID [--call-type T]": writes
// the contact's section into the file (erase: removes it and its services),
// then UpdateContact has the agent re-read it. With --edited FILE, FILE
// replaces the extension's file instead (after passing check), and the
// operands name the contact's ID: "contact EXT add ID --edited FILE".
int RunContact(const Invocation& invocation, std::ostream& out, std::ostream& err);

// "port GATEWAY LINE [--edited FILE]": UpdateFxsData under LockBase, after
// FILE (checked first) replaced the line database. Prints each extension
// whose binding changed.
int RunPort(const Invocation& invocation, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_WRITE_BACK_H_
