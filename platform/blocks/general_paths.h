#ifndef CMCFG_PLATFORM_BLOCKS_GENERAL_PATHS_H_
#define CMCFG_PLATFORM_BLOCKS_GENERAL_PATHS_H_

#include <string>
#include <vector>

// Names of the runtime database files ("telephony/paths.cfg"). A bare file
// name is placed by its user; a name with a folder part is used as it stands.
// Shared, reference-counted instance like GeneralSettingsAccessor.
class GeneralPaths {
 public:
  static GeneralPaths* GetInstance(bool createIfMissing);
  static void CloseInstance();

  bool Reload();
  // Writes the names changed since the file was read or last saved back
  // atomically under the file's lock (as GeneralSettingsAccessor::Save);
  // true on success.
  virtual bool Save();

  std::string externalUserCacheFile;
  std::string regStatusFile;
  std::string cdrStatedDb;
  std::string cdrMissedDb;
  std::string cdrFailedDb;

 protected:
  GeneralPaths() = default;
  virtual ~GeneralPaths() = default;

 private:
  friend struct GeneralPathsInstance;
  std::string path_;
  std::vector<std::string> known_;  // value texts as last read or saved
};

#endif  // CMCFG_PLATFORM_BLOCKS_GENERAL_PATHS_H_
