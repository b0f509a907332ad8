#ifndef CMCFG_PLATFORM_BASE_FIELD_TABLE_H_
#define CMCFG_PLATFORM_BASE_FIELD_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/key_rules.h"
#include "platform/base/number_rules.h"
#include "platform/base/value_codec.h"

namespace cfg {

// Table-driven mapping between the public members of a value class and the
// "key = value" lines of a section: each field names its key and the
// member, whose text form is that of value_codec.h. A table is a plain
// array of fields, kept beside the class's reader.
template <typename Owner>
struct Field {
  using Member =
      std::variant<int32_t Owner::*, uint32_t Owner::*, uint16_t Owner::*, uint8_t Owner::*,
                   CNumber Owner::*, std::string Owner::*,
                   std::list<std::string> Owner::*, std::vector<unsigned long> Owner::*>;
  const char* key;
  Member member;
  const Domain* domain = nullptr;  // the values that work, published to checkers
  bool hex = false;                // a byte written "0xB8" (TOS bytes); read either way
};

// Reads one field from its entry's text; a text that does not parse leaves
// the member as it is.
template <typename Owner>
void ParseField(std::string_view text, const Field<Owner>& field, Owner* owner) {
  std::visit([&](auto member) { ParseValue(text, &(owner->*member)); }, field.member);
}

// The text one field is written as.
template <typename Owner>
std::string FormatField(const Owner& owner, const Field<Owner>& field) {
  if (const auto* byte = std::get_if<uint8_t Owner::*>(&field.member); byte && field.hex)
    return FormatHexByte(owner.**byte);
  return std::visit([&](auto member) { return FormatValue(owner.*member); }, field.member);
}

// False when the field is a list with a member that is no IsListMember:
// its text would not read back as written, so writers refuse it.
template <typename Owner>
bool CanWriteField(const Owner& owner, const Field<Owner>& field) {
  const auto* names = std::get_if<std::list<std::string> Owner::*>(&field.member);
  return names == nullptr || AreListMembers(owner.**names);
}

template <typename Owner, typename Fields>
bool CanWriteFields(const Owner& owner, const Fields& fields) {
  for (const Field<Owner>& field : fields)
    if (!CanWriteField(owner, field)) return false;
  return true;
}

// Reads every field of `fields` (any range of Field<Owner>) whose key
// `section` has; missing keys and values that do not parse leave their
// members as they are.
template <typename Owner, typename Fields>
void ReadFields(const Section& section, const Fields& fields, Owner* owner) {
  for (const Field<Owner>& field : fields)
    if (const Entry* entry = section.Find(field.key)) ParseField(entry->value, field, owner);
}

// Sets the key of every field whose value differs from what `section` of
// `doc` reads as now (a missing key as the default of Owner), so that a
// save changes only the lines of what changed; other keys stay.
template <typename Owner, typename Fields>
void WriteFields(const Owner& owner, const Fields& fields, Document* doc, Section* section) {
  Owner now{};
  ReadFields(*section, fields, &now);
  for (const Field<Owner>& field : fields) {
    std::string text = FormatField(owner, field);
    if (text != FormatField(now, field)) doc->Set(*section, field.key, text);
  }
}

// The rule of one field for checkers: how ParseField takes its text.
template <typename Owner>
KeyRule FieldRule(const Field<Owner>& field) {
  return std::visit(
      [&](auto member) {
        using T = std::remove_reference_t<decltype(std::declval<Owner&>().*member)>;
        KeyRule rule = RuleFor<T>(field.key);
        rule.domain = field.domain;
        return rule;
      },
      field.member);
}

// The rules of every field of a table, in table order.
template <typename Owner, size_t N>
KeyRules FieldRules(const Field<Owner> (&fields)[N]) {
  KeyRules rules;
  for (const Field<Owner>& field : fields) rules.push_back(FieldRule(field));
  return rules;
}

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_FIELD_TABLE_H_
