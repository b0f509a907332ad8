#include "tools/check_fields.h"

#include <sstream>
#include <utility>

#include "platform/blocks/authorized_phones_accessor.h"
#include "platform/blocks/block_sections.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/ring_pattern_params.h"
#include "platform/blocks/tos_params_accessor.h"
#include "tools/check_keys.h"

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

// The probe's keys as rules. Block fields are numbers, or texts that
// every value fills.
cfg::KeyRules RulesOf(const FieldProbe& probe) {
  cfg::KeyRules rules;
  for (const std::string& key : probe.keys()) {
    cfg::KeyRule rule;
    rule.key = key;
    rule.accepts = [&probe, key](std::string_view value) { return probe.Takes(key, value); };
    rule.expected = "a number";
    rule.fallback = "the default is kept";
    rules.push_back(std::move(rule));
  }
  return rules;
}

void CheckBlockFile(const CheckedFile& file, const FieldProbe& probe, Findings* findings) {
  const cfg::KeyRules rules = RulesOf(probe);
  CheckSectionKeys(
      file,
      [&](std::string_view name) -> const cfg::KeyRules* {
        unsigned long id = 0;
        return blocks::ParseBlockId(name, &id) ? &rules : nullptr;
      },
      [](const std::string& name) {
        return "section \"" + name + "\" is not a block id; it is ignored";
      },
      findings);
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
