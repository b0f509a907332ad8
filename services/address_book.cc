// Loading an extension's address book: its contacts with their services.
#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"
#include "platform/extension/extension_manager.h"
#include "services/call_type.h"

bool CMAgent::LoadAddressBook(ExtensionData* extension) {
  if (extension == nullptr) return false;
  std::list<AddressBookEntry>& book = extension->addressBook;
  book.clear();

  ExtensionFrame frame(this, CMCFG_FRAME_LINES("LoadAddressBook"));
  Extension* stored = frame.Find(extension->type, extension->name);
  if (stored == nullptr) return false;
  AddressPatternParams* patterns = frame.Load(stored, extension->name, kPropAddressPatterns,
                                              &Extension::GetAddressPatternParams);
  if (patterns == nullptr) return false;
  for (const AddressPatternBlock* block : patterns->GetAllBlocks()) {
    book.emplace_back(Contact(block->name, static_cast<int32_t>(block->id),
                              services::StoredCallType(block->callType)),
                      SupServiceSet());
    // A contact with nothing stored keeps the empty set.
    FillSupServiceSet(stored, book.back().second, static_cast<int>(block->id), gAllProperties);
  }
  GroupAddressBook(book);
  CMCFG_TRACE(this, "LoadAddressBook: extension %s, number of contacts = %u.\n",
              extension->name.c_str(), static_cast<unsigned>(book.size()));
  return true;
}
