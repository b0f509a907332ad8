#include "tools/check_pstn.h"

#include "platform/base/string_utils.h"

namespace cmcfg_tool {
namespace {

// The agent's limits on a channel specification: what the hardware can
// have. Kept beside the reading rules below, which mirror the agent's.
const char kAllChannels[] = "all_channels";
const unsigned kMaxTimeSlot = 31;
const size_t kMaxSpans = 64;

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// The number the text starts with after blanks, as the agent reads it:
// the leading digits, cut to 16 bits; 0 without digits.
unsigned LeadingNumber(const std::string& text, size_t from = 0) {
  while (from < text.size() && IsBlank(text[from])) ++from;
  unsigned long value = 0;
  for (; from < text.size() && text[from] >= '0' && text[from] <= '9'; ++from)
    value = (value * 10 + static_cast<unsigned long>(text[from] - '0')) & 0xFFFFFFFFul;
  return static_cast<unsigned short>(value);
}

// Digits with optional blanks around them, at most `max`.
bool IsNumber(const std::string& text, unsigned long max) {
  size_t at = 0;
  while (at < text.size() && IsBlank(text[at])) ++at;
  const size_t digits = at;
  unsigned long value = 0;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    value = value * 10 + static_cast<unsigned long>(text[at] - '0');
    if (value > max) return false;
  }
  if (at == digits) return false;
  while (at < text.size() && IsBlank(text[at])) ++at;
  return at == text.size();
}

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

class SpecReader {
 public:
  std::vector<ChannelProblem> problems;

  void Add(const std::string& piece, const std::string& message) {
    problems.push_back({piece, message});
  }

  // A comma-separated list of numbers, each within 16 bits.
  void List(const std::string& text, const std::string& what, const std::string& where) {
    for (const std::string& piece : StringUtils::ParseCommaLine(text, ',')) {
      if (IsNumber(piece, 0xFFFF)) continue;
      Add(piece, what + " " + Quoted(piece) + " in " + where +
                     " is not a number from 0 to 65535; it reads as " +
                     std::to_string(LeadingNumber(piece)));
    }
  }

  void Slots(const std::string& slots) {
    const size_t dash = slots.find('-');
    if (dash == std::string::npos) {
      List(slots, "time slot", "cas_channels");
      for (const std::string& piece : StringUtils::ParseCommaLine(slots, ','))
        if (LeadingNumber(piece) > kMaxTimeSlot)
          Add(piece, "time slot " + std::to_string(LeadingNumber(piece)) +
                         " in cas_channels is past " + std::to_string(kMaxTimeSlot) +
                         "; it is dropped");
      return;
    }
    const unsigned first = LeadingNumber(slots), last = LeadingNumber(slots, dash + 1);
    if (!IsNumber(slots.substr(0, dash), 0xFFFF) || !IsNumber(slots.substr(dash + 1), 0xFFFF)) {
      Add(slots, "time slots " + Quoted(slots) +
                     " in cas_channels are neither a list nor one range; they read as " +
                     std::to_string(first) + "-" + std::to_string(last));
    } else if (first > last) {
      Add(slots, "time slot range " + Quoted(slots) + " in cas_channels is empty");
    }
    if (last > kMaxTimeSlot)
      Add(slots, "time slot range " + Quoted(slots) + " in cas_channels ends past " +
                     std::to_string(kMaxTimeSlot) + "; it is cut there");
  }
};

}  // namespace

std::vector<ChannelProblem> ChannelListProblems(const std::string& key, const std::string& spec,
                                                AgentParsers& parsers) {
  // What is written against what the agent reads: piece by piece, then the
  // whole list.
  std::vector<ChannelProblem> problems;
  if (spec == kAllChannels) return problems;
  const std::vector<std::string> pieces = StringUtils::ParseCommaLine(spec, ',');
  for (const std::string& piece : pieces) {
    if (IsNumber(piece, 0xFFFF)) continue;
    const std::list<unsigned short> read = parsers.Channels(piece);
    problems.push_back({piece, "channel " + Quoted(piece) + " in " + key +
                                   " is not a number from 0 to 65535; it reads as " +
                                   std::to_string(read.empty() ? 0 : read.front())});
  }
  const size_t kept = parsers.Channels(spec).size();
  if (kept < pieces.size())
    problems.push_back(
        {"", key + " lists more than " + std::to_string(kept) + " channels; the rest are ignored"});
  return problems;
}

std::vector<ChannelProblem> CasProblems(const std::string& spec) {
  SpecReader reader;
  if (spec == kAllChannels) return reader.problems;
  const std::vector<std::string> groups = StringUtils::ParseCommaLine(spec, ';');
  std::vector<unsigned> spans;
  for (const std::string& group : groups) {
    const size_t slash = group.find('/');
    const std::string span = group.substr(0, slash);
    if (!IsNumber(span, 0xFFFF))
      reader.Add(span, "span " + Quoted(span) +
                           " in cas_channels is not a number from 0 to 65535; it reads as " +
                           std::to_string(LeadingNumber(span)));
    if (slash == std::string::npos) {
      reader.Add(group, "span group " + Quoted(group) +
                            " in cas_channels has no \"/\" and no "
                            "time slots");
    } else {
      reader.Slots(group.substr(slash + 1));
    }
    const unsigned number = LeadingNumber(span);
    bool known = false;
    for (unsigned s : spans) known = known || s == number;
    if (!known) spans.push_back(number);
  }
  if (spans.size() > kMaxSpans)
    reader.Add("", "cas_channels holds more than " + std::to_string(kMaxSpans) +
                       " spans; the rest are ignored");
  return reader.problems;
}

void CheckPstnChannels(const std::vector<CheckedFile>& files, AgentParsers& parsers,
                       Findings* findings) {
  for (const CheckedFile& file : files) {
    if (ExtensionKind(file).empty()) continue;
    const cfg::Section* section = file.doc.Find("pstn_agent");
    if (section == nullptr) continue;
    for (const cfg::Entry& entry : section->entries) {
      if (section->Find(entry.key) != &entry) continue;  // only the first of a key is read
      const std::string key(entry.key), value(entry.value);
      std::vector<ChannelProblem> problems;
      if (key == "fxo_channels" || key == "isdn_channels")
        problems = ChannelListProblems(key, value, parsers);
      else if (key == "cas_channels")
        problems = CasProblems(value);
      for (const ChannelProblem& p : problems)
        findings->push_back(FindingAt(file.relative, file.lines, entry.line, p.piece, false,
                                      "pstn-channels", p.message));
    }
  }
}

}  // namespace cmcfg_tool
