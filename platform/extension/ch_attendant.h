#ifndef CMCFG_PLATFORM_EXTENSION_CH_ATTENDANT_H_
#define CMCFG_PLATFORM_EXTENSION_CH_ATTENDANT_H_

#include "platform/extension/extension.h"

// An attendant console's record.
class CHAttendant : public Extension {
 public:
  ~CHAttendant() override;

 private:
  friend class ExtensionManager;
  CHAttendant();
};

#endif  // CMCFG_PLATFORM_EXTENSION_CH_ATTENDANT_H_
