#ifndef CMCFG_TESTS_SUPPORT_TEMP_ROOT_H_
#define CMCFG_TESTS_SUPPORT_TEMP_ROOT_H_

#include <optional>
#include <string>

namespace testing_support {

// A configuration root in a fresh temporary folder, removed with the object.
// It points "ORBA_PATH" at itself (with the trailing slash the agent expects)
// sends relative log files ("CMCFG_LOG_DIR") into the same folder and the
// store's locks ("CMCFG_LOCK_DIR") into a folder beside it, and restores
// the variables when destroyed.
class TempRoot {
 public:
  TempRoot();
  ~TempRoot();
  TempRoot(const TempRoot&) = delete;
  TempRoot& operator=(const TempRoot&) = delete;

  // The root, ending in "/".
  const std::string& path() const { return path_; }
  // path() + relative.
  std::string Path(const std::string& relative) const { return path_ + relative; }

  // Writes `contents` to path() + relative, creating folders on the way.
  void Write(const std::string& relative, const std::string& contents) const;
  // Contents of path() + relative, or "" when it cannot be read.
  std::string Read(const std::string& relative) const;
  bool Exists(const std::string& relative) const;
  void MakeDir(const std::string& relative) const;

 private:
  std::string path_;
  std::string locks_;
  std::optional<std::string> saved_[3];  // the variables' values before, if set
};

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_TEMP_ROOT_H_
