// The table of verbs: what each is called, what it takes and what runs it.
#include "tools/check.h"
#include "tools/diff.h"
#include "tools/dump.h"
#include "tools/ext.h"
#include "tools/show.h"
#include "tools/verb.h"
#include "tools/write_back.h"

namespace cmcfg_tool {

const char kStatusTable[] =
    "Exit status:\n"
    "  0  done: printed, no error found, no difference, the change stored (or nothing to "
    "change)\n"
    "  1  findings or a failed operation: check found an error, diff found a difference, no "
    "such extension, a refused value, a save that failed, output that could not be written\n"
    "  2  a usage error, or a root that cannot be read or is not a configuration root\n";

const std::vector<Verb>& Verbs() {
  static const std::vector<Verb> verbs = {
      {"show", "Load the configuration and print a summary", "", 0, 0, kJsonOption, RunShow},
      {"ext", "Print everything held for one extension or attendant", "NAME", 1, 1, kJsonOption,
       RunExt},
      {"dump", "Print every loaded record as one JSON document", "", 0, 0, kJsonOption, RunDump},
      {"diff", "Print what the agent holds differently for two roots", "ROOT_A ROOT_B", 2, 2, 0,
       RunDiff},
      {"check", "Report what is wrong in the configuration files", "", 0, 0, kJsonOption, RunCheck},
      {"forward", "Set, clear or switch an extension's unconditional forward, in its file",
       "EXT on|off|toggle|clear|set NUMBER", 2, 3, kDryRunOption | kReplaceOption, RunForward},
      {"block", "Add a number to an extension's incoming or outgoing black list, in its file",
       "EXT NUMBER", 2, 2, kDryRunOption | kOutgoingOption | kCallTypeOption, RunBlock},
      {"unblock", "Take a number off an extension's incoming or outgoing black list", "EXT NUMBER",
       2, 2, kDryRunOption | kOutgoingOption | kCallTypeOption, RunUnblock},
      {"contact", "Add, change or erase an address-book contact in an extension's file",
       "EXT add NAME [NUMBER] | EXT change ID NAME | EXT erase ID", 3, 4,
       kDryRunOption | kCallTypeOption | kEditedOption, RunContact},
      {"port", "Re-bind the extensions after an FXS port was given to another one", "GATEWAY LINE",
       2, 2, kDryRunOption | kEditedOption, RunPort},
  };
  return verbs;
}

}  // namespace cmcfg_tool
