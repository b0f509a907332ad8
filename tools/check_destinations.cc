#include "tools/check_destinations.h"

#include <set>
#include <string>

#include "platform/base/value_codec.h"
#include "platform/extension/value_rules.h"

namespace cmcfg_tool {
namespace {

const char kDatabase[] = "telephony/extensiondb/";

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// The folder and name of an extension file, "" when `relative` is not one.
std::string ExtensionName(const std::string& relative) {
  const size_t base = sizeof(kDatabase) - 1;
  if (!StartsWith(relative, kDatabase)) return "";
  const size_t slash = relative.find('/', base);
  if (slash == std::string::npos) return "";
  return relative.substr(slash + 1, relative.size() - slash - 1 - 4);  // without ".cfg"
}

// Splits "a,b,c" at its first `count` - 1 commas; the last part keeps any
// further comma (a SIP address may hold one).
std::vector<std::string> SplitFields(std::string_view value, size_t count) {
  std::vector<std::string> parts;
  while (parts.size() + 1 < count) {
    const size_t comma = value.find(',');
    if (comma == std::string_view::npos) break;
    parts.emplace_back(value.substr(0, comma));
    value.remove_prefix(comma + 1);
  }
  parts.emplace_back(value);
  return parts;
}

class Checker {
 public:
  Checker(const std::set<std::string>& names, Findings* findings)
      : findings_(findings), names_(names) {}

  void Require(const CheckedFile& file, const cfg::Entry& entry, const std::string& name,
               const std::string& what) {
    if (name.empty() || names_.count(name) != 0) return;
    findings_->push_back(FindingAt(file.relative, file.lines, entry.line, name, false,
                                   "unknown-extension",
                                   what + " \"" + name + "\" names no extension"));
  }

  // A destination whose address does not read back as the store's own
  // rule for its type says is dropped without a word. (An entry that is not
  // "enabled,type,address" has its finding from the key rules.)
  void Readable(const CheckedFile& file, const cfg::Entry& entry,
                const std::vector<std::string>& parts) {
    int32_t type = 0;
    if (parts.size() != 3 || !cfg::ParseValue(parts[1], &type)) return;
    const cfg::Status valid = extdb::CheckDestination(type, parts[2]);
    if (valid.ok()) return;
    findings_->push_back(FindingAt(file.relative, file.lines, entry.line, parts[2], true,
                                   "dropped-destination",
                                   "forward destination \"" + parts[2] +
                                       "\" cannot be split as the agent reads it (" +
                                       valid.message() + "); the agent drops it"));
  }

  void Extension(const CheckedFile& file) {
    const bool user = ExtensionKind(file) == "user";
    ForEachFirstSection(file.doc, [&](const cfg::Section& section) {
      const std::string_view name = section.name;
      if (StartsWith(name, "contact ") && name.find(" forward_") != std::string_view::npos) {
        for (const cfg::Entry& entry : section.entries) {
          if (!StartsWith(entry.key, "destination_")) continue;
          const std::vector<std::string> parts = SplitFields(entry.value, 3);
          Readable(file, entry, parts);
          // The agent drops a destination that is switched off.
          if (parts.size() == 3 && parts[0] != "0" && parts[1] == "0")
            Require(file, entry, parts[2], "forward destination");
        }
      } else if (StartsWith(name, "contact ") &&
                 name.substr(name.size() >= 8 ? name.size() - 8 : 0) == " hunting") {
        for (const cfg::Entry& entry : section.entries) {
          if (!StartsWith(entry.key, "target_")) continue;
          Require(file, entry, SplitFields(entry.value, 2)[0], "hunting target");
        }
      } else if (user && StartsWith(name, "speed_dial ")) {
        const cfg::Entry* entry = section.Find("destination");
        if (entry != nullptr && section.Get("dest_type") == "0")
          Require(file, *entry, std::string(entry->value), "speed-dial destination");
      }
    });
  }

  void LineDatabase(const CheckedFile& file) {
    // The first section of an endpoint counts.
    ForEachFirstSection(file.doc, [&](const cfg::Section& section) {
      if (!StartsWith(section.name, "binding ")) return;
      if (const cfg::Entry* entry = section.Find("extension"))
        Require(file, *entry, std::string(entry->value), "the bound extension");
    });
  }

 private:
  Findings* findings_;
  const std::set<std::string>& names_;
};

}  // namespace

std::set<std::string> ExtensionNames(const std::vector<std::string>& extensionFiles) {
  std::set<std::string> names;
  for (const std::string& relative : extensionFiles) names.insert(ExtensionName(relative));
  return names;
}

void CheckDestinations(const std::vector<CheckedFile>& files, const std::set<std::string>& names,
                       Findings* findings) {
  Checker checker(names, findings);
  for (const CheckedFile& file : files) {
    if (file.relative == "telephony/linedb")
      checker.LineDatabase(file);
    else if (!ExtensionName(file.relative).empty())
      checker.Extension(file);
  }
}

}  // namespace cmcfg_tool
