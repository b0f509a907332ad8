#ifndef CMCFG_TOOLS_CLI_H_
#define CMCFG_TOOLS_CLI_H_

#include <iosfwd>

namespace cmcfg_tool {

// The whole command line of "cmcfg": parses argv (argv[0] is the program),
// runs the verb and gives the exit status. Help goes to out; usage errors go
// to err with CLI11's status (100 and up).
int RunCommandLine(int argc, const char* const* argv, std::ostream& out, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CLI_H_
