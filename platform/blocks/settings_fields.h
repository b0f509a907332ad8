#ifndef CMCFG_PLATFORM_BLOCKS_SETTINGS_FIELDS_H_
#define CMCFG_PLATFORM_BLOCKS_SETTINGS_FIELDS_H_

#include <cstddef>
#include <string>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/field_table.h"
#include "platform/base/document_store.h"

namespace blocks {

// The fields of a settings file, spread over its sections: each field of
// the settings class names its section beside its key and member
// (field_table.h). A key that is missing or does not parse leaves the
// member as it is; saving writes the values changed since the file was read
// and keeps whatever else the file holds.
template <typename Owner>
struct SettingField {
  const char* section;
  cfg::Field<Owner> field;
};

// A view of a static table of SettingFields; the table outlives it.
template <typename Owner>
class SettingTable {
 public:
  template <size_t N>
  SettingTable(const SettingField<Owner> (&fields)[N]) : begin_(fields), size_(N) {}  // NOLINT

  const SettingField<Owner>* begin() const { return begin_; }
  const SettingField<Owner>* end() const { return begin_ + size_; }
  size_t size() const { return size_; }
  const SettingField<Owner>& operator[](size_t i) const { return begin_[i]; }

 private:
  const SettingField<Owner>* begin_;
  size_t size_;
};

template <typename Owner>
void ReadSettings(const cfg::Document& doc, SettingTable<Owner> fields, Owner* owner) {
  for (const SettingField<Owner>& setting : fields) {
    const cfg::Section* section = doc.Find(setting.section);
    if (section == nullptr) continue;
    if (const cfg::Entry* entry = section->Find(setting.field.key))
      cfg::ParseField(entry->value, setting.field, owner);
  }
}

// The keys ReadSettings takes, by section.
template <typename Owner>
cfg::SectionRules RulesOf(SettingTable<Owner> fields) {
  cfg::SectionRules rules;
  for (const SettingField<Owner>& setting : fields)
    rules[setting.section].push_back(cfg::FieldRule(setting.field));
  return rules;
}

// The value texts of all fields, in table order: what the file holds for
// them as far as the owner knows. Save compares against it.
using FieldTexts = std::vector<std::string>;

template <typename Owner>
FieldTexts FormatFields(const Owner& owner, SettingTable<Owner> fields) {
  FieldTexts texts;
  texts.reserve(fields.size());
  for (const SettingField<Owner>& setting : fields)
    texts.push_back(cfg::FormatField(owner, setting.field));
  return texts;
}

// Reads the file at `path` into `owner` and records the texts in `known`.
// Not ok (both untouched) when the file is missing or cannot be read.
template <typename Owner>
cfg::Status LoadFields(const std::string& path, SettingTable<Owner> fields, Owner* owner,
                       FieldTexts* known) {
  cfg::Document doc;
  cfg::Status status = cfg::LoadDocument(path, &doc);
  if (!status.ok()) return status;
  ReadSettings(doc, fields, owner);
  *known = FormatFields(*owner, fields);
  return status;
}

// Writes the fields whose value differs from `known` into the file, under
// its lock, keeping the rest of the file; so values another process saved
// meanwhile survive unless this owner changed them too. On success `known`
// takes the written texts. True also when nothing had changed. False, the
// file untouched, when it cannot be written or a list holds a name with a
// comma (cfg::CanWriteField).
template <typename Owner>
bool SaveFields(const std::string& path, SettingTable<Owner> fields, const Owner& owner,
                FieldTexts* known) {
  for (const SettingField<Owner>& setting : fields)
    if (!cfg::CanWriteField(owner, setting.field)) return false;
  try {
    FieldTexts now = FormatFields(owner, fields);
    const size_t n = fields.size();
    cfg::Status status = cfg::UpdateDocument(path, [&](cfg::Document& doc) {
      bool changed = false;
      for (size_t i = 0; i < n; ++i) {
        if (known->size() == n && (*known)[i] == now[i]) continue;
        cfg::Section* section = doc.Find(fields[i].section);
        if (section == nullptr) section = &doc.Add(fields[i].section);
        doc.Set(*section, fields[i].field.key, now[i]);
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
