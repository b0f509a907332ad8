#include "tools/text_render.h"

#include <algorithm>
#include <ostream>

namespace cmcfg_tool {
namespace {

constexpr size_t kValueColumn = 26;
constexpr size_t kSmallObject = 4;

bool IsDestination(const Tree& value) {
  return value.is_object() && !value.empty() && value.begin().key() == "text";
}

// Printed on one line: a value, a list of values, a destination.
bool IsInline(const Tree& value) {
  if (IsDestination(value)) return true;
  if (value.is_array())
    return std::all_of(value.begin(), value.end(),
                       [](const Tree& v) { return !v.is_object() || IsDestination(v); });
  return !value.is_object();
}

// An object whose members are all inline.
bool IsFlat(const Tree& value) {
  return value.is_object() &&
         std::all_of(value.begin(), value.end(), [](const Tree& v) { return IsInline(v); });
}

std::string Pairs(const Tree& object, bool skipFirst) {
  std::string text;
  for (auto it = object.begin(); it != object.end(); ++it) {
    if (skipFirst && it == object.begin()) continue;
    text += (text.empty() ? "" : ", ") + Label(it.key()) + " " + ValueText(it.value());
  }
  return text;
}

void Row(std::ostream& out, size_t depth, const std::string& label, const std::string& value) {
  const std::string lead(2 * depth, ' ');
  out << lead << label;
  const size_t used = lead.size() + label.size();
  out << std::string(used < kValueColumn ? kValueColumn - used : 1, ' ') << value << "\n";
}

}  // namespace

std::string Label(const std::string& key) {
  std::string label = key;
  std::replace(label.begin(), label.end(), '_', ' ');
  return label;
}

std::string ValueText(const Tree& value) {
  if (value.is_null()) return "-";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_string()) {
    const std::string& text = value.get_ref<const std::string&>();
    return text.empty() ? "-" : text;
  }
  if (IsDestination(value)) return ValueText(value.begin().value());
  if (value.is_array()) {
    std::string text;
    for (const Tree& item : value) text += (text.empty() ? "" : ", ") + ValueText(item);
    return text.empty() ? "-" : text;
  }
  return value.dump();
}

void RenderText(const Tree& tree, std::ostream& out, size_t depth) {
  const std::string lead(2 * depth, ' ');
  for (auto it = tree.begin(); it != tree.end(); ++it) {
    const Tree& value = it.value();
    const std::string label = Label(it.key());
    if (IsInline(value)) {
      Row(out, depth, label, ValueText(value));
    } else if (IsFlat(value) && value.size() <= kSmallObject) {
      Row(out, depth, label, Pairs(value, false));
    } else if (value.is_object()) {
      out << lead << label << "\n";
      RenderText(value, out, depth + 1);
    } else {
      out << lead << label << ": " << value.size() << "\n";
      for (const Tree& element : value) {
        const std::string identity = element.empty() ? "-" : ValueText(element.begin().value());
        if (IsFlat(element)) {
          Row(out, depth + 1, identity, Pairs(element, true));
          continue;
        }
        out << lead << "  " << identity << "\n";
        Tree rest = element;
        rest.erase(rest.begin());
        RenderText(rest, out, depth + 2);
      }
    }
  }
}

}  // namespace cmcfg_tool
