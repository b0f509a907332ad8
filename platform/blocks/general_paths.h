#ifndef CMCFG_PLATFORM_BLOCKS_GENERAL_PATHS_H_
#define CMCFG_PLATFORM_BLOCKS_GENERAL_PATHS_H_

#include <string>

#include "platform/blocks/settings_accessor.h"

// Names of the runtime database files ("telephony/paths.cfg"). A bare file
// name is placed by its user; a name with a folder part is used as it stands.
// Shared instance, thread rule and file handling as FxsDataAccessor: a name
// filled in and saved, a reload, and reads that must agree with another
// thread's change run under Lock. A missing name is empty.
class GeneralPaths : public SettingsAccessor<GeneralPaths> {
 public:
  static constexpr const char* kFileName = "paths.cfg";

  // SettingsAccessor::Save; true on success.
  virtual bool Save();

  std::string externalUserCacheFile;
  std::string regStatusFile;
  std::string cdrStatedDb;
  std::string cdrMissedDb;
  std::string cdrFailedDb;

 protected:
  explicit GeneralPaths(std::string path);
  virtual ~GeneralPaths() = default;

 private:
  friend class SharedAccessor<GeneralPaths>;
  friend class SettingsAccessor<GeneralPaths>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_GENERAL_PATHS_H_
