#ifndef CMCFG_PLATFORM_BLOCKS_GENERAL_PATHS_H_
#define CMCFG_PLATFORM_BLOCKS_GENERAL_PATHS_H_

#include <string>
#include <vector>

#include "platform/blocks/shared_instance.h"

// Names of the runtime database files ("telephony/paths.cfg"). A bare file
// name is placed by its user; a name with a folder part is used as it stands.
// Shared, reference-counted instance like GeneralSettingsAccessor, under
// the same thread rule: a name filled in and saved, a reload, and reads
// that must agree with another thread's change run under Lock.
class GeneralPaths {
 public:
  // Holds the shared instance's lock while in scope (as
  // GeneralSettingsAccessor::Lock, under the same rule).
  using Lock = SharedValuesLock<GeneralPaths>;
  static ThreadMutex& InstanceMutex();

  // The shared instance, reading the file on first use; createIfMissing as
  // for GeneralSettingsAccessor::GetInstance.
  static GeneralPaths* GetInstance(bool createIfMissing);
  // Drops one reference; the last one deletes the instance.
  static void CloseInstance();

  // Reads the file again from empty names; false (names unchanged) when it
  // cannot be read. Under Lock when other threads may use the instance.
  bool Reload();
  // Writes the names changed since the file was read or last saved back
  // atomically under the file's lock (as GeneralSettingsAccessor::Save);
  // true on success. Under Lock as Reload.
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
