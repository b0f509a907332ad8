// Refreshing a contact's services from the store, and the unconditional
// forward changed from the telephone.
#include <algorithm>
#include <cstdint>

#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"

namespace {

const unsigned kForwardUnconditional = 0x040;

struct ServiceUpdate {
  unsigned mask;
  const char* line;
};

// The service an update type selects, and the line that says so.
ServiceUpdate SelectService(UpdateTypeCodes::UpdateType type) {
  static const char* const kLines[] = {
      "UpdateSupServices: extension %s, updating CLIR data.\n",
      "UpdateSupServices: extension %s, updating incoming blocking data.\n",
      "UpdateSupServices: extension %s, updating outgoing blocking data.\n",
      "UpdateSupServices: extension %s, updating outgoing distinctive ringing data.\n",
      "UpdateSupServices: extension %s, updating hunt data.\n",
      "UpdateSupServices: extension %s, updating M.E.R. data.\n",
      "UpdateSupServices: extension %s, updating unconditional forward data.\n",
      "UpdateSupServices: extension %s, updating no answer forward data.\n",
      "UpdateSupServices: extension %s, updating busy forward data.\n",
      "UpdateSupServices: extension %s, updating intercom data.\n",
  };
  int k = static_cast<int>(type) - UpdateTypeCodes::kUpdateClir;
  if (k < 0 || k >= static_cast<int>(sizeof(kLines) / sizeof(kLines[0])))
    return {gAllProperties, "UpdateSupServices: extension %s, updating all services.\n"};
  return {1u << k, kLines[k]};
}

// The any-caller contact of the book and its stored services, or nullptr
// (after logging the operation's line) when either is missing.
SupServAccessor* AnyCallerServices(CMAgent* agent, Extension* stored, ExtensionData* extension,
                                   const char* failure, AddressBookEntry** entry) {
  stored->ReloadProperty(kPropAddressPatterns);
  std::list<AddressBookEntry>& book = extension->addressBook;
  auto it = std::find_if(book.begin(), book.end(),
                         [](const AddressBookEntry& e) { return e.first.name == gAny; });
  AddressPatternParams* params = stored->GetAddressPatternParams();
  SupServAccessor* services = nullptr;
  if (it != book.end() && params != nullptr)
    services = params->GetSupServAccessor(params->GetBlock(static_cast<unsigned long>(it->first.id)),
                                          false);
  if (services == nullptr) {
    CMCFG_TRACE(agent, failure, extension->name.c_str());
    return nullptr;
  }
  *entry = &*it;
  return services;
}

}  // namespace

bool CMAgent::UpdateSupServices(ExtensionData* extension, int contactId,
                                UpdateTypeCodes::UpdateType type) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("UpdateSupServices"));
  Extension* stored = frame.Find(extension->type, extension->name);
  if (stored == nullptr) return false;
  stored->ReloadProperty(kPropAddressPatterns);
  std::list<AddressBookEntry>& book = extension->addressBook;
  auto entry = std::find_if(book.begin(), book.end(),
                            [contactId](const AddressBookEntry& e) { return e.first.id == contactId; });
  if (entry == book.end()) {
    CMCFG_TRACE(this, "UpdateSupServices: extension %s has no contact with ID %d.\n",
                extension->name.c_str(), contactId);
    return false;
  }
  ServiceUpdate update = SelectService(type);
  CMCFG_TRACE(this, update.line, extension->name.c_str());
  FillSupServiceSet(stored, entry->second, contactId, update.mask);
  return true;
}

bool CMAgent::SwitchForwardService(ExtensionData* extension) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("SwitchForwardService"));
  Extension* stored = frame.Find(extension->type, extension->name);
  if (stored == nullptr) return false;
  AddressBookEntry* anyCaller = nullptr;
  int32_t active = 0;
  bool stores = false;
  // Decided and stored under the file's lock, on the file as it is now.
  cfg::Status saved = stored->Update([&] {
    SupServAccessor* services = AnyCallerServices(
        this, stored, extension,
        "SwitchForwardService: failed to load supplementary services for extension %s.\n",
        &anyCaller);
    if (services == nullptr) return false;
    services->Load(kForwardUnconditional);
    // The flag in memory decides: it is what the user was told.
    active = anyCaller->second.forwardUnconditional.active ? 0 : 1;
    services->forwardUnconditional.active = active;
    stores = services->Store(kForwardUnconditional);
    return stores;
  });
  if (!stores || !saved.ok()) return false;
  anyCaller->second.forwardUnconditional.active = active;
  return true;
}

bool CMAgent::UpdateForwardService(ExtensionData* extension, const std::string& number, bool on,
                                   bool replace) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("UpdateForwardService"));
  Extension* stored = frame.Find(extension->type, extension->name);
  if (stored == nullptr) return false;
  AddressBookEntry* anyCaller = nullptr;
  SupServAccessor* services = nullptr;
  bool result = false;
  bool stores = false;
  // Decided and stored under the file's lock, on the file as it is now: a
  // number another writer set meanwhile counts as set.
  cfg::Status saved = stored->Update([&] {
    services = AnyCallerServices(
        this, stored, extension,
        "UpdateForwardService: failed to load supplementary services for extension %s.\n",
        &anyCaller);
    if (services == nullptr) return false;
    services->Load(kForwardUnconditional);
    std::list<AddrInfo>& destinations = services->forwardUnconditional.destinations;
    // Only the destination set from the telephone is ever touched.
    auto phone = std::find_if(destinations.begin(), destinations.end(),
                              [](const AddrInfo& d) { return d.type == kCallFromPhone; });
    if (phone == destinations.end()) {
      if (!on) return false;
      AddrInfo added;
      added.enabled = 1;
      added.type = kCallFromPhone;
      added.address = number;
      destinations.push_back(added);
    } else if (!on) {
      destinations.erase(phone);
    } else if (phone->address == number) {
      result = true;  // already so, even when disabled: nothing to store
      return false;
    } else if (!replace) {
      return false;
    } else {
      phone->address = number;
      phone->enabled = 1;
    }
    stores = services->Store(kForwardUnconditional);
    result = stores;
    return stores;
  });
  if (!stores) return result;
  if (!saved.ok()) return false;
  anyCaller->second.forwardUnconditional = services->forwardUnconditional;
  return true;
}
