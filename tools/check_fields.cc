#include "tools/check_fields.h"

#include <sstream>

#include "platform/blocks/authorized_phones_accessor.h"
#include "platform/blocks/block_sections.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/ring_pattern_params.h"
#include "platform/blocks/tos_params_accessor.h"

namespace cmcfg_tool {

FieldProbe::FieldProbe(Probe probe) : probe_(probe) {
  std::istringstream keys(probe_("", "", ""));
  for (std::string key; std::getline(keys, key);) keys_.insert(key);
}

bool FieldProbe::Takes(std::string_view key, std::string_view value) const {
  // Two different numbers before: a value that is taken overwrites both alike.
  return !Knows(key) || probe_(key, "7", value) == probe_(key, "8", value);
}

namespace {

struct BlockFile {
  const char* relative;
  FieldProbe probe;
};

void CheckBlockFile(const CheckedFile& file, const FieldProbe& probe, Findings* findings) {
  ForEachFirstSection(file.doc, [&](const cfg::Section& section) {
    const std::string name(section.name);
    unsigned long id = 0;
    if (!blocks::ParseBlockId(section.name, &id)) {
      findings->push_back(SectionFinding(file, section, false, "unknown-section",
                                         "section \"" + name + "\" is not a block id; it is "
                                                               "ignored"));
      return;
    }
    for (const cfg::Entry& entry : section.entries) {
      const std::string key(entry.key), value(entry.value);
      if (!probe.Knows(key)) {
        findings->push_back(KeyFinding(file, entry, false, "unknown-key",
                                       "unknown key \"" + key + "\" in section \"" + name +
                                           "\"; it is not read"));
      } else if (section.Find(entry.key) == &entry && !probe.Takes(key, value)) {
        findings->push_back(FindingAt(file.relative, file.lines, entry.line, value, false,
                                      "bad-value",
                                      "value \"" + value + "\" of " + key +
                                          " is not a number; the default is kept"));
      }
    }
  });
}

}  // namespace

void CheckBlockFiles(const std::vector<CheckedFile>& files, Findings* findings) {
  static const BlockFile kBlockFiles[] = {
      {"telephony/gateways.cfg", FieldProbe::Of<GatewayBlock>()},
      {"telephony/tos.cfg", FieldProbe::Of<TosBlock>()},
      {"telephony/authorized_phones.cfg", FieldProbe::Of<AuthorizedPhoneBlock>()},
      {"telephony/ringpatterns.cfg", FieldProbe::Of<RingPatternBlock>()},
  };
  for (const BlockFile& block : kBlockFiles)
    if (const CheckedFile* file = FindFile(files, block.relative))
      CheckBlockFile(*file, block.probe, findings);
}

}  // namespace cmcfg_tool
