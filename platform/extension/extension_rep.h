#ifndef CMCFG_PLATFORM_EXTENSION_EXTENSION_REP_H_
#define CMCFG_PLATFORM_EXTENSION_EXTENSION_REP_H_

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/base/document.h"
#include "platform/base/key_rules.h"
#include "platform/extension/extension_manager.h"

// Internals shared by the extension library's units.

namespace extdb {

// Every service of a contact, one bit each (0x001 .. 0x200).
constexpr unsigned kAllServices = 0x3FF;

// Folder of each kind inside the database, by ExtType.
const char* KindFolder(ExtType type);
// True for a name that can be an extension's file name: not empty, no
// "/", no "..", no control character.
bool IsValidName(const std::string& name);
// Natural order: digit runs compare by value ("2" < "10"), the rest byte
// by byte; ties fall back to plain order so the order is total.
bool NaturalLess(const std::string& a, const std::string& b);

// Section names of the extension file.
extern const char kExtensionSection[];  // "extension"
extern const char kSystemSection[];       // "database", in system.cfg
extern const char kSystemAttendantKey[];  // "system_attendant"
std::string ContactSection(unsigned long id);                       // "contact 3"
std::string ServiceSection(unsigned long id, const char* service);  // "contact 3 forward_busy"
// The file names of the services, by mask bit (0x001 .. 0x200), or nullptr.
const char* ServiceName(unsigned bit);

// A forward destination or access entry as "enabled,type,address" (the
// address last, so it may hold commas).
bool ParseAddressEntry(std::string_view text, AddrInfo* out);
std::string FormatAddressEntry(const AddrInfo& info);

// Decodes the blocks of `mask` from the file into the extension's rep: a
// property without its section gets a block of defaults.
void DecodeProperties(const cfg::Document& doc, unsigned mask, Extension::Rep* rep);
// Whether the file has the section(s) of one property.
bool HasPropertySection(const cfg::Document& doc, unsigned property);
// The id of a contact's own section ("contact 12"), or false for any other
// section (a service section has a third word).
bool ContactId(std::string_view name, unsigned long* id);

// Services of one contact: read from / written to the file's sections.
void ReadServices(const cfg::Document& doc, unsigned long id, unsigned mask, SupServAccessor* out,
                  unsigned* found);
void WriteServices(const SupServAccessor& in, unsigned long id, unsigned mask, cfg::Document* doc);
// False when a service of `mask` holds a list member that would not read
// back as written: a hunt target's or many-ringing number with a comma.
bool CanWriteServices(const SupServAccessor& in, unsigned mask);
// Writes a contact's own section (name and call type).
void WriteContact(const AddressPatternBlock& block, cfg::Document* doc);

// The keys the readers take from each kind of section (section_rules.h
// puts them together), or nullptr for a name of another kind: a
// one-section property's section, a "speed_dial ID" section, a contact's
// own section, and a contact's service section "contact ID SERVICE". *id
// is set to the entry's or the contact's id.
const cfg::KeyRules* PropertySectionRules(std::string_view name);
const cfg::KeyRules* SpeedDialRules(std::string_view name, unsigned long* id);
const cfg::KeyRules& ContactRules();
const cfg::KeyRules* ServiceSectionRules(std::string_view name, unsigned long* id);

// True for a key that is `prefix` followed by a number ("destination_1").
inline bool IsNumberedKey(std::string_view key, std::string_view prefix) {
  return key.size() > prefix.size() && key.substr(0, prefix.size()) == prefix &&
         key.find_first_not_of("0123456789", prefix.size()) == std::string_view::npos;
}

// Calls visit(value) for the entries of `section` with a numbered key of
// `prefix`, in file order.
template <typename Visit>
void ForNumberedKeys(const cfg::Section& section, std::string_view prefix, Visit visit) {
  for (const cfg::Entry& entry : section.entries)
    if (IsNumberedKey(entry.key, prefix)) visit(entry.value);
}

}  // namespace extdb

struct Extension::Rep {
  std::string name;
  ExtType type = kExtUser;
  std::string path;  // the extension's file
  cfg::Document doc;      // the file as last read; empty when that read failed
  bool readable = false;  // the last read succeeded
  unsigned loaded = 0;    // properties decoded from it so far
  std::string text;

  // A property's block once decoded; kept (and its address with it) when
  // the property is decoded again.
  std::optional<ExtSipSettingsParams> sip;
  std::optional<ExtPersonalInfoParams> personal;
  std::optional<ExtServicesParams> services;
  std::optional<ExtTimeoutsParams> timeouts;
  std::optional<ExtCodecParams> codecs;
  std::optional<ExtServiceCodesParams> serviceCodes;
  std::optional<ExtPstnAgentParams> pstnAgent;
  std::optional<CallParkGeneralParams> callPark;
  std::optional<AccessListParams> accessList;
  std::optional<PickupGroupParams> pickupGroup;
  std::optional<ExtBusyRedialParams> busyRedial;
  std::optional<ExtAutoCallParams> autoCall;
  std::optional<AttGeneralParams> attendant;
  // List nodes never move: entries handed out stay where they are.
  std::list<SpeedDialBlock> speedDial;
  std::list<SpeedDialBlock> retiredSpeedDial;
  std::unique_ptr<AddressPatternParams> addressBook;  // made when first loaded

  // Reads the file; false when it is missing or unreadable (the document
  // is then empty and `readable` false). Within an Update the reading made
  // under the lock stays: true.
  bool Read();

  // Applies `edit` to the file: within an Update to its reading, otherwise
  // as an Update of its own. A failed edit (a refused value) fails the
  // whole Update.
  cfg::Status Write(const std::function<cfg::Status(cfg::Document&)>& edit);

  Extension* self = nullptr;
  bool changing = false;  // within Update: `doc` is the reading under the lock
  bool changed = false;   // an edit went into that reading
  cfg::Status refused;    // the first edit that failed within it
};

struct AddressPatternParams::Rep {
  Extension::Rep* owner = nullptr;
  std::list<std::unique_ptr<AddressPatternBlock>> blocks;
  std::map<AddressPatternBlock*, std::unique_ptr<SupServAccessor>> accessors;
  unsigned long nextId = 1;
};

struct SupServAccessor::Rep {
  Extension::Rep* owner = nullptr;
  AddressPatternBlock* block = nullptr;
};

#endif  // CMCFG_PLATFORM_EXTENSION_EXTENSION_REP_H_
