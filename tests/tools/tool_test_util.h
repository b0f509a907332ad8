#ifndef CMCFG_TESTS_TOOLS_TOOL_TEST_UTIL_H_
#define CMCFG_TESTS_TOOLS_TOOL_TEST_UTIL_H_

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/temp_root.h"
#include "tools/cli.h"

namespace tool_testing {

// Runs "cmcfg ARGS" as a user types it, after emptying `out` and `err`;
// returns the exit status.
inline int RunCmcfg(const std::vector<std::string>& args, std::ostringstream& out,
                    std::ostringstream& err) {
  std::vector<const char*> argv{"cmcfg"};
  for (const std::string& arg : args) argv.push_back(arg.c_str());
  out.str("");
  err.str("");
  return cmcfg_tool::RunCommandLine(static_cast<int>(argv.size()), argv.data(), out, err);
}

// Copies the bundled example into `root` (a TempRoot's path), so that
// verbs that write can run on the copy and never on the source tree.
inline void CopyExample(const std::string& root) {
  namespace fs = std::filesystem;
  fs::copy(CMCFG_EXAMPLES_DIR, root, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

}  // namespace tool_testing

#endif  // CMCFG_TESTS_TOOLS_TOOL_TEST_UTIL_H_
