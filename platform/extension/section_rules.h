#ifndef CMCFG_PLATFORM_EXTENSION_SECTION_RULES_H_
#define CMCFG_PLATFORM_EXTENSION_SECTION_RULES_H_

#include <string_view>

#include "platform/base/key_rules.h"

namespace extdb {

// What the extension database makes of one section of an extension or
// attendant file, for checkers: the keys it takes, and for an entry of a
// numbered list ("speed_dial 3", "contact 3") the list and the entry's id.
struct SectionReading {
  const cfg::KeyRules* keys = nullptr;  // nullptr: the section is never read
  const char* list = "";                // "speed dial", "contact" or ""
  unsigned long id = 0;                 // the entry's id in `list`
};

// How the database reads a section named `name`. The rules are static and
// shared; thread-safe.
SectionReading ReadingOf(std::string_view name);

// The keys the database reads from "system.cfg" of the extension database,
// by section.
const cfg::SectionRules& SystemFileRules();

}  // namespace extdb

#endif  // CMCFG_PLATFORM_EXTENSION_SECTION_RULES_H_
