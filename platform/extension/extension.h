#ifndef CMCFG_PLATFORM_EXTENSION_EXTENSION_H_
#define CMCFG_PLATFORM_EXTENSION_EXTENSION_H_

#include <functional>
#include <list>
#include <memory>
#include <string>

#include "cmcfg/types.h"
#include "platform/base/status.h"
#include "platform/extension/address_pattern_params.h"
#include "platform/extension/ext_params.h"

class ExtensionManager;

// The any-caller contact's name, and the mask of every property or service.
extern const std::string gAny;
extern const unsigned int gAllProperties;

// An extension's record in the extension database: its parameter blocks.
// Owned by the ExtensionManager that returned it, and valid as long as the
// manager keeps it (see ExtensionManager); so are the blocks, lists and
// accessors it hands out. Not thread-safe.
//
// A property whose section is absent from the file reads as a block of the
// documented defaults: once LoadProperty has decoded a property from a file
// that was read, its getter returns a block, not nullptr, unless a later
// re-read of it fails. HasSection tells whether the file really has the
// section.
class Extension {
 public:
  virtual ~Extension();

  const std::string& GetName() const;
  ExtType GetType() const;
  // Free text of the extension (its description).
  const std::string& GetText() const;

  // Makes the blocks of the properties in `mask` available (the file is
  // read once, when the manager fetches the extension; this only decodes).
  // False, decoding nothing, when the last read of the file failed.
  bool LoadProperty(unsigned mask);
  // Reads the file again and refreshes the blocks of `mask` in place, so
  // block pointers handed out before stay valid. False when the file cannot
  // be read any more: the properties of `mask` then count as not loaded
  // (their getters return nullptr, their blocks stay allocated) and
  // LoadProperty fails until a re-read succeeds.
  bool ReloadProperty(unsigned mask);

  // True when the file as last read has the section of `property` (one
  // property bit; for speed dial and the address book: at least one such
  // section). Independent of what is loaded; for inspection tools, since
  // the getters give defaults for an absent section.
  bool HasSection(unsigned property) const;

  // The block of a property: its section's values, or the defaults when the
  // file has no such section. nullptr only when the property is not loaded
  // (never asked for, or its re-read failed).
  ExtSipSettingsParams* GetSipSettingsParams();
  ExtPersonalInfoParams* GetPersonalInfoParams();
  ExtServicesParams* GetServicesParams();
  ExtTimeoutsParams* GetTimeoutsParams();
  ExtCodecParams* GetCodecParams();
  ExtServiceCodesParams* GetServiceCodesParams();
  ExtPstnAgentParams* GetPstnAgentParams();
  CallParkGeneralParams* GetCallParkParams();
  AccessListParams* GetAccessListParams();
  PickupGroupParams* GetPickupGroupParams();
  ExtBusyRedialParams* GetBusyRedialParams();
  ExtAutoCallParams* GetAutoCallParams();
  // Either attendant property (0x2000 or 0x8000) loads this block.
  AttGeneralParams* GetAttGeneralParams();
  // Speed-dial entries in file order; empty when there are none or the
  // property is not loaded.
  std::list<SpeedDialBlock*> GetSpeedDialBlocks();
  // Address book (empty when the file has no contacts); nullptr only when
  // property 0x2 is not loaded.
  AddressPatternParams* GetAddressPatternParams();

  // Adds a block to a property and stores it; property 2 takes an
  // AddressPatternBlock, whose id moves past every id the file holds when
  // another writer took it meanwhile. Takes ownership. False, nothing
  // stored and the block deleted, when the store failed or refused the
  // contact's name (see value_rules.h; the refusal is reported).
  bool AddBlock(unsigned property, AddressPatternBlock* block);

  // Runs `body` as one change of the extension's file, decided on the file
  // as it is now: takes the file's lock, reads the file again (every block,
  // contact and accessor handed out is refreshed from that reading, as by
  // ReloadProperty of what is loaded) and runs `body`. The writes body makes
  // (AddBlock, SupServAccessor::Store) go into that reading, which is saved
  // once, atomically, when body returns true; false writes nothing. Then
  // the file is read again. OK, or why nothing was saved: the lock not had
  // in time, the file gone or unreadable, a value refused, the save failed;
  // each is also reported through the store's reporter. Within a change,
  // a nested Update just runs its body. Not thread-safe (as the extension).
  cfg::Status Update(const std::function<bool()>& body);

  struct Rep;  // the library's own

 protected:
  friend class ExtensionManager;
  Extension();
  std::unique_ptr<Rep> rep_;
};

#endif  // CMCFG_PLATFORM_EXTENSION_EXTENSION_H_
