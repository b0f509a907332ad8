#ifndef CMCFG_PLATFORM_BLOCKS_BLOCK_SECTIONS_H_
#define CMCFG_PLATFORM_BLOCKS_BLOCK_SECTIONS_H_

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/base/document.h"
#include "platform/base/value_codec.h"

namespace blocks {

// The section name of a block: its id in decimal ("section 3").
std::string SectionName(unsigned long id);

// The id a section name stands for: decimal digits only, within range.
// False for any other name (such sections hold no block and are kept as
// they are when the file is rewritten).
bool ParseBlockId(std::string_view name, unsigned long* id);

// Index of the first section holding block `id`, or doc.size().
size_t FindBlockSection(const cfg::Document& doc, unsigned long id);

// The largest block id in the document, 0 when there is none.
unsigned long LargestBlockId(const cfg::Document& doc);

// Erases every section holding block `id`; returns how many there were.
size_t EraseBlockSections(cfg::Document* doc, unsigned long id);

// Reads `key` of a block's section into *out when it is there and parses;
// otherwise *out keeps its value.
template <typename T>
void ReadKey(const cfg::Section& section, std::string_view key, T* out) {
  if (const cfg::Entry* entry = section.Find(key)) cfg::ParseValue(entry->value, out);
}

template <typename T>
void WriteKey(cfg::Document& doc, cfg::Section& section, std::string_view key, const T& value) {
  doc.Set(section, key, cfg::FormatValue(value));
}

}  // namespace blocks

#endif  // CMCFG_PLATFORM_BLOCKS_BLOCK_SECTIONS_H_
