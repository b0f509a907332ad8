#include "tools/shadow_root.h"

#include <filesystem>

#include "platform/base/file_system.h"
#include "platform/extension/extension_rep.h"
#include "tools/root_files.h"

namespace cmcfg_tool {
namespace {

namespace fs = std::filesystem;

bool Place(const fs::path& from, const fs::path& to, bool copies) {
  std::error_code error;
  if (!copies) fs::create_hard_link(from, to, error);
  if (copies || error) fs::copy_file(from, to, error);
  return !error;
}

// Every file below `from` placed below `to`, folders recreated. The root
// is listed through the store's file system, as every read of it is.
bool PlaceTree(const std::string& from, const fs::path& to, bool copies) {
  std::error_code error;
  fs::create_directories(to, error);
  if (error) return false;
  for (const std::string& name : EntriesOf(from, true))
    if (!PlaceTree(from + "/" + name, to / name, copies)) return false;
  for (const std::string& name : EntriesOf(from, false))
    if (!Place(from + "/" + name, to / name, copies)) return false;
  return true;
}

}  // namespace

ShadowRoot::ShadowRoot(const std::string& root, const std::vector<std::string>& names,
                       bool copies) {
  if (dir_.path().empty()) return;
  const std::string from = root + "/telephony";
  const fs::path to = fs::path(dir_.path()) / "telephony";
  std::error_code error;
  fs::create_directories(to, error);
  if (error) return;
  for (const std::string& name : EntriesOf(from, false))
    if (!Place(from + "/" + name, to / name, copies)) return;
  for (const std::string& folder : EntriesOf(from, true)) {
    if (folder != "extensiondb") {
      if (!PlaceTree(from + "/" + folder, to / folder, copies)) return;
      continue;
    }
    // Only the named extensions of the database.
    const std::string db = from + "/" + folder;
    fs::create_directories(to / folder, error);
    if (error) return;
    for (const std::string& name : EntriesOf(db, false))
      if (!Place(db + "/" + name, to / folder / name, copies)) return;
    for (const std::string& kind : EntriesOf(db, true)) {
      const fs::path placed = to / folder / kind;
      fs::create_directories(placed, error);
      if (error) return;
      for (const std::string& name : names) {
        const std::string file = db + "/" + kind + "/" + name + ".cfg";
        if (extdb::IsValidName(name) && cfg::FileSystem::Default()->FileExists(file) &&
            !Place(file, placed / (name + ".cfg"), copies))
          return;
      }
    }
  }
  path_ = dir_.path();
}

}  // namespace cmcfg_tool
