#include "tools/check_tones.h"

#include <string>

#include "cmcfg/tone_type.h"
#include "tones/tone_key_rules.h"

namespace cmcfg_tool {
namespace {

bool IsToneName(std::string_view name) {
  for (int t = 0; t < kDeviceToneCount; ++t)
    if (name == DeviceToneNames[t]) return true;
  return false;
}

}  // namespace

void CheckTones(const std::vector<CheckedFile>& files, Findings* findings) {
  const CheckedFile* file = FindFile(files, "telephony/regional/tonetypes.cfg");
  if (file == nullptr) return;
  ForEachFirstSection(file->doc, [&](const cfg::Section& section) {
    if (!IsToneName(section.name)) {
      findings->push_back(SectionFinding(
          *file, section, false, "unknown-section",
          "section \"" + std::string(section.name) + "\" names no tone; it is ignored"));
      return;
    }
    for (const cfg::Entry& entry : section.entries) {
      if (!tones::IsToneKey(entry.key)) {
        findings->push_back(KeyFinding(*file, entry, false, "unknown-key",
                                       "unknown key \"" + std::string(entry.key) +
                                           "\" in section \"" + std::string(section.name) +
                                           "\"; it is not read"));
        continue;
      }
      // An empty value takes the built-in one; only the first of a key is read.
      if (entry.value.empty() || section.Find(entry.key) != &entry) continue;
      const std::string value(entry.value);
      const std::string problem = tones::ToneValueProblem(entry.key, value);
      if (!problem.empty())
        findings->push_back(FindingAt(file->relative, file->lines, entry.line, value, false,
                                      "bad-value",
                                      "tone value \"" + value + "\" of " +
                                          std::string(entry.key) + " " + problem));
    }
  });
}

}  // namespace cmcfg_tool
