// PSTN trunks: which kind of PSTN agent runs, and the channel sets of
// PSTN-agent extensions.
#include <algorithm>

#include "agent/agent_log.h"
#include "agent/extension_frame.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/number_rules.h"
#include "platform/base/string_utils.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/extension/extension_manager.h"

namespace {

const char kAllChannels[] = "all_channels";
const char kAllCasChannels[] = "0/0-31";

// What the hardware can have: a file asking for more is cut to it, so one
// value cannot make the agent allocate without end.
const unsigned kMaxTimeSlot = 31;   // an E1 frame has 32 time slots
const size_t kMaxSpans = 64;
const size_t kMaxChannels = 256;

// The comma-separated numbers, at most kMaxChannels; *cut tells when more
// were given.
std::list<unsigned short> NumberList(const std::string& spec, bool* cut) {
  std::list<unsigned short> numbers;
  for (const std::string& piece : StringUtils::ParseCommaLine(spec, ',')) {
    if (numbers.size() == kMaxChannels) {
      *cut = true;
      break;
    }
    numbers.push_back(cfg::LeadingDigits(piece));
  }
  return numbers;
}

// The slots after a span's "/": a list, or one range "first-last" (a list
// holding a "-" is read as the range from its first number). Slots past
// the frame's last are dropped.
std::list<unsigned short> CasSlots(const std::string& slots, bool* cut) {
  std::string::size_type dash = slots.find('-');
  std::list<unsigned short> found;
  if (dash == std::string::npos) {
    found = NumberList(slots, cut);
  } else {
    unsigned first = cfg::LeadingDigits(slots), last = cfg::LeadingDigits(slots, dash + 1);
    if (last > kMaxTimeSlot) last = kMaxTimeSlot, *cut = true;
    for (unsigned slot = first; slot <= last; ++slot) found.push_back(static_cast<unsigned short>(slot));
  }
  size_t before = found.size();
  found.remove_if([](unsigned short slot) { return slot > kMaxTimeSlot; });
  if (found.size() != before) *cut = true;
  return found;
}

}  // namespace

bool CMAgent::GetPstnAgentData(bool createIfMissing) {
  InstanceRef<GeneralSettingsAccessor> settings(createIfMissing);
  if (!settings) return false;
  GeneralSettingsAccessor::Lock lock;  // no reload by another thread meanwhile
  if (settings->fxoAgent != 0) {
    CMCFG_TRACE(this, "GetPstnAgentData: PSTN agent type is FXO.\n");
    generalData.pstnAgentType = 1;
    return true;
  }
  if (settings->isdnAgent == 0 && settings->casAgent != 0) {
    generalData.pstnAgentType = 3;
    generalData.casAgentFlag = 1;
  }
  return false;  // only an FXO agent counts as loaded
}

bool CMAgent::GetPstnAgentsChannels(ExtensionData* extension, ExtPstnAgentParams* block) {
  if (extension == nullptr) return false;
  ExtensionFrame frame(this, CMCFG_FRAME_LINES("GetPstnAgentsChannels"));
  block = frame.Fetch(block, extension->type, extension->name);
  if (block == nullptr) return false;
  GetCasData(block->casChannels, &extension->cas.spans);
  GetIsdnData(block->isdnChannels, &extension->isdn.channels);
  GetFxoChannels(block->fxoChannels, &extension->fxo.channels);
  CMCFG_TRACE(this, "GetPstnAgentsChannels: extension %s.\n", extension->name.c_str());
  return true;
}

void CMAgent::GetFxoChannels(const std::string& spec, std::list<unsigned short>* channels) {
  if (channels == nullptr) return;
  channels->clear();
  if (spec == kAllChannels) return;  // an empty list means every channel
  bool cut = false;
  *channels = NumberList(spec, &cut);
  if (cut) CMCFG_TRACE(this, "GetFxoChannels: more than %u channels in \"%s\"; the rest ignored.\n",
                       static_cast<unsigned>(kMaxChannels), spec.c_str());
}

void CMAgent::GetIsdnData(const std::string& spec, std::list<unsigned short>* channels) {
  GetFxoChannels(spec, channels);
}

void CMAgent::GetCasData(const std::string& spec,
                         std::list<std::pair<unsigned short, std::list<unsigned short>>>* spans) {
  if (spans == nullptr) return;
  spans->clear();
  const std::string text = spec == kAllChannels ? kAllCasChannels : spec;
  bool cut = false;
  for (const std::string& group : StringUtils::ParseCommaLine(text, ';')) {
    std::string::size_type slash = group.find('/');
    unsigned short span = cfg::LeadingDigits(group);
    std::list<unsigned short> slots = slash == std::string::npos
                                          ? std::list<unsigned short>()
                                          : CasSlots(group.substr(slash + 1), &cut);
    auto same = std::find_if(spans->begin(), spans->end(),
                             [span](const auto& entry) { return entry.first == span; });
    if (same == spans->end()) {
      if (spans->size() == kMaxSpans) {
        cut = true;
        continue;
      }
      spans->emplace_back(span, slots);  // a first occurrence keeps its order
      continue;
    }
    same->second.splice(same->second.end(), slots);
    same->second.sort();
    same->second.unique();
  }
  if (cut) CMCFG_TRACE(this, "GetCasData: more than %u spans or slots past %u in \"%s\"; ignored.\n",
                       static_cast<unsigned>(kMaxSpans), kMaxTimeSlot, spec.c_str());
}
