#include "platform/base/key_rules.h"

#include <utility>

namespace cfg {

const Domain kPortDomain{1, 65535, nullptr, "a port from 1 to 65535"};
const Domain kFlagDomain{0, 1, nullptr, "0 or 1"};
const Domain kCountDomain{0, 2147483647, nullptr, "a number from 0 up"};
const Domain kTransportDomain{0, 0, "udp,tcp,tls", "udp, tcp or tls"};

bool InDomain(const Domain& domain, std::string_view value) {
  if (value.empty()) return true;
  if (domain.choices != nullptr) {
    std::string_view choices = domain.choices;
    while (!choices.empty()) {
      const size_t comma = choices.find(',');
      if (choices.substr(0, comma) == value) return true;
      if (comma == std::string_view::npos) break;
      choices.remove_prefix(comma + 1);
    }
    return false;
  }
  // Any decimal, negative ones included: "-5" is outside, not unreadable.
  const bool negative = value.front() == '-';
  const std::string_view digits = value.substr(negative ? 1 : 0);
  if (digits.empty() || digits.size() > 18 ||
      digits.find_first_not_of("0123456789") != std::string_view::npos)
    return false;
  long long number = 0;
  for (char c : digits) number = number * 10 + (c - '0');
  if (negative) number = -number;
  return number >= domain.min && number <= domain.max;
}

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
