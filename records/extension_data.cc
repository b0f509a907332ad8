#include "cmcfg/extension_data.h"

#include "platform/extension/extension_manager.h"

bool VmsSettings::IsOn(bool strict) const {
  if (mode == 0) return false;
  if (!strict) return true;
  return (mode == 2 || mode == 3) && !mailbox.empty();
}

void RcSettings::ToggleExtPolicy(bool on, bool first, unsigned long newValue) {
  if (first) {
    value = on ? static_cast<int32_t>(newValue) : 0;
    policy = on ? (policy | 0x01) : (policy & ~0x01);
  } else {
    policy = on ? (policy | 0x02) : (policy & ~0x02);
  }
}

bool ExtensionData::IsForwardOn() const {
  for (const AddressBookEntry& entry : addressBook) {
    if (entry.first.name == gAny) return entry.second.forwardUnconditional.active != 0;
  }
  return false;
}
