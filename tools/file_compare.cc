#include "tools/file_compare.h"

#include "tools/root_files.h"
#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

namespace cmcfg_tool {
namespace {

namespace fs = std::filesystem;

// "NAME" for "extensiondb/KIND/NAME.cfg", else "".
std::string ExtensionName(const std::string& relative) {
  const fs::path path(relative);
  const auto depth = std::distance(path.begin(), path.end());
  if (depth != 3 || *path.begin() != "extensiondb" || path.extension() != ".cfg") return "";
  return path.stem().string();
}

}  // namespace

FileComparison CompareFiles(const std::string& rootA, const std::string& rootB) {
  const std::string dirA = rootA + "/telephony/", dirB = rootB + "/telephony/";
  const auto filesA = FilesBelow(dirA), filesB = FilesBelow(dirB);
  FileComparison result;
  std::set<std::string> names;
  bool onlyExtensions = filesA.size() == filesB.size();
  for (const auto& file : filesA) {
    const auto other = filesB.find(file.first);
    if (other != filesB.end() && other->second == file.second &&
        FileBytes(dirA + file.first) == FileBytes(dirB + file.first))
      continue;
    const std::string name = ExtensionName(file.first);
    if (other == filesB.end() || name.empty()) onlyExtensions = false;
    if (!name.empty()) names.insert(name);
    if (!onlyExtensions) break;
  }
  if (onlyExtensions && names.empty()) {
    result.same = true;
    return result;
  }
  result.onlyExtensions = onlyExtensions;
  result.extensions.assign(names.begin(), names.end());
  return result;
}

}  // namespace cmcfg_tool
