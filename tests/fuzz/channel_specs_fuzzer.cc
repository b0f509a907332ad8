// FXO, ISDN and CAS channel specifications of PSTN-agent extensions: the
// lists stay within what the hardware has, whatever the text asks for.
#include <algorithm>
#include <list>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "platform/base/string_utils.h"
#include "platform/extension/ext_params.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

using Channels = std::list<unsigned short>;
using Spans = std::list<std::pair<unsigned short, Channels>>;

const size_t kMaxChannels = 256;
const size_t kMaxSpans = 64;
const size_t kSlotsPerSpan = 32;

CMAgent* agent = nullptr;  // reachable to the end: no leak

// The documented reading of one number: blanks, then the leading digits,
// kept modulo 2^16 (0 without digits).
unsigned short Leading(const std::string& text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  unsigned value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i)
    value = (value * 10 + static_cast<unsigned>(text[i] - '0')) & 0xFFFFu;
  return static_cast<unsigned short>(value);
}

void CheckChannels(const std::string& spec, const Channels& got) {
  FUZZ_CHECK(got.size() <= kMaxChannels);
  if (spec == "all_channels") {
    FUZZ_CHECK(got.empty());
    return;
  }
  // The numbers in order, duplicates kept, cut after kMaxChannels.
  const std::vector<std::string> pieces = StringUtils::ParseCommaLine(spec, ',');
  FUZZ_CHECK(got.size() == std::min(pieces.size(), kMaxChannels));
  size_t i = 0;
  for (unsigned short channel : got) FUZZ_CHECK(channel == Leading(pieces[i++]));
}

void CheckSpans(const Spans& spans) {
  FUZZ_CHECK(spans.size() <= kMaxSpans);
  std::set<unsigned short> seen;
  for (const auto& span : spans) {
    FUZZ_CHECK(seen.insert(span.first).second);  // one entry per span
    // A span given once keeps its list as written (repeats included), so
    // it is bounded by the list length; merged spans hold each slot once.
    FUZZ_CHECK(span.second.size() <= kMaxChannels);
    for (unsigned short slot : span.second) FUZZ_CHECK(slot < kSlotsPerSpan);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_support::Root();
  // One agent over an empty root, as after a load without PSTN settings.
  agent = new CMAgent;
  agent->Destroy();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string spec(fuzz_support::AsText(data, size));

  Channels channels = {7, 7, 7};  // replaced, not appended to
  agent->GetFxoChannels(spec, &channels);
  CheckChannels(spec, channels);
  agent->GetIsdnData(spec, &channels);
  CheckChannels(spec, channels);

  Spans spans = {{99, {1}}};
  agent->GetCasData(spec, &spans);
  CheckSpans(spans);
  if (spec == "all_channels") FUZZ_CHECK(spans.size() == 1 && spans.front().second.size() == 32);

  // The same three through an extension's trunk block: the input split
  // into the three texts.
  const std::vector<std::string> parts = fuzz_support::Split(spec, 3);
  ExtPstnAgentParams block;
  block.fxoChannels = parts[0];
  block.isdnChannels = parts[1];
  block.casChannels = parts[2];
  ExtensionData extension;
  extension.name = "trunk";
  extension.type = kExtUser;
  FUZZ_CHECK(agent->GetPstnAgentsChannels(&extension, &block));
  CheckChannels(parts[0], extension.fxo.channels);
  CheckChannels(parts[1], extension.isdn.channels);
  CheckSpans(extension.cas.spans);
  return 0;
}
