#ifndef CMCFG_TESTS_SUPPORT_TEMP_ROOT_H_
#define CMCFG_TESTS_SUPPORT_TEMP_ROOT_H_

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
  std::string saved_root_;
  bool had_root_ = false;
  std::string saved_log_dir_;
  bool had_log_dir_ = false;
  std::string locks_;
  std::string saved_lock_dir_;
  bool had_lock_dir_ = false;
};

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_TEMP_ROOT_H_
