#ifndef CMCFG_TOOLS_TEXT_RENDER_H_
#define CMCFG_TOOLS_TEXT_RENDER_H_

// The text form of a record tree, shared by every verb that prints text.
// Keys become labels ("call_waiting" -> "call waiting"); values line up in
// one column:
// - a value: "label  value" ("-" when empty, "yes"/"no" for a flag);
// - a list of values or destinations: "label  a, b, c";
// - an object that starts with "text" (a destination): that text;
// - an object of at most four values: "label  key value, key value";
// - another object: "label", then its members one step in;
// - a list of objects: "label: N", then each element one step in, led by
//   its first value (its identity), on one line when it holds only values.

#include <iosfwd>
#include <string>

#include "tools/model.h"

namespace cmcfg_tool {

// A key as a label: underscores become blanks.
std::string Label(const std::string& key);

// A value alone: text as it is ("-" when empty), flags as "yes"/"no",
// null as "-", numbers in decimal, lists joined by ", ".
std::string ValueText(const Tree& value);

// Writes the members of `tree` (an object) `depth` steps in (two blanks a
// step).
void RenderText(const Tree& tree, std::ostream& out, size_t depth = 0);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_TEXT_RENDER_H_
