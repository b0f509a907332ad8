#include "tools/check_extensions.h"

#include <cctype>
#include <set>
#include <string>

#include "platform/base/value_codec.h"
#include "platform/line/codecs.h"

namespace cmcfg_tool {
namespace {

const char* const kVoiceLists[] = {"voice_codecs", "extra_voice_codecs", "modem_codecs"};

void CheckList(const CheckedFile& file, const cfg::Entry& entry, const std::set<std::string>* fax,
               Findings* findings) {
  const std::string value(entry.value);
  size_t start = 0;
  while (start <= value.size()) {
    size_t comma = value.find(',', start);
    if (comma == std::string::npos) comma = value.size();
    const std::string name = value.substr(start, comma - start);
    start = comma + 1;
    if (name.empty() || GetDspCodecByName(name) != -1) continue;
    if (fax != nullptr && fax->count(name) != 0) continue;
    const std::string message = fax != nullptr
                                    ? "unknown codec or fax encoding name \"" + name + "\""
                                    : "unknown codec name \"" + name + "\"";
    findings->push_back(
        FindingAt(file.relative, file.lines, entry.line, name, false, "unknown-codec", message));
  }
}

bool IsSpeedDialCode(std::string_view code) {
  return code.size() == 3 && code[0] == '#' && std::isdigit(static_cast<unsigned char>(code[1])) &&
         std::isdigit(static_cast<unsigned char>(code[2]));
}

}  // namespace

std::set<std::string> FaxEncodings(const std::vector<CheckedFile>& files) {
  std::set<std::string> names;
  for (const CheckedFile& file : files) {
    if (file.relative != "telephony/fax.cfg") continue;
    for (const cfg::Section& section : file.doc.sections()) names.emplace(section.name);
  }
  return names;
}

void CheckExtensions(const std::vector<CheckedFile>& files, const std::set<std::string>& fax,
                     Findings* findings) {
  for (const CheckedFile& file : files) {
    const std::string kind = ExtensionKind(file);
    if (kind.empty()) continue;
    ForEachFirstSection(file.doc, [&](const cfg::Section& section) {
      if (section.name == "codecs") {
        for (const char* key : kVoiceLists)
          if (const cfg::Entry* entry = section.Find(key)) CheckList(file, *entry, nullptr, findings);
        if (const cfg::Entry* entry = section.Find("fax_codecs"))
          CheckList(file, *entry, &fax, findings);
      } else if (section.name.substr(0, 11) == "speed_dial " && kind == "user") {
        // Only user extensions have a speed-dial list; the entry's id is
        // read with the store's own number rules.
        unsigned long id = 0;
        if (!cfg::ParseValue(section.name.substr(11), &id)) {
          findings->push_back(SectionFinding(file, section, false, "speed-dial-id",
                                             "section \"" + std::string(section.name) +
                                                 "\" has no number after \"speed_dial\"; the "
                                                 "entry is skipped"));
          return;
        }
        const cfg::Entry* code = section.Find("calling_code");
        if (code == nullptr || IsSpeedDialCode(code->value)) return;
        findings->push_back(FindingAt(file.relative, file.lines, code->line,
                                      std::string(code->value), false, "speed-dial-code",
                                      "speed-dial code \"" + std::string(code->value) +
                                          "\" is not \"#\" and two digits; the entry is skipped"));
      }
    });
  }
}

}  // namespace cmcfg_tool
