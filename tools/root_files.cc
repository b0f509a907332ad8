#include "tools/root_files.h"

#include <algorithm>

#include "platform/base/file_system.h"

namespace cmcfg_tool {
namespace {

void Walk(const std::string& dir, const std::string& prefix, const std::set<std::string>& skip,
          std::map<std::string, uint64_t>* files) {
  cfg::FileSystem* fs = cfg::FileSystem::Default();
  std::vector<cfg::DirEntry> entries;
  if (!fs->ListDirEntries(dir, &entries).ok()) return;
  for (const cfg::DirEntry& entry : entries) {
    const std::string path = dir + "/" + entry.name;
    if (entry.kind == cfg::FileInfo::kDirectory) {
      if (!skip.count(entry.name)) Walk(path, prefix + entry.name + "/", skip, files);
    } else if (entry.kind == cfg::FileInfo::kRegular) {
      cfg::FileInfo info;
      (*files)[prefix + entry.name] = fs->Stat(path, &info).ok() ? info.size : 0;
    }
  }
}

}  // namespace

std::string FileBytes(const std::string& path) {
  std::string bytes;
  if (!cfg::FileSystem::Default()->ReadFile(path, &bytes).ok()) bytes.clear();
  return bytes;
}

std::vector<std::string> ReadLines(const std::string& path) {
  const std::string bytes = FileBytes(path);
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < bytes.size()) {
    size_t end = bytes.find('\n', start);
    if (end == std::string::npos) end = bytes.size();
    std::string line = bytes.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
    start = end + 1;
  }
  return lines;
}

std::vector<std::string> EntriesOf(const std::string& folder, bool folders) {
  std::vector<cfg::DirEntry> entries;
  std::vector<std::string> names;
  if (!cfg::FileSystem::Default()->ListDirEntries(folder, &entries).ok()) return names;
  for (const cfg::DirEntry& entry : entries)
    if ((entry.kind == cfg::FileInfo::kDirectory) == folders) names.push_back(entry.name);
  std::sort(names.begin(), names.end());
  return names;
}

std::map<std::string, uint64_t> FilesBelow(const std::string& dir,
                                           const std::set<std::string>& skip) {
  std::map<std::string, uint64_t> files;
  std::string base = dir;
  while (base.size() > 1 && base.back() == '/') base.pop_back();
  Walk(base, "", skip, &files);
  return files;
}

}  // namespace cmcfg_tool
