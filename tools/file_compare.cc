#include "tools/file_compare.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

namespace cmcfg_tool {
namespace {

namespace fs = std::filesystem;

// Relative path -> size of every regular file below `dir`.
std::map<std::string, uintmax_t> Files(const fs::path& dir) {
  std::map<std::string, uintmax_t> files;
  std::error_code error;
  for (fs::recursive_directory_iterator it(dir, error), end; !error && it != end;
       it.increment(error))
    if (it->is_regular_file(error))
      files.emplace(it->path().lexically_relative(dir).generic_string(), it->file_size(error));
  return files;
}

bool SameBytes(const fs::path& a, const fs::path& b) {
  std::ifstream inA(a, std::ios::binary), inB(b, std::ios::binary);
  char bufA[65536], bufB[65536];
  while (inA && inB) {
    inA.read(bufA, sizeof bufA);
    inB.read(bufB, sizeof bufB);
    if (inA.gcount() != inB.gcount() || !std::equal(bufA, bufA + inA.gcount(), bufB)) return false;
  }
  return inA.eof() && inB.eof();
}

// "NAME" for "extensiondb/KIND/NAME.cfg", else "".
std::string ExtensionName(const std::string& relative) {
  const fs::path path(relative);
  const auto depth = std::distance(path.begin(), path.end());
  if (depth != 3 || *path.begin() != "extensiondb" || path.extension() != ".cfg") return "";
  return path.stem().string();
}

}  // namespace

FileComparison CompareFiles(const std::string& rootA, const std::string& rootB) {
  const fs::path dirA = fs::path(rootA) / "telephony", dirB = fs::path(rootB) / "telephony";
  const auto filesA = Files(dirA), filesB = Files(dirB);
  FileComparison result;
  std::set<std::string> names;
  bool onlyExtensions = filesA.size() == filesB.size();
  for (const auto& file : filesA) {
    const auto other = filesB.find(file.first);
    if (other != filesB.end() && other->second == file.second &&
        SameBytes(dirA / file.first, dirB / file.first))
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
