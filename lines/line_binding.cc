// Binding of extensions to the FXS endpoints of the line database.
#include <memory>

#include "agent/agent_log.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/config_root.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/line/line_manager.h"

namespace {

// Hands the line-database entries bound to `extension` to `visit`, in file
// order, until `visit` returns false. Asks for the file as it is now, so a
// binding changed since the manager was opened is seen. The entries stay
// valid only until `db` re-reads the file; `visit` must not ask it to.
template <typename Visit>
void ForEachEntryOf(LineManager* db, const std::string& extension, Visit visit) {
  for (const LineBase* entry : db->GetLinesOf(extension, true))
    if (!visit(*entry)) return;
}

const char* OnOff(int32_t value) { return value != 0 ? "On" : "Off"; }

}  // namespace

bool CMAgent::GetLineData(const std::string& extension, LineSettings* line, bool* flag) {
  // Callers read the flag back; it has never been raised here.
  if (flag != nullptr) *flag = false;

  // Managers opened for this call only: the agent's members stay as they
  // are (NULL after Destroy).
  std::unique_ptr<LineManager> ownDb;
  std::unique_ptr<LineManager> ownFxs;
  LineManager* db = lineManager;
  if (db == nullptr) {
    ownDb.reset(new LineManager(LineManagerBase::kLineDb, cfg::TelephonyPath("linedb"), true));
    db = ownDb.get();
  }
  // During the load the agent holds the gateways open and this shares
  // them; after Destroy the call opens its own instance (a missing file then
  // gives no gateways, so the binding fails the same way).
  // Opened on first use, closed on every path.
  InstanceRef<GatewayAccessor> gateways(ownDb != nullptr, InstanceRef<GatewayAccessor>::Lazy());

  bool result = true;
  ForEachEntryOf(db, extension, [&](const LineBase& entry) {
    const GatewayBlock* gateway = gateways ? gateways->GetBlock(entry.gatewayId) : nullptr;
    if (gateway == nullptr) {
      CMCFG_TRACE(this, "GetLineData: failed to load FXS data for extension %s.\n",
                  extension.c_str());
      result = false;
      return false;
    }
    if (line == nullptr) return false;  // only asked whether the binding resolves

    LineManager* fxs = fxsLineManager;
    if (fxs == nullptr) {
      if (!ownFxs)
        ownFxs.reset(
            new LineManager(LineManagerBase::kFxsLines, cfg::TelephonyPath("linedb"), false));
      fxs = ownFxs.get();
    }
    const LineBase* port = fxs->GetLine(entry.gatewayId, entry.lineId, true);
    if (port == nullptr) {
      CMCFG_TRACE(this, "GetLineData: missing FXS data for extension %s.\n", extension.c_str());
      result = false;
      return false;
    }

    if (gateway->IsRemote()) {
      line->remote.isRemote = 1;
      line->remote.rtpProxy = port->rtpProxy;
      line->remote.symmetricRtp = port->symmetricRtp;
      line->remote.lineId = port->lineId;
      line->remote.gatewayId = port->gatewayId;
      CMCFG_TRACE(this,
                  "GetLineData: extension %s has remote FXS endpoint MG{%lu}<%lu>, RTP proxy - "
                  "%s, symmetric RTP - %s.\n",
                  extension.c_str(), static_cast<unsigned long>(port->gatewayId),
                  static_cast<unsigned long>(port->lineId), OnOff(port->rtpProxy),
                  OnOff(port->symmetricRtp));
    } else {
      line->presentationId = entry.presentationId;
      line->fxsExtra = port->fxsExtra;
      for (int i = 0; i < 4; ++i) line->disconnect.values[i] = port->disconnect[i];
      line->lineId = port->lineId;
      line->gatewayId = port->gatewayId;
      CMCFG_TRACE(this,
                  "GetLineData: extension %s is attached to FXS endpoint MG{%lu}<%lu>, "
                  "presentation ID - %lu.\n",
                  extension.c_str(), static_cast<unsigned long>(port->gatewayId),
                  static_cast<unsigned long>(port->lineId),
                  static_cast<unsigned long>(entry.presentationId));
    }
    // One local and one remote endpoint at most: go on until both are bound.
    return line->gatewayId == INACTIVE_PARTY || line->remote.gatewayId == INACTIVE_PARTY;
  });
  return result;
}
