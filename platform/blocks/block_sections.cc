#include "platform/blocks/block_sections.h"

#include <limits>

namespace blocks {

std::string SectionName(unsigned long id) { return std::to_string(id); }

bool ParseBlockId(std::string_view name, unsigned long* id) {
  if (name.empty()) return false;
  const unsigned long kMax = std::numeric_limits<unsigned long>::max();
  unsigned long value = 0;
  for (char c : name) {
    if (c < '0' || c > '9') return false;
    unsigned long digit = static_cast<unsigned long>(c - '0');
    if (value > (kMax - digit) / 10) return false;
    value = value * 10 + digit;
  }
  *id = value;
  return true;
}

size_t FindBlockSection(const cfg::Document& doc, unsigned long id) {
  for (size_t i = 0; i < doc.size(); ++i) {
    unsigned long found = 0;
    if (ParseBlockId(doc[i].name, &found) && found == id) return i;
  }
  return doc.size();
}

unsigned long LargestBlockId(const cfg::Document& doc) {
  unsigned long largest = 0;
  for (const cfg::Section& section : doc.sections()) {
    unsigned long id = 0;
    if (ParseBlockId(section.name, &id) && id > largest) largest = id;
  }
  return largest;
}

size_t EraseBlockSections(cfg::Document* doc, unsigned long id) {
  size_t erased = 0;
  for (size_t i = doc->size(); i-- > 0;) {
    unsigned long found = 0;
    if (ParseBlockId((*doc)[i].name, &found) && found == id) {
      doc->Erase(i);
      ++erased;
    }
  }
  return erased;
}

}  // namespace blocks
