#include "tools/check_fields.h"

#include "platform/blocks/authorized_phones_accessor.h"
#include "platform/blocks/block_sections.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/blocks/ring_pattern_params.h"
#include "platform/blocks/tos_params_accessor.h"
#include "tools/check_keys.h"

namespace cmcfg_tool {
namespace {

struct BlockFile {
  const char* relative;
  cfg::KeyRules rules;
};

void CheckBlockFile(const CheckedFile& file, const cfg::KeyRules& rules, Findings* findings) {
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
      {"telephony/gateways.cfg", GatewayBlock::KeyRules()},
      {"telephony/tos.cfg", TosBlock::KeyRules()},
      {"telephony/authorized_phones.cfg", AuthorizedPhoneBlock::KeyRules()},
      {"telephony/ringpatterns.cfg", RingPatternBlock::KeyRules()},
  };
  for (const BlockFile& block : kBlockFiles)
    if (const CheckedFile* file = FindFile(files, block.relative))
      CheckBlockFile(*file, block.rules, findings);
}

}  // namespace cmcfg_tool
