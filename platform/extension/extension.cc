#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "platform/base/document_store.h"
#include "platform/base/file_system.h"
#include "platform/extension/ext_property.h"
#include "platform/extension/extension_rep.h"
#include "platform/extension/value_rules.h"

bool Extension::Rep::Read() {
  if (changing) return readable;
  cfg::Document fresh;
  readable = cfg::LoadDocument(path, &fresh).ok();
  doc = std::move(fresh);  // empty after a failed read: nothing stale is decoded
  if (!readable) return false;
  const cfg::Section* section = doc.Find(extdb::kExtensionSection);
  const cfg::Entry* description = section ? section->Find("description") : nullptr;
  text = description ? std::string(description->value) : std::string();
  return true;
}

cfg::Status Extension::Rep::Write(const std::function<cfg::Status(cfg::Document&)>& edit) {
  if (!changing) return self->Update([&] { return Write(edit).ok(); });
  cfg::Status s = edit(doc);
  if (s.ok()) {
    changed = true;
  } else if (refused.ok()) {
    refused = s;
  }
  return s;
}

const std::string gAny = "*";
const unsigned int gAllProperties = 0xFFFFFFFFu;

Extension::Extension() : rep_(new Rep) { rep_->self = this; }

Extension::~Extension() = default;

const std::string& Extension::GetName() const { return rep_->name; }
ExtType Extension::GetType() const { return rep_->type; }
const std::string& Extension::GetText() const { return rep_->text; }

bool Extension::LoadProperty(unsigned mask) {
  if (!rep_->readable) return false;
  extdb::DecodeProperties(rep_->doc, mask & ~rep_->loaded, rep_.get());
  if ((mask & kPropAddressPatterns) && !(rep_->loaded & kPropAddressPatterns)) {
    if (rep_->addressBook == nullptr) {
      rep_->addressBook.reset(new AddressPatternParams);
      rep_->addressBook->rep_->owner = rep_.get();
    }
    rep_->addressBook->Refresh();
  }
  rep_->loaded |= mask;
  return true;
}

bool Extension::ReloadProperty(unsigned mask) {
  // Blocks are refreshed in place: pointers handed out earlier stay valid.
  // When the file is gone they stay allocated but are no longer served.
  rep_->loaded &= ~mask;
  if (!rep_->Read()) return false;
  return LoadProperty(mask);
}

bool Extension::HasSection(unsigned property) const {
  return extdb::HasPropertySection(rep_->doc, property);
}

namespace {

// The properties an extension of each kind has: those its loader reads.
// Another kind's property is missing, not a block of defaults. Attendants
// keep every property: their records are read field by field.
unsigned KindProperties(ExtType type) {
  const unsigned kCommon = kPropSipSettings | kPropPersonalInfo | kPropCodecs;
  switch (type) {
    case kExtUser:
      return kCommon | kPropServices | kPropTimeouts | kPropSpeedDial | kPropServiceCodes |
             kPropBusyRedial | kPropPstnAgent | kPropAutoCall | kPropAddressPatterns;
    case kExtPickup:
    case kExtPaging:
      return kCommon | kPropAccessList | kPropPickupGroup;
    case kExtCallPark:
      return kCommon | kPropCallPark;
    default:
      return ~0u;
  }
}

// Loaded properties of the extension's kind always have their block
// (defaults for an absent section).
template <typename Block>
Block* LoadedBlock(Extension::Rep& rep) {
  const extdb::Property<Block>& row = extdb::PropertyOf<Block>();
  std::optional<Block>& block = rep.*row.slot;
  return (rep.loaded & row.mask & KindProperties(rep.type)) && block ? &*block : nullptr;
}

}  // namespace

