#ifndef CMCFG_PLATFORM_BASE_KEY_RULES_H_
#define CMCFG_PLATFORM_BASE_KEY_RULES_H_

#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "platform/base/value_codec.h"

namespace cfg {

struct CNumber;  // number_rules.h

// The values of a key that mean something to the exchange: numbers from
// `min` to `max`, or one of `choices`. The reader still reads a value
// outside its domain as written, but it cannot work (a port of 99999, a
// transport "sctpx"), so checkers report it. Docs list each domain beside
// its key.
struct Domain {
  long long min = 0;
  long long max = 0;
  const char* choices = nullptr;  // "udp,tcp,tls"; nullptr for a range
  const char* text = "";          // for messages: "a port from 1 to 65535"
};

// The domains the readers use.
extern const Domain kPortDomain;      // 1 to 65535
extern const Domain kFlagDomain;      // 0 or 1
extern const Domain kCountDomain;     // 0 and up: counts, seconds, milliseconds
extern const Domain kTransportDomain;  // udp, tcp, tls

// True when `value` lies in `domain`; an empty value (the default) always
// does.
bool InDomain(const Domain& domain, std::string_view value);

// How a reader of the store takes one key of a section: which values it
// uses and what it does with the others. The readers publish their rules
// beside their tables, so that a checker reports exactly what the store
// skips, and follows it when a key is added or retyped.
struct KeyRule {
  std::string key;       // the key, or the prefix of numbered keys
  bool numbered = false;  // matches key + decimal digits ("target_1")
  // True when the reader uses the value; empty: every text is used.
  std::function<bool(std::string_view)> accepts;
  const char* expected = "";  // what a used value is, for messages ("a number")
  const char* fallback = "";  // what happens to another ("the default is kept")
  const Domain* domain = nullptr;  // the values that work, when the reader knows
};

using KeyRules = std::vector<KeyRule>;

// The rules of a file whose sections have fixed names, by section name.
using SectionRules = std::map<std::string, KeyRules, std::less<>>;

// The rule of `key` in `rules` (a numbered rule matches its prefix followed
// by one or more digits), or nullptr when the reader ignores the key.
const KeyRule* FindKeyRule(const KeyRules& rules, std::string_view key);

// True when the reader uses `value` under `rule`.
inline bool Accepts(const KeyRule& rule, std::string_view value) {
  return !rule.accepts || rule.accepts(value);
}

// The rule of a member of type T read with value_codec.h: numbers must
// parse as that type (otherwise the member keeps its default), texts and
// name lists take any value.
template <typename T>
KeyRule RuleFor(std::string key) {
  KeyRule rule;
  rule.key = std::move(key);
  rule.fallback = "the default is kept";
  if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, std::list<std::string>>) {
    return rule;
  } else {
    rule.accepts = [](std::string_view text) {
      T value{};
      return ParseValue(text, &value);
    };
    if constexpr (std::is_same_v<T, int32_t> || std::is_same_v<T, CNumber>)
      rule.expected = "a number";
    if constexpr (std::is_same_v<T, uint32_t>) rule.expected = "a number from 0 to 4294967295";
    if constexpr (std::is_same_v<T, uint16_t>) rule.expected = "a number from 0 to 65535";
    if constexpr (std::is_same_v<T, uint8_t>) rule.expected = "a number from 0 to 255";
    if constexpr (std::is_same_v<T, std::vector<unsigned long>>)
      rule.expected = "a list of numbers";
    return rule;
  }
}

// A rule for numbered keys whose value the reader takes only when
// `accepts`; the others are skipped (the entry is not read).
KeyRule NumberedRule(std::string prefix, std::function<bool(std::string_view)> accepts,
                     const char* expected);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_KEY_RULES_H_
