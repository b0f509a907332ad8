// The speed-dial list of a user extension: "#" and two digits bound to a
// destination.
#include <string>

#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/string_utils.h"
#include "platform/extension/extension_manager.h"
#include "services/call_type.h"
#include "services/key_sequence.h"

namespace {

const size_t kCodeLength = 3;

bool IsSpeedDialCode(const std::string& code) {
  return code.size() == kCodeLength && code[0] == '#' && services::IsKeypadDigit(code[1]) &&
         services::IsKeypadDigit(code[2]);
}

ForwardParams Destination(const SpeedDialBlock& block) {
  ForwardParams destination;
  destination.callType = services::StoredCallType(block.destType);
  if (block.destType == kCallSip) {
    // An address that does not parse leaves the members empty; the entry
    // still occupies its code.
    ParseSIPAddress(block.address, destination.userName, destination.host, destination.port,
                    true);
  } else {
    destination.userName = block.destination;
  }
  return destination;
}

}  // namespace

bool CMAgent::GetSpeedDialList(ExtensionData* extension) {
  if (extension == nullptr) return false;
  extension->speedDial.clear();
  if (extension->type != kExtUser) return false;

  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetSpeedDialList"));
  Extension* stored = frame.Find(kExtUser, extension->name);
  if (stored == nullptr) return false;
  stored->LoadProperty(kPropSpeedDial);
  for (const SpeedDialBlock* block : stored->GetSpeedDialBlocks()) {
    const std::string& code = block->callingCode;
    if (code.size() != kCodeLength) {
      CMCFG_TRACE(this, "GetSpeedDialList: calling code has wrong length - %u(%s).\n",
                  static_cast<unsigned>(code.size()), code.c_str());
      continue;
    }
    if (!IsSpeedDialCode(code)) continue;
    KeySequence keys{services::kKeyPound, services::kKeyDigit0 + (code[1] - '0'),
                     services::kKeyDigit0 + (code[2] - '0')};
    extension->speedDial.emplace_back(std::move(keys), Destination(*block));
  }
  services::SortByKeys(extension->speedDial);
  CMCFG_TRACE(this, "GetSpeedDialList: extension %s, number of entries = %u.\n",
              extension->name.c_str(), static_cast<unsigned>(extension->speedDial.size()));
  return true;
}
