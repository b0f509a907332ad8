#include <cctype>
#include <cstdlib>

#include "cmcfg/sup_service_records.h"
#include "cmcfg/system_records.h"
#include "platform/base/number_rules.h"
#include "platform/base/string_utils.h"
#include "platform/base/thread_mutex.h"
#include "platform/blocks/ring_pattern_params.h"
#include "platform/extension/ss_params.h"

ClirData& ClirData::operator=(const SSClirParams& params) {
  active = params.active;
  return *this;
}

CallBlockingData& CallBlockingData::operator=(const SSBlockCallParams& params) {
  active = params.active;
  blockMode = params.blockMode;
  return *this;
}

IntercomData& IntercomData::operator=(const SSIntercomParams& params) {
  mode = params.mode;
  return *this;
}

ManyExtRingData& ManyExtRingData::operator=(const SSManyRingingParams& params) {
  active = params.active;
  extensions.clear();
  if (active) extensions = params.numbers;
  return *this;
}

HuntRingData& HuntRingData::operator=(const SSHuntRingingParams& params) {
  active = params.active;
  targets.clear();
  if (active) {
    for (const auto& target : params.targets) targets.emplace_back(target.first, target.second);
    huntMode = params.huntMode;
  }
  return *this;
}

ForwardData& ForwardData::operator=(const SSForwardParams& params) {
  active = params.active;
  if (params.hasText) {
    text = params.text;
  } else {
    text.clear();
  }
  destinations.clear();
  for (const AddrInfo& entry : params.destinations) {
    if (entry.enabled == 0) continue;
    ForwardParams destination;
    destination.callType = static_cast<CallType>(entry.type);
    if (entry.type == kCallSip) {
      if (!ParseSIPAddress(entry.address, destination.userName, destination.host,
                           destination.port, true)) {
        continue;
      }
    } else if (entry.type == kCallPstn) {
      // "pstn" alone means the trunk without a number.
      if (entry.address != "pstn") destination.userName = entry.address;
    } else {
      destination.userName = entry.address;
    }
    destinations.push_back(destination);
  }
  return *this;
}

namespace {

void CopyDefaultCadence(std::vector<unsigned long>* cadence) {
  MutexLock lock(_gDefRingPattern.mutex);
  *cadence = _gDefRingPattern.cadence;
}

bool IsPatternName(const std::string& text) {
  for (unsigned char c : text) {
    if (!(('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z'))) return false;
  }
  return true;
}

// The cadence of a named ring pattern, or empty when there is none.
std::vector<unsigned long> NamedCadence(const std::string& name) {
  std::vector<unsigned long> cadence;
  RingPatternParams* patterns = RingPatternParams::GetInstance(true);
  if (patterns == nullptr) return cadence;
  for (RingPatternBlock* block : patterns->GetAllBlocks()) {
    if (block->name == name) {
      cadence = block->cadence;
      break;
    }
  }
  RingPatternParams::CloseInstance();
  return cadence;
}

}  // namespace

DistRingData& DistRingData::operator=(const SSDistRingingParams& params) {
  active = params.active;
  cadence.clear();
  if (!active) return *this;
  ringName = params.ringName;
  pattern = params.pattern;
  if (pattern.empty() || pattern == "default") {
    CopyDefaultCadence(&cadence);
    return *this;
  }
  if (IsPatternName(pattern)) {
    cadence = NamedCadence(pattern);
    if (cadence.size() > 1) return *this;
    cadence.clear();
  }
  for (const std::string& piece : StringUtils::ParseCommaLine(pattern, ',')) {
    cadence.push_back(cfg::CadenceValue(piece));
  }
  // A single value is no cadence at all.
  if (cadence.size() <= 1) CopyDefaultCadence(&cadence);
  return *this;
}

bool IncomingServiceSet::IsArmed(bool all) const {
  if (incomingBlocking.active || forwardUnconditional.active) return true;
  if (!all) return false;
  return forwardNoAnswer.active || forwardBusy.active || manyRinging.active || hunt.active;
}
