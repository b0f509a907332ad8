// Decoding of an extension file's sections into its parameter blocks.
#include <string>

#include "platform/base/field_table.h"
#include "platform/base/value_codec.h"
#include "platform/extension/ext_property.h"
#include "platform/extension/extension_rep.h"

namespace extdb {

using cfg::ParseValue;

bool ParseAddressEntry(std::string_view text, AddrInfo* out) {
  size_t first = text.find(',');
  if (first == std::string_view::npos) return false;
  size_t second = text.find(',', first + 1);
  if (second == std::string_view::npos) return false;
  AddrInfo info;
  if (!ParseValue(text.substr(0, first), &info.enabled) ||
      !ParseValue(text.substr(first + 1, second - first - 1), &info.type))
    return false;
  info.address = std::string(text.substr(second + 1));
  *out = info;
  return true;
}

namespace {

// The section of a one-section property in the file, or nullptr.
const cfg::Section* SectionOf(const cfg::Document& doc, unsigned property) {
  const char* name = nullptr;
  ForEachProperty([&](const auto& row) {
    if (name == nullptr && (row.mask & property)) name = row.section;
  });
  return name != nullptr ? doc.Find(name) : nullptr;
}

bool HasPrefixedSection(const cfg::Document& doc, std::string_view prefix) {
  for (const cfg::Section& section : doc.sections())
    if (section.name.size() > prefix.size() && section.name.substr(0, prefix.size()) == prefix)
      return true;
  return false;
}

}  // namespace

ExtServiceCodesParams DecodeServiceCodes(const cfg::Section* section) {
  ExtServiceCodesParams block;
  if (section == nullptr) return block;
  // One walk over the entries, each key read as "code_N" where it stands:
  // no key text is built per code. The first entry of a key counts, as
  // for Find.
  constexpr std::string_view kPrefix = "code_";
  bool seen[ExtServiceCodesParams::kCount] = {};
  for (const cfg::Entry& entry : section->entries) {
    const std::string_view key = entry.key;
    if (key.size() <= kPrefix.size() || key.size() > kPrefix.size() + 2 ||
        key.compare(0, kPrefix.size(), kPrefix) != 0 || key[kPrefix.size()] == '0')
      continue;
    int number = 0;
    for (char c : key.substr(kPrefix.size()))
      number = c >= '0' && c <= '9' ? number * 10 + (c - '0') : -1000;
    if (number < 1 || number > ExtServiceCodesParams::kCount || seen[number - 1]) continue;
    seen[number - 1] = true;
    block.codes[number - 1].assign(entry.value.data(), entry.value.size());
  }
  return block;
}

cfg::KeyRules ServiceCodeRules() {
  cfg::KeyRules codes;
  for (int i = 0; i < ExtServiceCodesParams::kCount; ++i)
    codes.push_back(cfg::RuleFor<std::string>("code_" + std::to_string(i + 1)));
  return codes;
}

namespace {

// "entry_N = priority,enabled,type,address"; false when a piece does not
// parse (the entry is skipped).
bool ParseAccessEntry(std::string_view value, AccessListParams::Entry* out) {
  size_t comma = value.find(',');
  if (comma == std::string_view::npos) return false;
  AccessListParams::Entry entry;
  if (!ParseValue(value.substr(0, comma), &entry.priority) ||
      !ParseAddressEntry(value.substr(comma + 1), &entry.address))
    return false;
  *out = entry;
  return true;
}

}  // namespace

AccessListParams DecodeAccessList(const cfg::Section* section) {
  AccessListParams block;
  if (section == nullptr) return block;
  ForNumberedKeys(*section, "entry_", [&](std::string_view value) {
    AccessListParams::Entry entry;
    if (ParseAccessEntry(value, &entry)) block.entries.push_back(entry);
  });
  return block;
}

cfg::KeyRules AccessListRules() {
  return {cfg::NumberedRule(
      "entry_",
      [](std::string_view value) {
        AccessListParams::Entry entry;
        return ParseAccessEntry(value, &entry);
      },
      "\"priority,enabled,type,address\"")};
}

namespace {

const char kSpeedDialPrefix[] = "speed_dial ";

const cfg::Field<SpeedDialBlock> kSpeedDialFields[] = {
    {"name", &SpeedDialBlock::name},
    {"calling_code", &SpeedDialBlock::callingCode},
    {"dest_type", &SpeedDialBlock::destType},
    {"address", &SpeedDialBlock::address},
    {"destination", &SpeedDialBlock::destination},
};

// The id of a "speed_dial ID" section; false for any other name.
bool SpeedDialId(std::string_view name, unsigned long* id) {
  const std::string_view prefix = kSpeedDialPrefix;
  return name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix &&
         ParseValue(name.substr(prefix.size()), id);
}

void DecodeSpeedDial(const cfg::Document& doc, Extension::Rep* rep) {
  // Entries handed out before stay alive until the extension goes.
  rep->retiredSpeedDial.splice(rep->retiredSpeedDial.end(), rep->speedDial);
  for (const cfg::Section& section : doc.sections()) {
    SpeedDialBlock block;
    if (!SpeedDialId(section.name, &block.id)) continue;
    cfg::ReadFields(section, kSpeedDialFields, &block);
    rep->speedDial.push_back(std::move(block));
  }
}

}  // namespace

const cfg::KeyRules* PropertySectionRules(std::string_view name) {
  static const cfg::SectionRules kRules = [] {
    cfg::SectionRules rules;
    ForEachProperty([&](const auto& row) { rules[row.section] = row.rules(); });
    return rules;
  }();
  auto it = kRules.find(name);
  return it == kRules.end() ? nullptr : &it->second;
}

const cfg::KeyRules* SpeedDialRules(std::string_view name, unsigned long* id) {
  static const cfg::KeyRules kRules = cfg::FieldRules(kSpeedDialFields);
  return SpeedDialId(name, id) ? &kRules : nullptr;
}

void DecodeProperties(const cfg::Document& doc, unsigned mask, Extension::Rep* rep) {
  ForEachProperty([&](const auto& row) {
    if (!(mask & row.mask)) return;
    // A block that is there is assigned, not replaced, so that pointers
    // handed out before a reload stay valid.
    auto& slot = rep->*row.slot;
    slot = row.decode(doc.Find(row.section));
    slot->property = row.bit;
  });
  if (mask & kPropSpeedDial) DecodeSpeedDial(doc, rep);
}

bool HasPropertySection(const cfg::Document& doc, unsigned property) {
  if (property == kPropSpeedDial) return HasPrefixedSection(doc, kSpeedDialPrefix);
  if (property == kPropAddressPatterns) {
    unsigned long id = 0;
    for (const cfg::Section& section : doc.sections())
      if (ContactId(section.name, &id)) return true;
    return false;
  }
  return SectionOf(doc, property) != nullptr;
}

}  // namespace extdb
