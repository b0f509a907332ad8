#ifndef CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_BASE_H_
#define CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_BASE_H_

#include <list>
#include <string>

#include "cmcfg/types.h"

// What every extension database offers: the names of its extensions.
class ExtensionManagerBase {
 public:
  virtual ~ExtensionManagerBase();
  // Replaces `names` with the names of every extension of that type, in the
  // database's order: the regular files (or links to them) named NAME.cfg.
  // One listing of the folder, without a stat per file where the file
  // system records entry kinds. False when the folder cannot be listed.
  bool GetAllExtensionsNames(ExtType type, std::list<std::string>& names);

 protected:
  explicit ExtensionManagerBase(std::string path);
  std::string path_;
};

#endif  // CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_BASE_H_
