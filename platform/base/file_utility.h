#ifndef CMCFG_PLATFORM_BASE_FILE_UTILITY_H_
#define CMCFG_PLATFORM_BASE_FILE_UTILITY_H_

#include <string>

class FileUtility {
 public:
  // Turns backslashes into "/" and folds runs of "/" into one, in place.
  static void AdjustPathForUnix(std::string& path);
  // True when the path names an existing folder.
  static bool IsDirExist(const char* path);
  // True when the path names an existing regular file.
  static bool IsFileExist(const char* path);
};

#endif  // CMCFG_PLATFORM_BASE_FILE_UTILITY_H_
