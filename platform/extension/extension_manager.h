#ifndef CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_H_
#define CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_H_

#include <cstddef>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>

#include "cmcfg/types.h"
#include "platform/base/status.h"
#include "platform/extension/ext_params.h"
#include "platform/extension/ss_params.h"

namespace cfg {
class Document;
}

// The any-caller contact's name, and the mask of every property or service.
extern const std::string gAny;
extern const unsigned int gAllProperties;

class AddressPatternParams;
class SupServAccessor;

// One contact of an extension's address book (an address pattern) and the
// stored supplementary services that belong to it.
struct AddressPatternBlock {
  unsigned long id = 0;
  std::string name;        // number or pattern with '?' and '*'; gAny for any caller
  int32_t callType = 0;    // a CallType
};

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

// An attendant console's record.
class CHAttendant : public Extension {
 public:
  ~CHAttendant() override;

 private:
  friend class ExtensionManager;
  CHAttendant();
};

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

// The stored supplementary services of one contact.
class SupServAccessor {
 public:
  // Reads the services from the extension's file (all, or those of mask).
  bool LoadAll();
  bool Load(unsigned mask);
  // Writes the services of mask back to the extension's file: within
  // Extension::Update into its reading, otherwise as an Update of its own.
  // Only the keys whose values differ from the file's are written; other
  // contacts and services stay. False, nothing written, when the contact is
  // no longer in the file, the file cannot be written, or a value would
  // not read back as written (an added forward destination that fails
  // CheckDestination, a hunt target's or many-ringing number with a
  // comma); a refusal is reported through the store's reporter.
  bool Store(unsigned mask);

  SSClirParams clir;
  SSBlockCallParams incomingBlocking;
  SSBlockCallParams outgoingBlocking;
  SSDistRingingParams distRinging;
  SSHuntRingingParams hunt;
  SSManyRingingParams manyRinging;
  SSForwardParams forwardUnconditional;
  SSForwardParams forwardNoAnswer;
  SSForwardParams forwardBusy;
  SSIntercomParams intercom;

  struct Rep;  // the library's own

 private:
  friend class AddressPatternParams;
  friend struct std::default_delete<SupServAccessor>;
  SupServAccessor();
  ~SupServAccessor();
  std::unique_ptr<Rep> rep_;
};

#endif  // CMCFG_PLATFORM_EXTENSION_EXTENSION_MANAGER_H_
