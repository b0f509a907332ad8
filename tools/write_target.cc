#include "tools/write_target.h"

#include <sstream>

#include "platform/base/file_lock.h"
#include "platform/base/file_system.h"
#include "platform/extension/extension_rep.h"
#include "tools/check.h"
#include "tools/ext.h"
#include "tools/root_files.h"
#include "tools/unified_diff.h"

namespace cmcfg_tool {

WriteRoot::WriteRoot(const std::string& root, const std::vector<std::string>& names, bool dryRun)
    : root_(root) {
  if (!dryRun) {
    path_ = root;
    return;
  }
  shadow_ = std::make_unique<ShadowRoot>(root, names, true);
  path_ = shadow_->path();
}

void WriteRoot::PrintDiff(const std::string& relative, std::ostream& out) const {
  const std::string diff =
      UnifiedDiff(relative, FileBytes(root_ + relative), FileBytes(path_ + relative));
  out << (diff.empty() ? "nothing would be written\n" : diff);
}

std::string ExtensionFileOf(const ExtensionData& extension) {
  return std::string("telephony/extensiondb/") + extdb::KindFolder(extension.type) + "/" +
         extension.name + ".cfg";
}

bool PassesCheck(const std::string& root, const std::string& name, const std::string& relative,
                 const std::string& file, std::ostream& err) {
  const ShadowRoot copy(root, {name}, true);
  if (copy.path().empty() || !PutInPlace(file, copy.path() + relative, err)) return false;
  Findings errors;
  for (Finding& finding : FindProblems(copy.path()))
    if (finding.error && finding.file == relative) errors.push_back(std::move(finding));
  if (errors.empty()) return true;
  for (Finding& finding : errors) finding.file = file;
  err << "cmcfg: " << file << " is refused: check finds errors in it\n";
  PrintFindings(errors, err);
  return false;
}

bool PutInPlace(const std::string& source, const std::string& target, std::ostream& err) {
  cfg::FileSystem* fs = cfg::FileSystem::Default();
  std::string contents;
  cfg::Status status = fs->ReadFile(source, &contents);
  if (status.ok()) {
    cfg::FileLock lock(target);
    // Noted in the lock: a kill half-way leaves no temporary for long.
    status = lock.locked() ? cfg::WriteNotingTemporary(target, contents) : lock.status();
  }
  if (status.ok()) return true;
  err << "cmcfg: cannot put " << source << " in place of " << target << ": " << status.ToString()
      << "\n";
  return false;
}

ExtensionData* FindExtension(CMAgent& agent, const std::string& name, std::ostream& err) {
  for (ExtensionData* e : agent.extensionBase)
    if (e != nullptr && e->name == name) return e;
  if (FindRecord(agent, name).attendant != nullptr)
    err << "cmcfg: \"" << name << "\" is an attendant; these verbs change extensions only\n";
  else
    err << "cmcfg: no extension named \"" << name << "\"\n";
  return nullptr;
}

}  // namespace cmcfg_tool
