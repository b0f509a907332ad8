#include "platform/extension/extension_manager.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/base/document_store.h"
#include "platform/extension/extension_rep.h"

namespace extdb {

const char kExtensionSection[] = "extension";
const char kSystemSection[] = "database";
const char kSystemAttendantKey[] = "system_attendant";

}  // namespace extdb

struct ExtensionManager::Rep {
  bool preload = false;
  // The kept extensions, most recently fetched first. A handful: a linear
  // search beats any index.
  std::list<std::unique_ptr<Extension>> kept;
};

ExtensionManager::ExtensionManager(const std::string& path, bool preload)
    : ExtensionManagerBase(path), rep_(new Rep) {
  rep_->preload = preload;
}

ExtensionManager::~ExtensionManager() = default;

Extension* ExtensionManager::GetExtension(ExtType type, const std::string& name, bool preloadAll) {
  const char* folder = extdb::KindFolder(type);
  if (folder == nullptr || !extdb::IsValidName(name)) return nullptr;
  std::list<std::unique_ptr<Extension>>& kept = rep_->kept;
  auto it = std::find_if(kept.begin(), kept.end(), [&](const std::unique_ptr<Extension>& e) {
    return e->rep_->type == type && e->rep_->name == name;
  });
  if (it != kept.end()) {
    kept.splice(kept.begin(), kept, it);
  } else {
    std::unique_ptr<Extension> fresh(type == kExtAttendant ? new CHAttendant : new Extension);
    fresh->rep_->name = name;
    fresh->rep_->type = type;
    fresh->rep_->path = path_ + folder + "/" + name + ".cfg";
    // The file is read here, once; properties are decoded from memory.
    if (!fresh->rep_->Read()) return nullptr;
    kept.push_front(std::move(fresh));
    if (kept.size() > kKeptExtensions) kept.pop_back();
  }
  Extension* extension = kept.front().get();
  if (preloadAll || rep_->preload) extension->LoadProperty(gAllProperties);
  return extension;
}

Extension* ExtensionManager::GetExtension(const std::string& name, bool preloadAll) {
  static const ExtType kKinds[] = {kExtUser, kExtPickup, kExtCallPark, kExtPaging};
  for (ExtType type : kKinds)
    if (Extension* extension = GetExtension(type, name, preloadAll)) return extension;
  return nullptr;
}

CHAttendant* ExtensionManager::GetAttendant(const std::string& name, bool preloadAll) {
  return static_cast<CHAttendant*>(GetExtension(kExtAttendant, name, preloadAll));
}

CHAttendant* ExtensionManager::GetSystemExtension(bool preloadAll) {
  cfg::Document doc;
  if (!cfg::LoadDocument(path_ + "system.cfg", &doc).ok()) return nullptr;
  const cfg::Section* section = doc.Find(extdb::kSystemSection);
  const cfg::Entry* entry = section ? section->Find(extdb::kSystemAttendantKey) : nullptr;
  if (entry == nullptr) return nullptr;
  return GetAttendant(std::string(entry->value), preloadAll);
}
