#ifndef CMCFG_TESTS_SUPPORT_TREE_SNAPSHOT_H_
#define CMCFG_TESTS_SUPPORT_TREE_SNAPSHOT_H_

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>

namespace testing_support {

// Everything a write could change about a folder tree: every entry's kind,
// size, mode and modification time to the nanosecond, and the contents of
// regular files and links. A folder's time changes when an entry is added
// or removed in it, so even a file made and removed again shows.
class TreeSnapshot {
 public:
  explicit TreeSnapshot(const std::string& root) { Walk(root, ""); }

  // "" when both are the same; else the first few paths that differ, one a
  // line, for a test's failure message.
  std::string DifferencesFrom(const TreeSnapshot& before) const {
    std::string text;
    int shown = 0;
    auto note = [&](const std::string& path, const char* what) {
      if (shown++ < 10) text += path + ": " + what + "\n";
    };
    for (const auto& [path, entry] : before.entries_) {
      auto it = entries_.find(path);
      if (it == entries_.end())
        note(path, "removed");
      else if (it->second != entry)
        note(path, "changed");
    }
    for (const auto& [path, entry] : entries_)
      if (before.entries_.count(path) == 0) note(path, "added");
    return text;
  }

  size_t size() const { return entries_.size(); }

 private:
  static std::string Contents(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
  }

  void Walk(const std::string& folder, const std::string& relative) {
    Note(folder, relative.empty() ? "." : relative);
    DIR* dir = opendir(folder.c_str());
    if (dir == nullptr) return;
    while (dirent* d = readdir(dir)) {
      const std::string name = d->d_name;
      if (name == "." || name == "..") continue;
      const std::string path = folder + "/" + name;
      const std::string rel = relative.empty() ? name : relative + "/" + name;
      struct stat st;
      if (lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode))
        Walk(path, rel);
      else
        Note(path, rel);
    }
    closedir(dir);
  }

  void Note(const std::string& path, const std::string& rel) {
    struct stat st;
    if (lstat(path.c_str(), &st) != 0) return;
    std::ostringstream entry;
    entry << st.st_mode << ' ' << st.st_size << ' ' << st.st_mtim.tv_sec << '.'
          << st.st_mtim.tv_nsec << ' ' << st.st_ino << '\n';
    if (S_ISREG(st.st_mode)) entry << Contents(path);
    if (S_ISLNK(st.st_mode)) {
      char target[4096];
      ssize_t n = readlink(path.c_str(), target, sizeof(target));
      if (n > 0) entry << std::string(target, static_cast<size_t>(n));
    }
    entries_[rel] = entry.str();
  }

  std::map<std::string, std::string> entries_;
};

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_TREE_SNAPSHOT_H_
