#ifndef CMCFG_PLATFORM_BLOCKS_SETTINGS_FIELDS_H_
#define CMCFG_PLATFORM_BLOCKS_SETTINGS_FIELDS_H_

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <variant>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/file_system.h"
#include "platform/blocks/value_codec.h"

namespace blocks {

// Table-driven mapping between the public members of a settings class and
// the "key = value" lines of its file: each field names its section, its
// key and the member. A key that is missing or does not parse leaves the
// member as it is; saving rewrites every key of the table and keeps
// whatever else the file holds.
template <typename Owner>
struct SettingField {
  using Member =
      std::variant<int32_t Owner::*, uint32_t Owner::*, uint16_t Owner::*, std::string Owner::*,
                   std::list<std::string> Owner::*, std::vector<unsigned long> Owner::*>;
  const char* section;
  const char* key;
  Member member;
};

template <typename Owner, size_t N>
void ReadFields(const cfg::Document& doc, const SettingField<Owner> (&fields)[N], Owner* owner) {
  for (const SettingField<Owner>& field : fields) {
    const cfg::Section* section = doc.Find(field.section);
    if (section == nullptr) continue;
    const cfg::Entry* entry = section->Find(field.key);
    if (entry == nullptr) continue;
    std::visit([&](auto member) { ParseValue(entry->value, &(owner->*member)); }, field.member);
  }
}

template <typename Owner, size_t N>
void WriteFields(const Owner& owner, const SettingField<Owner> (&fields)[N], cfg::Document* doc) {
  for (const SettingField<Owner>& field : fields) {
    cfg::Section* section = doc->Find(field.section);
    if (section == nullptr) section = &doc->Add(field.section);
    std::visit([&](auto member) { doc->Set(*section, field.key, FormatValue(owner.*member)); },
               field.member);
  }
}

// Reads the file at `path` into `owner`. Not ok (owner untouched) when the
// file is missing or cannot be read.
template <typename Owner, size_t N>
cfg::Status LoadFields(const std::string& path, const SettingField<Owner> (&fields)[N],
                       Owner* owner) {
  cfg::Document doc;
  cfg::Status status = cfg::LoadDocument(path, &doc);
  if (status.ok()) ReadFields(doc, fields, owner);
  return status;
}

// Writes every field into the file under its lock, keeping the rest of it.
template <typename Owner, size_t N>
bool SaveFields(const std::string& path, const SettingField<Owner> (&fields)[N],
                const Owner& owner) {
  try {
    cfg::Status status = cfg::UpdateDocument(path, [&](cfg::Document& doc) {
      WriteFields(owner, fields, &doc);
      return true;
    });
    return status.ok();
  } catch (...) {  // out of memory: report, never throw out of the library
    return false;
  }
}

}  // namespace blocks

#endif  // CMCFG_PLATFORM_BLOCKS_SETTINGS_FIELDS_H_
