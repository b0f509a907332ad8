// Changes to an address book: contacts re-read, added or erased, and
// numbers added to a black list.
#include <algorithm>
#include <cstdlib>

#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/number_rules.h"
#include "platform/base/string_utils.h"
#include "services/call_type.h"

namespace {

std::list<AddressBookEntry>::iterator FindContact(std::list<AddressBookEntry>& book, long id) {
  return std::find_if(book.begin(), book.end(),
                      [id](const AddressBookEntry& e) { return e.first.id == id; });
}

}  // namespace

int CMAgent::UpdateContact(ExtensionData* extension, const std::string& ids,
                           UpdateTypeCodes::UpdateTypeMode mode) {
  if (extension == nullptr) return 0;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("UpdateContact"));
  Extension* stored = frame.Find(extension->type, extension->name);
  if (stored == nullptr) return 0;
  stored->ReloadProperty(kPropAddressPatterns);
  AddressPatternParams* params = stored->GetAddressPatternParams();
  std::list<AddressBookEntry>& book = extension->addressBook;
  const char* name = extension->name.c_str();

  for (const std::string& piece : StringUtils::ParseCommaLine(ids, ',')) {
    long id = cfg::DecimalPrefix(piece);
    auto entry = FindContact(book, id);
    AddressPatternBlock* block = nullptr;
    if (mode != UpdateTypeCodes::kModeErase && params != nullptr && id > 0)
      block = params->GetBlock(static_cast<unsigned long>(id));
    if (mode == UpdateTypeCodes::kModeErase ? entry == book.end() : block == nullptr) {
      CMCFG_TRACE(this, "UpdateContact: extension %s has no such contact ID - %d.\n", name,
                  static_cast<int>(id));
      return 0;  // the identifiers before it stay applied
    }
    if (mode == UpdateTypeCodes::kModeErase) {
      CMCFG_TRACE(this, "UpdateContact: extension %s, erasing contact %s.\n", name,
                  entry->first.name.c_str());
      book.erase(entry);  // an erase keeps the book's grouping
      continue;
    }
    CallType type = services::StoredCallType(block->callType);
    if (entry == book.end()) {
      CMCFG_TRACE(this, "UpdateContact: extension %s, adding contact %s.\n", name,
                  block->name.c_str());
      AddressBookEntry added(Contact(block->name, static_cast<int32_t>(id), type), SupServiceSet());
      FillSupServiceSet(stored, added.second, static_cast<int>(id), gAllProperties);
      book.push_back(added);
    } else {
      // Its services are re-read by UpdateSupServices, not here.
      CMCFG_TRACE(this, "UpdateContact: extension %s, changing contact %s.\n", name,
                  block->name.c_str());
      entry->first.name = block->name;
      entry->first.callType = type;
    }
    GroupAddressBook(book);
  }
  return 1;
}

int CMAgent::BlockContact(ExtensionData* extension, const std::string& number, CallType type,
                          bool incoming) {
  const int kAdded = 0, kPresent = 1, kFailed = 2;
  if (extension == nullptr) return kFailed;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("BlockContact"));
  Extension* stored = frame.Find(extension->type, extension->name);
  if (stored == nullptr) return kFailed;
  const unsigned bit = incoming ? 0x002 : 0x004;
  auto blocking = [incoming](SupServiceSet& set) -> CallBlockingData& {
    return incoming ? set.incomingBlocking : set.outgoingBlocking;
  };
  std::list<AddressBookEntry>& book = extension->addressBook;
  auto entry = std::find_if(book.begin(), book.end(), [&](const AddressBookEntry& e) {
    return e.first.name == number && e.first.callType == type;
  });
  if (entry != book.end() && blocking(entry->second).active) return kPresent;

  int result = kFailed;
  unsigned long id = 0;
  int32_t mode = 0;
  // Which contact is blocked, and whether it already is, is decided on the
  // file as it is now, under its lock; a new contact's id is one the file
  // does not hold.
  cfg::Status saved = stored->Update([&] {
    stored->LoadProperty(kPropAddressPatterns);
    AddressPatternParams* params = stored->GetAddressPatternParams();
    if (params == nullptr) return false;
    AddressPatternBlock* block = nullptr;
    for (AddressPatternBlock* b : params->GetAllBlocks())
      if (b->name == number && b->callType == type) {
        block = b;
        break;
      }
    if (block == nullptr) {
      block = params->CreateBlock();
      block->name = number;
      block->callType = type;
      if (!stored->AddBlock(kPropAddressPatterns, block)) return false;
    }
    SupServAccessor* services = params->GetSupServAccessor(block, true);
    if (services == nullptr) {
      CMCFG_TRACE(this, "BlockContact: failed to load supplementary service for extension %s.\n",
                  extension->name.c_str());
      return true;  // a contact created here stays
    }
    services->Load(bit);
    SSBlockCallParams& storedBlocking = incoming ? services->incomingBlocking
                                                 : services->outgoingBlocking;
    id = block->id;
    mode = storedBlocking.blockMode;
    if (storedBlocking.active) {
      result = kPresent;  // another writer blocked it meanwhile
      return false;
    }
    storedBlocking.active = 1;
    if (!services->Store(bit)) return false;
    result = kAdded;
    return true;
  });
  if (result == kFailed || (result == kAdded && !saved.ok())) return kFailed;
  // The copy in memory follows what the file now holds.
  if (entry == book.end()) {
    book.emplace_back(Contact(number, static_cast<int32_t>(id), type), SupServiceSet());
    entry = std::prev(book.end());
  }
  entry->first.id = static_cast<int32_t>(id);
  blocking(entry->second).active = 1;
  blocking(entry->second).blockMode = mode;
  if (result == kAdded)
    CMCFG_TRACE(this, "BlockContact: extension %s, added contact %s to %s black list.\n",
                extension->name.c_str(), number.c_str(), incoming ? "incoming" : "outgoing");
  return result;
}
