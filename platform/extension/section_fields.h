#ifndef CMCFG_PLATFORM_EXTENSION_SECTION_FIELDS_H_
#define CMCFG_PLATFORM_EXTENSION_SECTION_FIELDS_H_

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <variant>

#include "platform/base/document.h"
#include "platform/blocks/value_codec.h"

namespace extdb {

// Table-driven mapping between the members of a parameter block and the
// keys of one section. A key that is missing or does not parse leaves the
// member at its default.
template <typename Block>
struct Field {
  using Member = std::variant<int32_t Block::*, uint32_t Block::*, std::string Block::*,
                              std::list<std::string> Block::*>;
  const char* key;
  Member member;
};

template <typename Block, size_t N>
void ReadFields(const cfg::Section& section, const Field<Block> (&fields)[N], Block* block) {
  for (const Field<Block>& field : fields) {
    const cfg::Entry* entry = section.Find(field.key);
    if (entry == nullptr) continue;
    std::visit([&](auto member) { blocks::ParseValue(entry->value, &(block->*member)); },
               field.member);
  }
}

template <typename Block, size_t N>
void WriteFields(const Block& block, const Field<Block> (&fields)[N], cfg::Document* doc,
                 cfg::Section* section) {
  for (const Field<Block>& field : fields) {
    std::visit([&](auto member) { doc->Set(*section, field.key, blocks::FormatValue(block.*member)); },
               field.member);
  }
}

// The entries of `section` whose key is `prefix` followed by a number
// ("destination_1", "destination_2", ...), in file order.
template <typename Visit>
void ForNumberedKeys(const cfg::Section& section, std::string_view prefix, Visit visit) {
  for (const cfg::Entry& entry : section.entries) {
    if (entry.key.size() <= prefix.size() || entry.key.substr(0, prefix.size()) != prefix) continue;
    if (entry.key.find_first_not_of("0123456789", prefix.size()) != std::string_view::npos) continue;
    visit(entry.value);
  }
}

}  // namespace extdb

#endif  // CMCFG_PLATFORM_EXTENSION_SECTION_FIELDS_H_
