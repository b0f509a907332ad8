#include "tools/check_pstn.h"

#include <list>
#include <set>

#include "platform/base/string_utils.h"

namespace cmcfg_tool {
namespace {

const char kAllChannels[] = "all_channels";

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

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

// What the agent reads from a CAS text, asked of its own parser.
class CasReader {
 public:
  explicit CasReader(AgentParsers& parsers) : parsers_(parsers) {
    // The last time slot the agent keeps: what it makes of every slot.
    const auto all = parsers_.CasSpans("0/0-65535");
    maxSlot_ = all.empty() || all.front().second.empty() ? 0 : all.front().second.back();
  }

  // The span number the agent reads from `span`.
  unsigned Span(const std::string& span) {
    const auto spans = parsers_.CasSpans(span + "/1");
    return spans.empty() ? 0 : spans.front().first;
  }
  // The slots the agent reads from `slots`, in order.
  std::list<unsigned short> Slots(const std::string& slots) {
    const auto spans = parsers_.CasSpans("0/" + slots);
    return spans.empty() ? std::list<unsigned short>() : spans.front().second;
  }
  unsigned maxSlot() const { return maxSlot_; }

 private:
  AgentParsers& parsers_;
  unsigned maxSlot_ = 0;
};

void CheckSlots(const std::string& slots, CasReader& reader, std::vector<ChannelProblem>* out) {
  const std::string max = std::to_string(reader.maxSlot());
  const size_t dash = slots.find('-');
  if (dash == std::string::npos) {
    for (const std::string& piece : StringUtils::ParseCommaLine(slots, ',')) {
      if (!IsNumber(piece, 0xFFFF)) {
        const std::list<unsigned short> read = reader.Slots(piece);
        out->push_back({piece, "time slot " + Quoted(piece) +
                                   " in cas_channels is not a number from 0 to 65535; " +
                                   (read.empty() ? std::string("it is dropped")
                                                 : "it reads as " + std::to_string(read.front()))});
      } else if (std::stoul(piece) > reader.maxSlot()) {
        out->push_back({piece, "time slot " + std::to_string(std::stoul(piece)) +
                                   " in cas_channels is past " + max + "; it is dropped"});
      }
    }
    return;
  }
  const std::string first = slots.substr(0, dash), last = slots.substr(dash + 1);
  const std::list<unsigned short> read = reader.Slots(slots);
  if (!IsNumber(first, 0xFFFF) || !IsNumber(last, 0xFFFF)) {
    const std::string range =
        read.empty() ? std::string("nothing")
                     : std::to_string(read.front()) + "-" + std::to_string(read.back());
    out->push_back({slots, "time slots " + Quoted(slots) +
                               " in cas_channels are neither a list nor one range; they read as " +
                               range});
    return;
  }
  if (std::stoul(first) > std::stoul(last))
    out->push_back({slots, "time slot range " + Quoted(slots) + " in cas_channels is empty"});
  else if (std::stoul(last) > reader.maxSlot())
    out->push_back({slots, "time slot range " + Quoted(slots) + " in cas_channels ends past " +
                               max + "; it is cut there"});
}

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

std::vector<ChannelProblem> CasProblems(const std::string& spec, AgentParsers& parsers) {
  std::vector<ChannelProblem> problems;
  if (spec == kAllChannels) return problems;
  CasReader reader(parsers);
  std::set<unsigned> spans;
  for (const std::string& group : StringUtils::ParseCommaLine(spec, ';')) {
    const size_t slash = group.find('/');
    const std::string span = group.substr(0, slash);
    const unsigned number = reader.Span(span);
    if (!IsNumber(span, 0xFFFF))
      problems.push_back({span, "span " + Quoted(span) +
                                    " in cas_channels is not a number from 0 to 65535; it reads "
                                    "as " +
                                    std::to_string(number)});
    if (slash == std::string::npos)
      problems.push_back({group, "span group " + Quoted(group) +
                                     " in cas_channels has no \"/\" and no time slots"});
    else
      CheckSlots(group.substr(slash + 1), reader, &problems);
    spans.insert(number);
  }
  const size_t kept = parsers.CasSpans(spec).size();
  if (kept < spans.size())
    problems.push_back({"", "cas_channels holds more than " + std::to_string(kept) +
                                " spans; the rest are ignored"});
  return problems;
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
        problems = CasProblems(value, parsers);
      for (const ChannelProblem& p : problems)
        findings->push_back(FindingAt(file.relative, file.lines, entry.line, p.piece, false,
                                      "pstn-channels", p.message));
    }
  }
}

}  // namespace cmcfg_tool
