#ifndef CMCFG_TESTS_TOOLS_TOOL_TEST_UTIL_H_
#define CMCFG_TESTS_TOOLS_TOOL_TEST_UTIL_H_

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/temp_root.h"
#include "tools/check_syntax.h"
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

// The bundled example configuration of the source tree.
inline std::string Examples() { return CMCFG_EXAMPLES_DIR; }

// Copies the bundled example into `root` (a TempRoot's path), so that
// verbs that write can run on the copy and never on the source tree.
inline void CopyExample(const std::string& root) {
  namespace fs = std::filesystem;
  fs::copy(Examples(), root, fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

// Makes `root` a configuration root whose settings files are all there and
// empty (the readers' defaults), so that a check of it reports only what a
// test writes.
inline void EmptySettings(const testing_support::TempRoot& root) {
  for (const std::string& relative : cmcfg_tool::SettingsFiles()) root.Write(relative, "");
}

inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// The value of the row "  LABEL   value" that follows the heading line
// starting with `heading`, before the next heading (a line that does not
// start with a blank); "<none>" when there is no such row.
inline std::string Value(const std::string& text, const std::string& heading,
                         const std::string& label) {
  bool inside = false;
  for (const std::string& line : Lines(text)) {
    if (!line.empty() && line[0] != ' ') {
      inside = line.compare(0, heading.size(), heading) == 0;
      continue;
    }
    if (!inside || line.compare(0, label.size() + 3, "  " + label + " ") != 0) continue;
    size_t start = line.find_first_not_of(' ', label.size() + 2);
    return start == std::string::npos ? "" : line.substr(start);
  }
  return "<none>";
}

// The lines from the heading starting with `heading` up to the next
// heading, the heading excluded.
inline std::vector<std::string> Block(const std::string& text, const std::string& heading) {
  std::vector<std::string> block;
  bool inside = false;
  for (const std::string& line : Lines(text)) {
    if (!line.empty() && line[0] != ' ') {
      inside = line.compare(0, heading.size(), heading) == 0;
      continue;
    }
    if (inside) block.push_back(line);
  }
  return block;
}

// The failure lines of an agent log: what a loader writes when it cannot
// read what it was asked for.
inline std::vector<std::string> FailureLines(const std::string& log) {
  std::vector<std::string> failures;
  for (const std::string& line : Lines(log))
    if (line.find("failed to") != std::string::npos || line.find("missing") != std::string::npos ||
        line.find("wrong type") != std::string::npos)
      failures.push_back(line);
  return failures;
}

}  // namespace tool_testing

#endif  // CMCFG_TESTS_TOOLS_TOOL_TEST_UTIL_H_
