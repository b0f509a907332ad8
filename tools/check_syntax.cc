#include "tools/check_syntax.h"

#include <algorithm>
#include <map>
#include <system_error>

#include "platform/base/document_store.h"
#include "platform/extension/extension_rep.h"
#include "tools/root_files.h"

namespace cmcfg_tool {
namespace {


// Settings files read by the agent or its accessors, relative to the root.
const std::vector<std::string> kSettingsFiles = {
    "telephony/general.cfg",    "telephony/paths.cfg",       "telephony/fxs.cfg",
    "telephony/log_login.cfg",  "telephony/gateways.cfg",    "telephony/tos.cfg",
    "telephony/authorized_phones.cfg", "telephony/ringpatterns.cfg",
    "telephony/sysmessages.cfg", "telephony/fax.cfg",        "telephony/dialplan.cfg",
    "telephony/linedb",         "telephony/regional/tonetypes.cfg",
    "telephony/extensiondb/system.cfg",
};

// Loads one file; a missing one is not a finding (the reader's defaults
// apply), nor is one that cannot be read here.
bool LoadOne(const std::string& root, const std::string& relative, Findings* findings,
             std::vector<CheckedFile>* files) {
  CheckedFile file;
  file.relative = relative;
  if (!cfg::LoadDocument(root + relative, &file.doc).ok()) return false;
  file.lines = ReadLines(root + relative);
  for (const cfg::Diagnostic& d : file.doc.diagnostics()) {
    Finding f;
    f.file = relative;
    f.line = d.line;
    f.column = d.column;
    f.error = true;
    f.code = "syntax";
    f.message = d.message;
    f.text = d.text;
    findings->push_back(std::move(f));
  }
  std::map<std::string_view, uint32_t> firstLine;
  for (const cfg::Section& section : file.doc.sections()) {
    auto inserted = firstLine.emplace(section.name, section.line);
    if (inserted.second) continue;
    findings->push_back(SectionFinding(
        file, section, false, "duplicate-section",
        "duplicate section \"" + std::string(section.name) + "\"; the one at line " +
            std::to_string(inserted.first->second) + " is read"));
  }
  files->push_back(std::move(file));
  return true;
}

}  // namespace

namespace {

// A finding on `line` of `file` with the caret under the first `needle`.
Finding LineFinding(const CheckedFile& file, uint32_t line, std::string_view needle, bool error,
                    const std::string& code, const std::string& message) {
  Finding f;
  f.file = file.relative;
  f.line = line;
  f.error = error;
  f.code = code;
  f.message = message;
  if (line >= 1 && line <= file.lines.size()) {
    f.text = file.lines[line - 1];
    const size_t at = f.text.find(needle);
    f.column = static_cast<uint32_t>(at == std::string::npos ? 0 : at);
  }
  return f;
}

}  // namespace

Finding SectionFinding(const CheckedFile& file, const cfg::Section& section, bool error,
                       const std::string& code, const std::string& message) {
  return LineFinding(file, section.line, section.name, error, code, message);
}

Finding KeyFinding(const CheckedFile& file, const cfg::Entry& entry, bool error,
                   const std::string& code, const std::string& message) {
  return LineFinding(file, entry.line, entry.key, error, code, message);
}

const std::vector<std::string>& SettingsFiles() { return kSettingsFiles; }

const CheckedFile* FindFile(const std::vector<CheckedFile>& files, const std::string& relative) {
  for (const CheckedFile& file : files)
    if (file.relative == relative) return &file;
  return nullptr;
}

std::string ExtensionKind(const CheckedFile& file) {
  const std::string db = "telephony/extensiondb/";
  if (file.relative.compare(0, db.size(), db) != 0) return "";
  const size_t slash = file.relative.find('/', db.size());
  if (slash == std::string::npos) return "";
  return file.relative.substr(db.size(), slash - db.size());
}

bool IsExtensionFileName(const std::string& fileName) {
  const std::string suffix = ".cfg";
  if (fileName.size() < suffix.size() ||
      fileName.compare(fileName.size() - suffix.size(), suffix.size(), suffix) != 0)
    return false;
  return extdb::IsValidName(fileName.substr(0, fileName.size() - suffix.size()));
}

std::vector<CheckedFile> LoadSettingsFiles(const std::string& root, Findings* findings) {
  std::vector<CheckedFile> files;
  for (const std::string& relative : kSettingsFiles) LoadOne(root, relative, findings, &files);
  return files;
}

std::vector<std::string> ListExtensionFiles(const std::string& root, Findings* findings) {
  std::vector<std::string> files;
  const std::string db = "telephony/extensiondb/";
  for (const std::string& kind : EntriesOf(root + db, true)) {
    const std::string folder = db + kind + "/";
    for (const std::string& name : EntriesOf(root + folder, false)) {
      const bool cfgSuffix = name.size() >= 4 && name.compare(name.size() - 4, 4, ".cfg") == 0;
      // Locks, temporary files of a save and other names are skipped on
      // purpose by the database; only a .cfg file it refuses is a surprise.
      if (!cfgSuffix) continue;
      if (!IsExtensionFileName(name)) {
        Finding f;
        f.file = folder + name;
        f.code = "bad-file-name";
        f.message = "the file name breaks the extension naming rules; the file is ignored";
        findings->push_back(std::move(f));
        continue;
      }
      files.push_back(folder + name);
    }
  }
  return files;
}

bool LoadFile(const std::string& root, const std::string& relative, Findings* findings,
              std::vector<CheckedFile>* files) {
  return LoadOne(root, relative, findings, files);
}

}  // namespace cmcfg_tool
