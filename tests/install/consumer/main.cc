// A call manager in miniature: load an (empty) configuration through the
// installed library and use a little of every exported piece.
#include <cstdio>

#include <cmcfg/caller_id_manager.h>
#include <cmcfg/cm_agent.h>
#include <cmcfg/functions.h>
#include <cmcfg/tone_type_reader.h>
#include <cmcfg/trunk_signaling_params.h>

int main() {
  CMAgent agent;
  agent.Destroy();
  std::string lan;
  GetLanIfName(lan);
  std::list<CodecInfo> codecs;
  AddLineCodecsToList(std::string("G711A,G729"), codecs, true, false, false);
  CallParams caller;
  caller.userName = "101";
  GeneralData data;
  data.callerIdLocal = "<%u>";
  std::string callerId;
  CallerIDManager().Parse(CallerIDManager::kLocal, caller, data, &callerId);
  bool ok = agent.extensionBase.size() == 64 && callerId == "<101>" &&
            ToneTypeReader().GetDefaultTone(DeviceTone_InsideDial).frequency_1 == 400 && lan == "eth0" && codecs.size() == 2 &&
            TokenMaker("line", 7) == "line7" &&
            std::string(TrunkSignalingParams::signalingNames[0]) == "Non" &&
            INACTIVE_PARTY == 0xFFFFFFFFu;
  std::printf("%s\n", ok ? "ok" : "unexpected results");
  return ok ? 0 : 1;
}
