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
// member as it is; saving writes the values changed since the file was read
// and keeps whatever else the file holds.
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

// The value texts of all fields, in table order: what the file holds for
// them as far as the owner knows. Save compares against it.
using FieldTexts = std::vector<std::string>;

template <typename Owner, size_t N>
FieldTexts FormatFields(const Owner& owner, const SettingField<Owner> (&fields)[N]) {
  FieldTexts texts;
  for (const SettingField<Owner>& field : fields)
    std::visit([&](auto member) { texts.push_back(FormatValue(owner.*member)); }, field.member);
  return texts;
}

// Reads the file at `path` into `owner` and records the texts in `known`.
// Not ok (both untouched) when the file is missing or cannot be read.
template <typename Owner, size_t N>
cfg::Status LoadFields(const std::string& path, const SettingField<Owner> (&fields)[N],
                       Owner* owner, FieldTexts* known) {
  cfg::Document doc;
  cfg::Status status = cfg::LoadDocument(path, &doc);
  if (!status.ok()) return status;
  ReadFields(doc, fields, owner);
  *known = FormatFields(*owner, fields);
  return status;
}

// Writes the fields whose value differs from `known` into the file, under
// its lock, keeping the rest of the file; so values another process saved
// meanwhile survive unless this owner changed them too. On success `known`
// takes the written texts. True also when nothing had changed.
template <typename Owner, size_t N>
bool SaveFields(const std::string& path, const SettingField<Owner> (&fields)[N], const Owner& owner,
                FieldTexts* known) {
  try {
    FieldTexts now = FormatFields(owner, fields);
    cfg::Status status = cfg::UpdateDocument(path, [&](cfg::Document& doc) {
      bool changed = false;
      for (size_t i = 0; i < N; ++i) {
        if (known->size() == N && (*known)[i] == now[i]) continue;
        cfg::Section* section = doc.Find(fields[i].section);
        if (section == nullptr) section = &doc.Add(fields[i].section);
        doc.Set(*section, fields[i].key, now[i]);
        changed = true;
      }
      return changed;
    });
    if (!status.ok()) return false;
    known->swap(now);
    return true;
  } catch (...) {  // out of memory: report, never throw out of the library
    return false;
  }
}

}  // namespace blocks

#endif  // CMCFG_PLATFORM_BLOCKS_SETTINGS_FIELDS_H_
