#include "platform/base/key_rules.h"

#include <utility>

namespace cfg {

const KeyRule* FindKeyRule(const KeyRules& rules, std::string_view key) {
  for (const KeyRule& rule : rules) {
    if (!rule.numbered) {
      if (key == rule.key) return &rule;
      continue;
    }
    // The readers' own test: the prefix, then digits only.
    if (key.size() > rule.key.size() && key.substr(0, rule.key.size()) == rule.key &&
        key.find_first_not_of("0123456789", rule.key.size()) == std::string_view::npos)
      return &rule;
  }
  return nullptr;
}

KeyRule NumberedRule(std::string prefix, std::function<bool(std::string_view)> accepts,
                     const char* expected) {
  KeyRule rule;
  rule.key = std::move(prefix);
  rule.numbered = true;
  rule.accepts = std::move(accepts);
  rule.expected = expected;
  rule.fallback = "the entry is skipped";
  return rule;
}

}  // namespace cfg
