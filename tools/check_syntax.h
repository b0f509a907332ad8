#ifndef CMCFG_TOOLS_CHECK_SYNTAX_H_
#define CMCFG_TOOLS_CHECK_SYNTAX_H_

#include <string>
#include <vector>

#include "platform/base/document.h"
#include "tools/check_findings.h"

namespace cmcfg_tool {

// One file of the root as the agent would read it.
struct CheckedFile {
  std::string relative;            // relative to the root
  cfg::Document doc;               // parsed with the store's reader
  std::vector<std::string> lines;  // the raw lines, for quoting
};

// The files of the root the agent reads, under kind folders for extension
// files: the settings files, the line database and the tone file that
// exist, then "telephony/extensiondb/system.cfg" and every extension file
// whose name the extension database accepts. Reads only, never writes.
// Adds to `findings`: the parser's diagnostics (errors), sections that
// occur twice (warnings, the first is read), and extension files whose
// names break the naming rules (warnings; such files are not returned).
std::vector<CheckedFile> LoadRootFiles(const std::string& root, Findings* findings);

// True when the extension database reads a file of that name (NAME.cfg
// with a NAME that is not empty, not ".", and holds no "/", ".." or control
// character).
bool IsExtensionFileName(const std::string& fileName);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_SYNTAX_H_
