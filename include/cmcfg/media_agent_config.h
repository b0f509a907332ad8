#ifndef CMCFG_MEDIA_AGENT_CONFIG_H_
#define CMCFG_MEDIA_AGENT_CONFIG_H_

#include "cmcfg/export.h"

class GatewayAccessor;
class LineManager;

// The configuration the media agent process reads: its FXS and FXO line
// managers over the line database (root + "telephony/linedb"), the media
// gateways, and the trunk interface counts. Each of the three objects is
// either handed in by the caller (used, never deleted or closed) or opened
// here (owned: released by the matching Unset and by the destructor). Not
// thread-safe: the caller serialises use of one object.
class CMCFG_EXPORT MediaAgentConfig {
 public:
  MediaAgentConfig() = default;
  // Unsets the FXS manager, the FXO manager and the gateways, in this order.
  ~MediaAgentConfig();
  MediaAgentConfig(const MediaAgentConfig&) = delete;
  MediaAgentConfig& operator=(const MediaAgentConfig&) = delete;

  // A given manager replaces the held one (an owned one is deleted) and
  // stays the caller's; handing in the held one changes nothing. nullptr
  // opens an owned manager of the line database when none is held, and
  // otherwise keeps the held one.
  void SetFxsLineManager(LineManager* manager);
  void SetFxoLineManager(LineManager* manager);
  // Deletes the held manager if owned, then holds none.
  void UnsetFxsLineManager();
  void UnsetFxoLineManager();

  // A given accessor replaces the held one (an owned one is closed) and
  // stays the caller's; handing in the held one changes nothing. nullptr
  // opens the shared gateway accessor when none is held (an instance
  // without gateways when gateways.cfg is missing; null only when none can
  // be made), and otherwise keeps the held one.
  void SetGatewayAccessor(GatewayAccessor* accessor);
  // Closes the held accessor if owned, then holds none.
  void UnsetGatewayAccessor();

  // The number of ISDN (resp. E1/T1) interfaces, read afresh from
  // general.cfg; 1 when the general settings cannot be opened. Independent
  // of the members.
  unsigned GetNumOfIsdn() const;
  unsigned GetNumOfE1T1() const;

  LineManager* fxsLineManager = nullptr;  // FXS lines (manager type 1)
  LineManager* fxoLineManager = nullptr;  // FXO lines (manager type 2)
  GatewayAccessor* gatewayAccessor = nullptr;
  int ownsFxsLineManager = 0;  // non-zero: opened here, deleted here
  int ownsFxoLineManager = 0;
  int ownsGatewayAccessor = 0;  // non-zero: opened here, closed here
};

#endif  // CMCFG_MEDIA_AGENT_CONFIG_H_
