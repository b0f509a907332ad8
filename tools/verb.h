#ifndef CMCFG_TOOLS_VERB_H_
#define CMCFG_TOOLS_VERB_H_

// What the command line hands a verb, and the table of verbs it offers.

#include <iosfwd>
#include <string>
#include <vector>

namespace cmcfg_tool {

// Everything given on one command line; each verb reads what it takes.
struct Invocation {
  std::string root;                   // --root ("" : $ORBA_PATH, else /etc/orba-conf/)
  std::string logDir;                 // --log-dir ("" : no log kept, unless $CMCFG_LOG_DIR)
  bool json = false;                  // --json
  bool dryRun = false;                // --dry-run: print what would be written, write nothing
  std::vector<std::string> operands;  // the words after the verb, as typed
  bool replace = false;               // forward set --replace
  bool outgoing = false;              // block/unblock --outgoing
  std::string callType = "number";    // block --call-type
  std::string edited;                 // --edited FILE
};

// The exit statuses every verb keeps to.
enum Status { kOk = 0, kFindings = 1, kUsage = 2 };

// The options a verb takes beyond --root and --log-dir.
enum VerbOption : unsigned {
  kJsonOption = 1,
  kDryRunOption = 2,
  kReplaceOption = 4,
  kOutgoingOption = 8,
  kCallTypeOption = 16,
  kEditedOption = 32,
};

// One verb of the tool.
struct Verb {
  const char* name;
  const char* summary;   // one line, for the list of verbs
  const char* operands;  // as the usage line shows them: "NAME", "ROOT_A ROOT_B"
  size_t minOperands;
  size_t maxOperands;
  unsigned options;  // VerbOption bits
  // The exit status; messages on err. A usage error found by the verb
  // (a wrong operand) is kUsage.
  int (*run)(const Invocation& invocation, std::ostream& out, std::ostream& err);
};

// Every verb, in the order --help lists them.
const std::vector<Verb>& Verbs();

// The exit statuses as --help and the manual pages give them.
extern const char kStatusTable[];

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_VERB_H_
