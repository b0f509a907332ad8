#include "tools/check_root_files.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "cmcfg/types.h"
#include "platform/base/file_system.h"
#include "platform/extension/extension_rep.h"
#include "tools/root_files.h"

namespace cmcfg_tool {
namespace {

namespace fs = std::filesystem;

Finding FileFinding(const std::string& relative, bool error, const std::string& code,
                    const std::string& message) {
  Finding finding;
  finding.file = relative;
  finding.error = error;
  finding.code = code;
  finding.message = message;
  return finding;
}

// The configuration files below telephony/ outside the extension database,
// relative to the root, sorted.
std::vector<std::string> ConfigurationFiles(const std::string& root) {
  std::vector<std::string> found;
  for (const auto& file : FilesBelow(root + "telephony", {"extensiondb"})) {
    const std::string& name = file.first;
    const bool lock = name.size() > 5 && name.compare(name.size() - 5, 5, ".lock") == 0;
    if (name.find(".cfg") != std::string::npos && !lock) found.push_back("telephony/" + name);
  }
  return found;
}

// The extension kinds in the order a lookup by name finds them.
const ExtType kLookupOrder[] = {kExtUser, kExtPickup, kExtCallPark, kExtPaging, kExtAttendant};

size_t LookupRank(const std::string& kind) {
  for (size_t i = 0; i < sizeof kLookupOrder / sizeof kLookupOrder[0]; ++i)
    if (kind == extdb::KindFolder(kLookupOrder[i])) return i;
  return sizeof kLookupOrder / sizeof kLookupOrder[0];
}

}  // namespace

void CheckRootFiles(const std::string& root, const std::vector<std::string>& extensionFiles,
                    Findings* findings) {
  const std::vector<std::string>& settings = SettingsFiles();
  for (const std::string& relative : settings)
    if (!cfg::FileSystem::Default()->FileExists(root + relative))
      findings->push_back(FileFinding(relative, false, "missing-file",
                                      "the file is missing; the agent uses its defaults"));
  for (const std::string& relative : ConfigurationFiles(root))
    if (std::find(settings.begin(), settings.end(), relative) == settings.end())
      findings->push_back(FileFinding(relative, false, "unread-file", "nothing reads this file"));

  // Each number with its files, in lookup order.
  const auto kind = [](const std::string& relative) {
    return fs::path(relative).parent_path().filename().string();
  };
  std::map<std::string, std::vector<const std::string*>> byNumber;
  for (const std::string& relative : extensionFiles)
    byNumber[fs::path(relative).stem().string()].push_back(&relative);
  for (auto& number : byNumber) {
    std::vector<const std::string*>& holders = number.second;
    if (holders.size() < 2) continue;
    std::stable_sort(holders.begin(), holders.end(),
                     [&](const std::string* a, const std::string* b) {
                       return LookupRank(kind(*a)) < LookupRank(kind(*b));
                     });
    for (size_t i = 1; i < holders.size(); ++i)
      findings->push_back(FileFinding(*holders[i], true, "shared-number",
                                      "number " + number.first + " is also " + kind(*holders[0]) +
                                          " " + number.first + " (" + *holders[0] +
                                          "), which answers for it; this " + kind(*holders[i]) +
                                          " cannot be reached"));
  }
}

}  // namespace cmcfg_tool
