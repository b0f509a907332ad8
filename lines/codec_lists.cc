// Codec and fax-codec lists of extensions and attendants.
#include <memory>

#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"
#include "cmcfg/functions.h"
#include "platform/base/config_root.h"
#include "platform/base/string_utils.h"
#include "platform/extension/extension_manager.h"
#include "platform/line/codecs.h"

namespace {

const int kNoDspCodec = -1;

CodecInfo MakeCodec(int dsp, const std::string& name, bool mark) {
  CodecInfo codec;
  codec.dspCodec = static_cast<uint16_t>(dsp);
  codec.rtpCodec = GetRtpCodecByDspCodec(dsp);
  codec.samplingRate = GetSamplingRate(dsp);
  codec.flags = mark ? 1 : 0;
  codec.name = name;
  return codec;
}

std::list<std::string> SplitNames(const std::string& names) {
  std::vector<std::string> pieces = StringUtils::ParseCommaLine(names, ',');
  return std::list<std::string>(pieces.begin(), pieces.end());
}

void TraceListSizes(CMAgent* agent, const char* operation, const std::string& name,
                    const std::list<CodecInfo>& voice, const std::list<FaxCodecInfo>& fax,
                    const std::list<CodecInfo>& transparent, const std::list<CodecInfo>& modem) {
  CMCFG_TRACE(agent,
              "%s: extension %s, list sizes: voice = %u, fax = %u, fax transp. = %u, modem = %u.\n",
              operation, name.c_str(), static_cast<unsigned>(voice.size()),
              static_cast<unsigned>(fax.size()), static_cast<unsigned>(transparent.size()),
              static_cast<unsigned>(modem.size()));
}

}  // namespace

namespace {

// The modem and fax lists, alike for extensions and attendants.
void FillMediaLists(CMAgent* agent, const ExtCodecParams& block, std::list<CodecInfo>& modem,
                    std::list<FaxCodecInfo>& fax, std::list<CodecInfo>& transparent) {
  // G.723 is never offered for modem calls.
  AddLineCodecsToList(block.modemCodecs, modem, false, false, true);
  agent->FillFaxCodecs(block.faxCodecs, fax, transparent);
}

}  // namespace

void AddLineCodecsToList(const std::list<std::string>& names, std::list<CodecInfo>& codecs,
                         bool allowG723, bool append, bool mark) {
  if (!append) codecs.clear();
  for (const std::string& name : names) {
    // G.729a is offered under the G.729 name but keeps its own DSP codec.
    const std::string listed = name == "G729a" ? "G729" : name;
    if (!allowG723 && listed == "G723") continue;
    int dsp = GetDspCodecByName(name);
    if (dsp == kNoDspCodec) continue;
    codecs.push_back(MakeCodec(dsp, listed, mark));
  }
}

void AddLineCodecsToList(const std::string& names, std::list<CodecInfo>& codecs, bool allowG723,
                         bool append, bool mark) {
  AddLineCodecsToList(SplitNames(names), codecs, allowG723, append, mark);
}

bool CMAgent::FillFaxCodecs(const std::list<std::string>& names, std::list<FaxCodecInfo>& faxCodecs,
                            std::list<CodecInfo>& transparentCodecs) {
  faxCodecs.clear();
  transparentCodecs.clear();
  std::unique_ptr<EncodingManager> temporary;
  EncodingManager* encodings = encodingManager;
  if (encodings == nullptr) {
    temporary.reset(new EncodingManager("", cfg::TelephonyPath("fax.cfg"), false));
    encodings = temporary.get();
  }
  for (const std::string& name : names) {
    int dsp = GetDspCodecByName(name);
    if (dsp != kNoDspCodec) {
      transparentCodecs.push_back(MakeCodec(dsp, name, true));
      continue;
    }
    if (const FaxEncoding* encoding = encodings->GetFaxEncoding(name, true)) {
      FaxCodecInfo fax;
      for (int i = 0; i < 11; ++i) fax.values[i] = encoding->values[i];
      faxCodecs.push_back(fax);
    }
  }
  return true;
}

bool CMAgent::FillFaxCodecs(const char* names, std::list<FaxCodecInfo>& faxCodecs,
                            std::list<CodecInfo>& transparentCodecs) {
  return FillFaxCodecs(SplitNames(names ? names : ""), faxCodecs, transparentCodecs);
}

bool CMAgent::GetCodecData(ExtensionData* extension, ExtCodecParams* block) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetCodecData"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  LineSettings& line = extension->line;
  AddLineCodecsToList(block->voiceCodecs, line.voiceCodecs, true, false, false);
  AddLineCodecsToList(block->extraVoiceCodecs, line.voiceCodecs, true, true, false);
  FillMediaLists(this, *block, line.modem.modemCodecs, line.fax.faxCodecs, line.fax.faxTransparentCodecs);
  line.codecOption = block->codecOption;
  TraceListSizes(this, "GetCodecData", extension->name, line.voiceCodecs, line.fax.faxCodecs,
                 line.fax.faxTransparentCodecs, line.modem.modemCodecs);
  return true;
}

bool CMAgent::GetAttCodecData(Attendant* attendant, ExtCodecParams* block) {
  if (attendant == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetAttCodecData"));
  block = frame.FetchAttendant(block, attendant->name, IsSystemAttendant(*this, *attendant));
  if (block == nullptr) return false;
  AddLineCodecsToList(block->voiceCodecs, attendant->voiceCodecs, true, false, false);
  // An attendant without its own voice codecs offers the system's default
  // list; extensions get no such fallback.
  if (attendant->voiceCodecs.empty()) attendant->voiceCodecs = generalData.defaultVoiceCodecs;
  AddLineCodecsToList(block->extraVoiceCodecs, attendant->voiceCodecs, true, true, false);
  FillMediaLists(this, *block, attendant->modemCodecs, attendant->faxCodecs,
                 attendant->faxTransparentCodecs);
  attendant->codecOption = block->codecOption;
  TraceListSizes(this, "GetAttCodecData", attendant->name, attendant->voiceCodecs,
                 attendant->faxCodecs, attendant->faxTransparentCodecs, attendant->modemCodecs);
  return true;
}
