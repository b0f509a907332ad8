#ifndef CMCFG_PLATFORM_EXTENSION_ADDRESS_PATTERN_PARAMS_H_
#define CMCFG_PLATFORM_EXTENSION_ADDRESS_PATTERN_PARAMS_H_

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "platform/extension/sup_serv_accessor.h"

class Extension;

// One contact of an extension's address book (an address pattern) and the
// stored supplementary services that belong to it.
struct AddressPatternBlock {
  unsigned long id = 0;
  std::string name;        // number or pattern with '?' and '*'; gAny for any caller
  int32_t callType = 0;    // a CallType
};

// An extension's address book: one block per contact.
class AddressPatternParams {
 public:
  AddressPatternBlock* GetBlock(unsigned long id) const;
  std::list<AddressPatternBlock*> GetAllBlocks() const;
  // A new empty block with a fresh id, owned by the caller until it is
  // handed to Extension::AddBlock.
  AddressPatternBlock* CreateBlock();
  // The stored services of a contact, or nullptr. Owned by the params.
  SupServAccessor* GetSupServAccessor(AddressPatternBlock* block, bool create);

  struct Rep;  // the library's own

 private:
  friend class Extension;
  friend struct std::default_delete<AddressPatternParams>;
  AddressPatternParams();
  ~AddressPatternParams();
  // Brings the blocks in line with the extension's file, keeping the
  // objects of contacts that are still there.
  void Refresh();
  std::unique_ptr<Rep> rep_;
};

#endif  // CMCFG_PLATFORM_EXTENSION_ADDRESS_PATTERN_PARAMS_H_
