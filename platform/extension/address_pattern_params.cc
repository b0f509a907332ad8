#include "platform/extension/address_pattern_params.h"

#include <memory>
#include <set>
#include <string>

#include "platform/base/field_table.h"
#include "platform/base/value_codec.h"
#include "platform/extension/extension_rep.h"

namespace {

const cfg::Field<AddressPatternBlock> kContactFields[] = {
    {"name", &AddressPatternBlock::name},
    {"call_type", &AddressPatternBlock::callType},
};

}  // namespace

bool extdb::ContactId(std::string_view name, unsigned long* id) {
  static const std::string_view kPrefix = "contact ";
  if (name.size() <= kPrefix.size() || name.substr(0, kPrefix.size()) != kPrefix) return false;
  std::string_view rest = name.substr(kPrefix.size());
  if (rest.find(' ') != std::string_view::npos) return false;
  return cfg::ParseValue(rest, id);
}

const cfg::KeyRules& extdb::ContactRules() {
  static const cfg::KeyRules kRules = cfg::FieldRules(kContactFields);
  return kRules;
}

AddressPatternParams::AddressPatternParams() : rep_(new Rep) {}

AddressPatternParams::~AddressPatternParams() = default;

AddressPatternBlock* AddressPatternParams::GetBlock(unsigned long id) const {
  for (const auto& block : rep_->blocks)
    if (block->id == id) return block.get();
  return nullptr;
}

std::list<AddressPatternBlock*> AddressPatternParams::GetAllBlocks() const {
  std::list<AddressPatternBlock*> all;
  for (const auto& block : rep_->blocks) all.push_back(block.get());
  return all;
}

AddressPatternBlock* AddressPatternParams::CreateBlock() {
  AddressPatternBlock* block = new AddressPatternBlock;
  block->id = rep_->nextId++;
  return block;
}

void AddressPatternParams::Refresh() {
  const cfg::Document& doc = rep_->owner->doc;
  std::set<unsigned long> seen;
  for (const cfg::Section& section : doc.sections()) {
    unsigned long id = 0;
    if (!extdb::ContactId(section.name, &id) || !seen.insert(id).second) continue;
    AddressPatternBlock* block = GetBlock(id);
    if (block == nullptr) {
      rep_->blocks.push_back(std::make_unique<AddressPatternBlock>());
      block = rep_->blocks.back().get();
      block->id = id;
    }
    // A key gone from the file since the last read falls back.
    block->name.clear();
    block->callType = 0;
    cfg::ReadFields(section, kContactFields, block);
    if (id >= rep_->nextId) rep_->nextId = id + 1;
  }
  // Contacts removed from the file go, with their services.
  for (auto it = rep_->blocks.begin(); it != rep_->blocks.end();) {
    if (seen.count((*it)->id)) {
      ++it;
      continue;
    }
    rep_->accessors.erase(it->get());
    it = rep_->blocks.erase(it);
  }
}

SupServAccessor* AddressPatternParams::GetSupServAccessor(AddressPatternBlock* block, bool create) {
  if (block == nullptr || GetBlock(block->id) != block) return nullptr;
  auto it = rep_->accessors.find(block);
  if (it != rep_->accessors.end()) return it->second.get();
  std::unique_ptr<SupServAccessor> accessor(new SupServAccessor);
  accessor->rep_->owner = rep_->owner;
  accessor->rep_->block = block;
  unsigned found = 0;
  extdb::ReadServices(rep_->owner->doc, block->id, extdb::kAllServices, accessor.get(), &found);
  if (found == 0 && !create) return nullptr;  // nothing stored for this contact
  SupServAccessor* kept = accessor.get();
  rep_->accessors.emplace(block, std::move(accessor));
  return kept;
}
