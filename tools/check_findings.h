#ifndef CMCFG_TOOLS_CHECK_FINDINGS_H_
#define CMCFG_TOOLS_CHECK_FINDINGS_H_

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace cmcfg_tool {

// One problem `check` found in a file of the root.
struct Finding {
  std::string file;      // relative to the root, e.g. "telephony/linedb"
  uint32_t line = 0;     // 1-based; 0 when it concerns the whole file
  uint32_t column = 0;   // 0-based byte offset of the caret in `text`
  bool error = false;    // error, else warning
  std::string code;      // short stable name, e.g. "unknown-codec"
  std::string message;
  std::string text;      // the offending line; "" when line is 0
};

// The findings of one run, in the order they were found.
using Findings = std::vector<Finding>;

// Writes each finding as "file:line: error|warning: message", then the
// line and a caret under the column ("file: warning: message" alone when
// the finding has no line).
void PrintFindings(const Findings& findings, std::ostream& out);
// Writes the findings as one JSON array of objects (file, line, column,
// severity, code, message), followed by a line break.
void PrintFindingsJson(const Findings& findings, std::ostream& out);
// 1 when any finding is an error, else 0.
int FindingsStatus(const Findings& findings);


// A finding about `value`, which sits at the value side of the entry on
// `line` (1-based) of `lines`; the caret goes under the first occurrence of
// `value` after the separator (the start of the value when not found).
Finding FindingAt(const std::string& file, const std::vector<std::string>& lines, uint32_t line,
                  const std::string& value, bool error, const std::string& code,
                  const std::string& message);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_FINDINGS_H_
