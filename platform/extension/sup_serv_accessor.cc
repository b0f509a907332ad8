#include "platform/extension/sup_serv_accessor.h"

#include <set>
#include <string>

#include "platform/base/document_store.h"
#include "platform/extension/extension_rep.h"
#include "platform/extension/value_rules.h"

using extdb::kAllServices;

namespace {

void ResetServices(unsigned mask, SupServAccessor* a) {
  if (mask & 0x001) a->clir = SSClirParams();
  if (mask & 0x002) a->incomingBlocking = SSBlockCallParams();
  if (mask & 0x004) a->outgoingBlocking = SSBlockCallParams();
  if (mask & 0x008) a->distRinging = SSDistRingingParams();
  if (mask & 0x010) a->hunt = SSHuntRingingParams();
  if (mask & 0x020) a->manyRinging = SSManyRingingParams();
  if (mask & 0x040) a->forwardUnconditional = SSForwardParams();
  if (mask & 0x080) a->forwardNoAnswer = SSForwardParams();
  if (mask & 0x100) a->forwardBusy = SSForwardParams();
  if (mask & 0x200) a->intercom = SSIntercomParams();
  for (unsigned bit = 1; bit <= 0x200; bit <<= 1) {
    if (!(mask & bit)) continue;
    ParamsHeader* header = bit == 0x001   ? static_cast<ParamsHeader*>(&a->clir)
                           : bit == 0x002 ? &a->incomingBlocking
                           : bit == 0x004 ? &a->outgoingBlocking
                           : bit == 0x008 ? &a->distRinging
                           : bit == 0x010 ? &a->hunt
                           : bit == 0x020 ? &a->manyRinging
                           : bit == 0x040 ? &a->forwardUnconditional
                           : bit == 0x080 ? &a->forwardNoAnswer
                           : bit == 0x100 ? static_cast<ParamsHeader*>(&a->forwardBusy)
                                          : &a->intercom;
    header->property = bit;
  }
}

}  // namespace

SupServAccessor::SupServAccessor() : rep_(new Rep) { ResetServices(kAllServices, this); }

SupServAccessor::~SupServAccessor() = default;

bool SupServAccessor::LoadAll() { return Load(kAllServices); }

bool SupServAccessor::Load(unsigned mask) {
  if (rep_->owner == nullptr) return false;
  ResetServices(mask & kAllServices, this);
  unsigned found = 0;
  extdb::ReadServices(rep_->owner->doc, rep_->block->id, mask, this, &found);
  return rep_->owner->doc.Find(extdb::ContactSection(rep_->block->id)) != nullptr;
}

namespace {

// A forward destination this store adds must read back as written; those
// already in the file are not the writer's to judge.
cfg::Status CheckAddedDestinations(const SupServAccessor& in, const cfg::Document& doc,
                                   unsigned long id, unsigned mask) {
  for (unsigned bit : {0x040u, 0x080u, 0x100u}) {
    if (!(mask & bit)) continue;
    const SSForwardParams& forward = bit == 0x040   ? in.forwardUnconditional
                                     : bit == 0x080 ? in.forwardNoAnswer
                                                    : in.forwardBusy;
    const cfg::Section* section = doc.Find(extdb::ServiceSection(id, extdb::ServiceName(bit)));
    std::set<std::string> stored;
    if (section != nullptr)
      extdb::ForNumberedKeys(*section, "destination_",
                             [&](std::string_view v) { stored.insert(std::string(v)); });
    for (const AddrInfo& info : forward.destinations) {
      if (stored.count(extdb::FormatAddressEntry(info))) continue;
      cfg::Status s = extdb::CheckDestination(info.type, info.address);
      if (!s.ok()) return s;
    }
  }
  return cfg::Status::OK();
}

}  // namespace

bool SupServAccessor::Store(unsigned mask) {
  if (rep_->owner == nullptr) return false;
  const AddressPatternBlock& block = *rep_->block;
  cfg::Status s = rep_->owner->Write([&](cfg::Document& doc) {
    if (!extdb::CanWriteServices(*this, mask))
      return cfg::Status::InvalidArgument(
          "a hunt target or many-ringing number holds a comma; it would be read as two");
    // A contact another writer removed is not brought back.
    if (doc.Find(extdb::ContactSection(block.id)) == nullptr)
      return cfg::Status::NotFound(extdb::ContactSection(block.id) + " is no longer in the file");
    cfg::Status added = CheckAddedDestinations(*this, doc, block.id, mask);
    if (!added.ok()) return added;
    extdb::WriteServices(*this, block.id, mask & kAllServices, &doc);
    return cfg::Status::OK();
  });
  return s.ok();
}
