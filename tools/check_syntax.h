#ifndef CMCFG_TOOLS_CHECK_SYNTAX_H_
#define CMCFG_TOOLS_CHECK_SYNTAX_H_

#include <set>
#include <string>
#include <string_view>
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

// The settings files of the root (SettingsFiles()) that exist, parsed with
// the store's reader. Reads only, never writes. Adds to `findings`: the
// parser's diagnostics (errors) and sections that occur twice (warnings,
// the first is read).
std::vector<CheckedFile> LoadSettingsFiles(const std::string& root, Findings* findings);

// The extension files the database reads, relative to the root, by kind
// folder and name; files whose names break the naming rules are warnings
// in `findings` instead. Lists only.
std::vector<std::string> ListExtensionFiles(const std::string& root, Findings* findings);

// Appends the file `relative` to `files`, parsed as LoadSettingsFiles
// parses its files (with the same findings); false when it is missing or
// cannot be read (then nothing is appended).
bool LoadFile(const std::string& root, const std::string& relative, Findings* findings,
              std::vector<CheckedFile>* files);

// The settings files the agent reads, relative to the root, in the order
// LoadSettingsFiles reads them.
const std::vector<std::string>& SettingsFiles();

// The file `relative` among `files`, or nullptr when the root has none.
const CheckedFile* FindFile(const std::vector<CheckedFile>& files, const std::string& relative);

// A finding about `section` of `file`, the caret under the section's name.
Finding SectionFinding(const CheckedFile& file, const cfg::Section& section, bool error,
                       const std::string& code, const std::string& message);
// A finding about the key of `entry` in `file`, the caret under the key.
Finding KeyFinding(const CheckedFile& file, const cfg::Entry& entry, bool error,
                   const std::string& code, const std::string& message);

// The kind folder of an extension file ("user" for
// "telephony/extensiondb/user/101.cfg"); "" for any other file.
std::string ExtensionKind(const CheckedFile& file);

// Calls visit(section) for the first section of each name in file order:
// lookups by name read only that one.
template <typename Visit>
void ForEachFirstSection(const cfg::Document& doc, Visit visit) {
  std::set<std::string_view> seen;
  for (const cfg::Section& section : doc.sections())
    if (seen.insert(section.name).second) visit(section);
}

// True when the extension database reads a file of that name (NAME.cfg
// with a NAME that is not empty, not ".", and holds no "/", ".." or control
// character).
bool IsExtensionFileName(const std::string& fileName);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_SYNTAX_H_