ExtSipSettingsParams* Extension::GetSipSettingsParams() {
  return LoadedBlock<ExtSipSettingsParams>(*rep_);
}
ExtPersonalInfoParams* Extension::GetPersonalInfoParams() {
  return LoadedBlock<ExtPersonalInfoParams>(*rep_);
}
ExtServicesParams* Extension::GetServicesParams() { return LoadedBlock<ExtServicesParams>(*rep_); }
ExtTimeoutsParams* Extension::GetTimeoutsParams() { return LoadedBlock<ExtTimeoutsParams>(*rep_); }
ExtCodecParams* Extension::GetCodecParams() { return LoadedBlock<ExtCodecParams>(*rep_); }
ExtServiceCodesParams* Extension::GetServiceCodesParams() {
  return LoadedBlock<ExtServiceCodesParams>(*rep_);
}
ExtPstnAgentParams* Extension::GetPstnAgentParams() {
  return LoadedBlock<ExtPstnAgentParams>(*rep_);
}
CallParkGeneralParams* Extension::GetCallParkParams() {
  return LoadedBlock<CallParkGeneralParams>(*rep_);
}
AccessListParams* Extension::GetAccessListParams() { return LoadedBlock<AccessListParams>(*rep_); }
PickupGroupParams* Extension::GetPickupGroupParams() {
  return LoadedBlock<PickupGroupParams>(*rep_);
}
ExtBusyRedialParams* Extension::GetBusyRedialParams() {
  return LoadedBlock<ExtBusyRedialParams>(*rep_);
}
ExtAutoCallParams* Extension::GetAutoCallParams() { return LoadedBlock<ExtAutoCallParams>(*rep_); }
AttGeneralParams* Extension::GetAttGeneralParams() { return LoadedBlock<AttGeneralParams>(*rep_); }

std::list<SpeedDialBlock*> Extension::GetSpeedDialBlocks() {
  std::list<SpeedDialBlock*> blocks;
  if (rep_->loaded & kPropSpeedDial)
    for (SpeedDialBlock& block : rep_->speedDial) blocks.push_back(&block);
  return blocks;
}

AddressPatternParams* Extension::GetAddressPatternParams() {
  return (rep_->loaded & kPropAddressPatterns) ? rep_->addressBook.get() : nullptr;
}

bool Extension::AddBlock(unsigned property, AddressPatternBlock* block) {
  std::unique_ptr<AddressPatternBlock> owned(block);
  if (property != kPropAddressPatterns || block == nullptr) return false;
  LoadProperty(kPropAddressPatterns);
  if (rep_->addressBook == nullptr) return false;
  AddressPatternParams::Rep& book = *rep_->addressBook->rep_;
  cfg::Status s = rep_->Write([&](cfg::Document& doc) {
    cfg::Status name = extdb::CheckContactName(block->callType, block->name);
    if (!name.ok()) return name;
    // Another process may have added contacts since we read the file:
    // never reuse an id the file already has.
    while (doc.Find(extdb::ContactSection(block->id)) != nullptr) block->id = book.nextId++;
    extdb::WriteContact(*block, &doc);
    return cfg::Status::OK();
  });
  if (!s.ok()) return false;
  if (block->id >= book.nextId) book.nextId = block->id + 1;
  book.blocks.push_back(std::move(owned));
  return true;
}

cfg::Status Extension::Update(const std::function<bool()>& body) {
  Rep& r = *rep_;
  if (r.changing) {
    body();
    return r.refused;
  }
  r.refused = cfg::Status::OK();
  cfg::Status gone;
  cfg::Status s = cfg::UpdateDocument(r.path, [&](cfg::Document& doc) {
    // An extension removed meanwhile is not brought back by a change to it.
    if (doc.empty() && doc.source().empty() && !cfg::FileSystem::Default()->FileExists(r.path)) {
      gone = cfg::Status::NotFound(r.path + " is gone");
      return false;
    }
    std::swap(r.doc, doc);
    r.readable = true;
    r.changing = true;
    r.changed = false;
    const unsigned loaded = r.loaded;
    r.loaded = 0;
    LoadProperty(loaded);  // decided on the file as it is now
    bool keep = false;
    try {
      keep = body();
    } catch (...) {
      r.changing = false;
      std::swap(r.doc, doc);
      throw;
    }
    r.changing = false;
    std::swap(r.doc, doc);
    return keep && r.changed && r.refused.ok();
  });
  ReloadProperty(r.loaded);  // what was stored, or what is there
  if (!gone.ok()) return gone;
  if (!r.refused.ok()) {
    cfg::ReportStoreFailure(r.path, r.refused);
    return r.refused;
  }
  return s;
}

