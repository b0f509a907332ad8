#include "tools/check_keys.h"

#include <map>
#include <utility>

#include "platform/blocks/fxs_data_accessor.h"
#include "platform/blocks/general_paths.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/blocks/log_login_accessor.h"
#include "platform/extension/section_rules.h"
#include "platform/line/line_manager.h"

namespace cmcfg_tool {

void CheckSectionKeys(const CheckedFile& file, const SectionLookup& lookup,
                      const std::function<std::string(const std::string&)>& unreadMessage,
                      Findings* findings) {
  ForEachFirstSection(file.doc, [&](const cfg::Section& section) {
    const std::string name(section.name);
    const cfg::KeyRules* rules = lookup(section.name);
    if (rules == nullptr) {
      const std::string message = unreadMessage ? unreadMessage(name) : std::string();
      if (!message.empty())
        findings->push_back(SectionFinding(file, section, false, "unknown-section", message));
      return;
    }
    for (const cfg::Entry& entry : section.entries) {
      const std::string key(entry.key), value(entry.value);
      const cfg::KeyRule* rule = cfg::FindKeyRule(*rules, entry.key);
      if (rule == nullptr) {
        findings->push_back(KeyFinding(file, entry, false, "unknown-key",
                                       "unknown key \"" + key + "\" in section \"" + name +
                                           "\"; it is not read"));
      } else if (const cfg::Entry* first = section.Find(entry.key); first != &entry) {
        // The readers take a key's first line in its section.
        findings->push_back(KeyFinding(file, entry, false, "repeated-key",
                                       key + " is given again in section \"" + name +
                                           "\"; the first (line " +
                                           std::to_string(first->line) +
                                           ") counts, this one is ignored"));
      } else if (!cfg::Accepts(*rule, value)) {
        findings->push_back(FindingAt(file.relative, file.lines, entry.line, value, false,
                                      "bad-value",
                                      "value \"" + value + "\" of " + key + " is not " +
                                          rule->expected + "; " + rule->fallback));
      } else if (rule->domain != nullptr && !cfg::InDomain(*rule->domain, value)) {
        findings->push_back(FindingAt(file.relative, file.lines, entry.line, value, true,
                                      "out-of-range",
                                      "value \"" + value + "\" of " + key + " is not " +
                                          rule->domain->text +
                                          "; it is read as written and cannot work"));
      }
    }
  });
}

namespace {

std::string NotRead(const std::string& section) {
  return "section \"" + section + "\" is not read; it is ignored";
}

struct SettingsFile {
  const char* relative;
  cfg::SectionRules rules;
};

void CheckFixedSections(const CheckedFile& file, const cfg::SectionRules& rules,
                        Findings* findings) {
  CheckSectionKeys(
      file,
      [&](std::string_view name) -> const cfg::KeyRules* {
        auto it = rules.find(name);
        return it == rules.end() ? nullptr : &it->second;
      },
      NotRead, findings);
}

// Two sections of one list with the same id: "contact 5" and "contact 05".
void CheckRepeatedIds(const CheckedFile& file, Findings* findings) {
  std::map<std::pair<std::string, unsigned long>, const cfg::Section*> first;
  ForEachFirstSection(file.doc, [&](const cfg::Section& section) {
    const extdb::SectionReading reading = extdb::ReadingOf(section.name);
    if (*reading.list == '\0') return;
    auto inserted = first.emplace(std::make_pair(std::string(reading.list), reading.id), &section);
    if (inserted.second) return;
    const cfg::Section& earlier = *inserted.first->second;
    std::string message = "section \"" + std::string(section.name) + "\" repeats " +
                          reading.list + " " + std::to_string(reading.id) + " of section \"" +
                          std::string(earlier.name) + "\" (line " +
                          std::to_string(earlier.line) + ")";
    // The address book keeps the first contact of an id; speed dials are
    // all read.
    if (std::string_view(reading.list) == "contact") message += "; it is ignored";
    findings->push_back(SectionFinding(file, section, false, "repeated-id", message));
  });
}

}  // namespace

void CheckStoreKeys(const std::vector<CheckedFile>& files, Findings* findings) {
  static const SettingsFile kSettingsFiles[] = {
      {"telephony/general.cfg", GeneralSettingsAccessor::KeyRules()},
      {"telephony/paths.cfg", GeneralPaths::KeyRules()},
      {"telephony/fxs.cfg", FxsDataAccessor::KeyRules()},
      {"telephony/log_login.cfg", LogLoginAccessor::KeyRules()},
      {"telephony/extensiondb/system.cfg", extdb::SystemFileRules()},
  };
  for (const SettingsFile& settings : kSettingsFiles)
    if (const CheckedFile* file = FindFile(files, settings.relative))
      CheckFixedSections(*file, settings.rules, findings);

  if (const CheckedFile* linedb = FindFile(files, "telephony/linedb"))
    CheckSectionKeys(*linedb, LineSectionRules, nullptr, findings);  // sections: check_linedb

  for (const CheckedFile& file : files) {
    if (ExtensionKind(file).empty()) continue;
    CheckSectionKeys(
        file, [](std::string_view name) { return extdb::ReadingOf(name).keys; },
        [](const std::string& name) -> std::string {
          // Speed-dial sections without a number have a finding of their own.
          return name.compare(0, 11, "speed_dial ") == 0 ? "" : NotRead(name);
        },
        findings);
    CheckRepeatedIds(file, findings);
  }
}

}  // namespace cmcfg_tool
