#ifndef CMCFG_TESTS_SUPPORT_LOCK_FILES_H_
#define CMCFG_TESTS_SUPPORT_LOCK_FILES_H_

#include <fstream>
#include <sstream>
#include <string>

#include "platform/base/file_lock.h"
#include "tests/support/temp_root.h"

namespace testing_support {

// The store's lock file of root.Path(relative) (its folder must exist), in
// the root's own lock folder, and the temporaries it notes.
inline std::string LockOf(const TempRoot& root, const std::string& relative) {
  std::string lock;
  cfg::LockPathFor(root.Path(relative), &lock);
  return lock;
}

inline std::string ReadLock(const TempRoot& root, const std::string& relative) {
  std::ifstream in(LockOf(root, relative), std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

inline void WriteLock(const TempRoot& root, const std::string& relative, const std::string& contents) {
  std::ofstream out(LockOf(root, relative), std::ios::binary | std::ios::trunc);
  out << contents;
}

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_LOCK_FILES_H_
