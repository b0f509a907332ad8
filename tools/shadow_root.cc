#include "tools/shadow_root.h"

#include <filesystem>

#include "platform/extension/extension_rep.h"

namespace cmcfg_tool {
namespace {

namespace fs = std::filesystem;

bool Place(const fs::path& from, const fs::path& to, bool copies) {
  std::error_code error;
  if (!copies) fs::create_hard_link(from, to, error);
  if (copies || error) fs::copy_file(from, to, error);
  return !error;
}

// Every regular file below `from` placed below `to`, folders recreated.
bool PlaceTree(const fs::path& from, const fs::path& to, bool copies) {
  std::error_code error;
  fs::create_directories(to, error);
  if (error) return false;
  for (fs::directory_iterator it(from, error), end; !error && it != end; it.increment(error)) {
    const fs::path target = to / it->path().filename();
    const bool ok = it->is_directory() ? PlaceTree(it->path(), target, copies)
                                       : Place(it->path(), target, copies);
    if (!ok) return false;
  }
  return !error;
}

}  // namespace

ShadowRoot::ShadowRoot(const std::string& root, const std::vector<std::string>& names,
                       bool copies) {
  if (dir_.path().empty()) return;
  const fs::path from = fs::path(root) / "telephony", to = fs::path(dir_.path()) / "telephony";
  std::error_code error;
  fs::create_directories(to, error);
  for (fs::directory_iterator it(from, error), end; !error && it != end; it.increment(error)) {
    const fs::path target = to / it->path().filename();
    if (it->path().filename() != "extensiondb") {
      if (!(it->is_directory() ? PlaceTree(it->path(), target, copies)
                               : Place(it->path(), target, copies)))
        return;
      continue;
    }
    fs::create_directories(target, error);
    for (fs::directory_iterator db(it->path(), error); !error && db != end; db.increment(error)) {
      const fs::path placed = target / db->path().filename();
      if (!db->is_directory()) {
        if (!Place(db->path(), placed, copies)) return;
        continue;
      }
      fs::create_directories(placed, error);
      for (const std::string& name : names)
        if (extdb::IsValidName(name) && fs::exists(db->path() / (name + ".cfg")) &&
            !Place(db->path() / (name + ".cfg"), placed / (name + ".cfg"), copies))
          return;
    }
  }
  if (!error) path_ = dir_.path();
}

}  // namespace cmcfg_tool
