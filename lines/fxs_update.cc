// Moving an FXS port from one loaded extension to another.
#include "agent/agent_log.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/config_root.h"
#include "platform/blocks/gateway_accessor.h"
#include "platform/line/line_manager.h"

bool CMAgent::UpdateFxsData(unsigned long gatewayId, unsigned long lineId) {
  InstanceRef<GatewayAccessor> gateways(true);
  if (!gateways) return false;
  const GatewayBlock* gateway = gateways->GetBlock(gatewayId);
  if (gateway == nullptr) {
    CMCFG_TRACE(this, "UpdateFxsData: failed to load data for FXS MG{%lu}<%lu>.\n", gatewayId,
                lineId);
    return false;
  }
  if (gateway->IsRemote()) return true;  // remote ports are bound by the gateway itself
  // Always a fresh reading: the port was re-assigned by another process.
  LineManager bindings(LineManagerBase::kLineDb, cfg::TelephonyPath("linedb"), false);
  LineBase* entry = bindings.GetLine(static_cast<uint32_t>(gatewayId),
                                     static_cast<uint32_t>(lineId), false);
  bool result = false;
  if (entry != nullptr && entry->Load()) {
    for (ExtensionData* extension : extensionBase) {
      if (extension == nullptr) continue;
      LineSettings& line = extension->line;
      if (extension->name == entry->extension) {
        CMCFG_TRACE(this, "UpdateFxsData: extension %s, gwID - %lu, lineID - %lu, presentID - %lu.\n",
                    extension->name.c_str(), gatewayId, lineId,
                    static_cast<unsigned long>(entry->presentationId));
        line.gatewayId = static_cast<uint32_t>(gatewayId);
        line.lineId = static_cast<uint32_t>(lineId);
        line.presentationId = entry->presentationId;
        result = true;
      } else if (line.gatewayId == gatewayId && line.lineId == lineId) {
        // The port was taken away from it; its call queue goes with it.
        CMCFG_TRACE(this,
                    "UpdateFxsData: clearing line settings of extension %s, gwID - %lu, lineID - "
                    "%lu, presentID - %lu.\n",
                    extension->name.c_str(), gatewayId, lineId,
                    static_cast<unsigned long>(line.presentationId));
        line.Clear(false);
      }
    }
  }
  return result;
}
