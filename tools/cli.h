#ifndef CMCFG_TOOLS_CLI_H_
#define CMCFG_TOOLS_CLI_H_

#include <iosfwd>
#include <string>
#include <vector>

namespace cmcfg_tool {

// The whole command line of "cmcfg": parses argv (argv[0] is the program),
// runs the verb and gives the exit status (tools/verb.h: 0, 1 or 2). Help
// and --version go to out (status 0); a usage error goes to err, with the
// nearest verb or option when one is near (status 2).
int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

// Every verb, option group and option of the command line that has no help
// text, as "VERB" or "VERB OPTION" ("" for the tool itself); empty when
// everything is described. Builds the command line afresh; changes nothing.
std::vector<std::string> UndescribedParts();

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CLI_H_
