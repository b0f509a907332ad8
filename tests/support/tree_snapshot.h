#ifndef CMCFG_TESTS_SUPPORT_TREE_SNAPSHOT_H_
#define CMCFG_TESTS_SUPPORT_TREE_SNAPSHOT_H_

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

namespace testing_support {

// Everything a write could change about a folder tree: every entry's kind,
// size, mode, inode and modification time to the nanosecond, and the
// contents of regular files and links. A folder's time changes when an
// entry is added or removed in it, so even a file made and removed again
// shows.
class TreeSnapshot {
 public:
  explicit TreeSnapshot(const std::string& root) {
    Note(root, ".");
    std::error_code ec;
    for (std::filesystem::recursive_directory_iterator it(root, ec), end; !ec && it != end; it.increment(ec))
      Note(it->path().string(), std::filesystem::relative(it->path(), root, ec).string());
  }

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
      if (it == entries_.end() || it->second != entry) note(path, it == entries_.end() ? "removed" : "changed");
    }
    for (const auto& [path, entry] : entries_)
      if (before.entries_.count(path) == 0) note(path, "added");
    return text;
  }

  size_t size() const { return entries_.size(); }

 private:
  void Note(const std::string& path, const std::string& rel) {
    struct stat st;
    if (lstat(path.c_str(), &st) != 0) return;
    std::ostringstream entry;
    entry << st.st_mode << ' ' << st.st_size << ' ' << st.st_mtim.tv_sec << '.' << st.st_mtim.tv_nsec << ' '
          << st.st_ino << '\n';
    if (S_ISREG(st.st_mode)) entry << std::ifstream(path, std::ios::binary).rdbuf();
    std::error_code ec;
    if (S_ISLNK(st.st_mode)) entry << std::filesystem::read_symlink(path, ec).string();
    entries_[rel] = entry.str();
  }

  std::map<std::string, std::string> entries_;
};

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_TREE_SNAPSHOT_H_
