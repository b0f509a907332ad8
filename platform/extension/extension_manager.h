#ifndef CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_H_
#define CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_H_

#include <cstddef>
#include <memory>
#include <string>

#include "platform/extension/ch_attendant.h"
#include "platform/extension/extension.h"
#include "platform/extension/extension_manager_base.h"

// The extension database "extensiondb": a folder with one file per
// extension, so opening it and fetching one extension costs the same for
// ten or a hundred thousand extensions. Names that are not plain file names
// ("/", "..", control characters, empty) are never found. Not thread-safe.
//
// The manager keeps only the kKeptExtensions extensions fetched most
// recently, so loading every extension of a large database one after the
// other holds a few files in memory, not all. An Extension* it returns, and
// every block, list entry and accessor that extension hands out, stays
// valid until kKeptExtensions other extensions have been fetched from the
// same manager (successful fetches of other names; fetching an extension
// again makes it the most recent), or the manager is destroyed. Fetching a
// kept extension again returns the same object without reading its file
// again (ReloadProperty re-reads); one that was dropped is read afresh into
// a new object.
class ExtensionManager : public ExtensionManagerBase {
 public:
  static constexpr size_t kKeptExtensions = 8;

  // preload: decode every property when an extension is fetched.
  ExtensionManager(const std::string& path, bool preload);
  ~ExtensionManager() override;

  // The extension of that type and name, or nullptr (no such file, or it
  // cannot be read). preloadAll decodes all its properties at once.
  Extension* GetExtension(ExtType type, const std::string& name, bool preloadAll);
  // The extension of that name whatever its type (attendants excluded).
  Extension* GetExtension(const std::string& name, bool preloadAll);
  CHAttendant* GetAttendant(const std::string& name, bool preloadAll);
  // The system attendant (named in the database's own settings), or nullptr.
  CHAttendant* GetSystemExtension(bool preloadAll);

 private:
  struct Rep;
  std::unique_ptr<Rep> rep_;
};

#endif  // CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_H_
