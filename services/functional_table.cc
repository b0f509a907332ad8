// The functional table: the service codes of a user extension as key
// sequences bound to the call manager's service keys.
#include <string>
#include <vector>

#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/string_utils.h"
#include "platform/extension/extension_manager.h"
#include "services/key_sequence.h"

namespace {

struct ServiceBinding {
  int member;  // 1-based member of the service-code record
  KeypadButton key;
};

// The call manager numbers its service keys differently from the record:
// member 6 comes first, 9 and 10 are exchanged, and 16 and 17 carry the
// extra bits 0xA000. The order here is also the insertion order, which
// decides among services that share a code.
const ServiceBinding kBindings[] = {
    {6, 0x800},   {1, 0x801},   {2, 0x802},   {3, 0x803},  {4, 0x804},
    {5, 0x805},   {7, 0x806},   {8, 0x807},   {10, 0x808}, {9, 0x809},
    {11, 0x80A},  {12, 0x80B},  {13, 0x80C},  {14, 0x80D}, {15, 0x80E},
    {16, 0xA80F}, {17, 0xA810}, {18, 0x811},  {19, 0x812}, {20, 0x813},
};

static_assert(sizeof(kBindings) / sizeof(kBindings[0]) == ExtServiceCodesParams::kCount,
              "one binding per service code");

}  // namespace

bool CMAgent::FormKeySequence(std::vector<KeypadButton>& keys, std::string& text) {
  for (char c : text) {
    if (services::IsKeypadDigit(c)) {
      keys.push_back(services::kKeyDigit0 + (c - '0'));
    } else if (c == '*') {
      keys.push_back(services::kKeyStar);
    } else if (c == '#') {
      keys.push_back(services::kKeyPound);
    } else if (c == 'f') {
      keys.push_back(services::kKeyFlash);
    }
  }
  return true;
}

bool CMAgent::GetFuntionalTable(ExtensionData* extension) {
  if (extension == nullptr) return false;
  std::vector<FunctionalEntry>& table = extension->functionalTable;
  table.clear();
  if (extension->type != kExtUser) return false;

  // The property line stays unused: an extension without service codes is
  // no failure, it simply has an empty table.
  ExtensionFrame frame(this, FrameLines{"GetFunctionalTable: failed to load user extension %s.\n",
                                        nullptr});
  Extension* stored = frame.Find(kExtUser, extension->name);
  if (stored == nullptr) return false;
  stored->LoadProperty(kPropServiceCodes);
  if (const ExtServiceCodesParams* codes = stored->GetServiceCodesParams()) {
    for (const ServiceBinding& binding : kBindings) {
      const std::string& text = codes->codes[binding.member - 1];
      if (text.empty()) continue;
      for (std::string& piece : StringUtils::ParseCommaLine(text, ',')) {
        KeySequence keys;
        FormKeySequence(keys, piece);
        table.emplace_back(std::move(keys), binding.key);
      }
    }
    services::SortByKeys(table);
  }
  CMCFG_TRACE(this, "GetFunctionalTable: extension %s, number of service codes = %u.\n",
              extension->name.c_str(), static_cast<unsigned>(table.size()));
  return true;
}
