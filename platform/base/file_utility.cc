#include "platform/base/file_utility.h"

#include <sys/stat.h>

namespace {

bool StatMode(const char* path, mode_t* mode) {
  struct stat st;
  if (path == nullptr || *path == '\0' || stat(path, &st) != 0) return false;
  *mode = st.st_mode;
  return true;
}

}  // namespace

void FileUtility::AdjustPathForUnix(std::string& path) {
  std::string out;
  out.reserve(path.size());
  for (char c : path) {
    if (c == '\\') c = '/';
    if (c == '/' && !out.empty() && out.back() == '/') continue;
    out.push_back(c);
  }
  path.swap(out);
}

bool FileUtility::IsDirExist(const char* path) {
  mode_t mode;
  return StatMode(path, &mode) && S_ISDIR(mode);
}

bool FileUtility::IsFileExist(const char* path) {
  mode_t mode;
  return StatMode(path, &mode) && S_ISREG(mode);
}
