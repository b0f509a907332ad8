#include "tools/check_service_codes.h"

#include <map>

#include "platform/base/string_utils.h"
#include "platform/extension/section_rules.h"

namespace cmcfg_tool {
namespace {

// One code of the section: its text, the key it sits under and its line.
struct Code {
  std::string text;
  std::string keys;
  const cfg::Entry* entry;
};

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

// The codes of the keys the store reads, in file order (unknown keys have
// their finding from the store's key rules).
std::vector<Code> ReadCodes(const cfg::Section& section, AgentParsers& parsers) {
  const cfg::KeyRules& keys = *extdb::ReadingOf(section.name).keys;
  std::vector<Code> codes;
  for (const cfg::Entry& entry : section.entries) {
    const bool known = cfg::FindKeyRule(keys, entry.key) != nullptr;
    if (!known || section.Find(entry.key) != &entry) continue;  // only the first of a key is read
    for (const std::string& piece : StringUtils::ParseCommaLine(std::string(entry.value), ','))
      codes.push_back({piece, parsers.DialledKeys(piece), &entry});
  }
  return codes;
}

void CheckKeys(const CheckedFile& file, const Code& code, Findings* findings) {
  const std::string where = " of " + std::string(code.entry->key);
  if (code.keys.empty()) {
    findings->push_back(
        FindingAt(file.relative, file.lines, code.entry->line, code.text, false, "service-code-key",
                  "service code " + Quoted(code.text) + where + " forms no key sequence"));
    return;
  }
  // The first character the agent drops: what it dials is the code without it.
  size_t at = 0;
  for (char c : code.text) {
    if (at < code.keys.size() && c == code.keys[at]) {
      ++at;
      continue;
    }
    findings->push_back(FindingAt(
        file.relative, file.lines, code.entry->line, code.text, false, "service-code-key",
        "service code " + Quoted(code.text) + where + " holds " + Quoted(std::string(1, c)) +
            ", which forms no key; it is "
            "dialled as " +
            Quoted(code.keys)));
    return;
  }
}

}  // namespace

void CheckServiceCodes(const std::vector<CheckedFile>& files, AgentParsers& parsers,
                       Findings* findings) {
  for (const CheckedFile& file : files) {
    if (ExtensionKind(file) != "user") continue;
    const cfg::Section* section = file.doc.Find("service_codes");
    if (section == nullptr) continue;
    const std::vector<Code> codes = ReadCodes(*section, parsers);
    // The first code of each key sequence, to look prefixes up in.
    std::map<std::string, const Code*> byKeys;
    for (const Code& code : codes) {
      CheckKeys(file, code, findings);
      if (code.keys.empty()) continue;
      auto first = byKeys.emplace(code.keys, &code);
      if (first.second) continue;
      const Code& other = *first.first->second;
      findings->push_back(
          FindingAt(file.relative, file.lines, code.entry->line, code.text, false, "same-code",
                    "service code " + Quoted(code.text) + " of " + std::string(code.entry->key) +
                        " dials the same keys as " + Quoted(other.text) + " of " +
                        std::string(other.entry->key) + ": only one of them can be reached"));
    }
    for (const Code& code : codes) {
      for (size_t length = 1; length < code.keys.size(); ++length) {
        auto prefix = byKeys.find(code.keys.substr(0, length));
        if (prefix == byKeys.end()) continue;
        findings->push_back(FindingAt(
            file.relative, file.lines, code.entry->line, code.text, false, "unreachable-code",
            "service code " + Quoted(code.text) + " of " + std::string(code.entry->key) +
                " can never be reached: " + Quoted(prefix->second->text) + " of " +
                std::string(prefix->second->entry->key) + " is dialled before it ends"));
        break;
      }
    }
  }
}

}  // namespace cmcfg_tool
