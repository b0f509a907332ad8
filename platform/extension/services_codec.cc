// The supplementary services of an address-book contact in the extension
// file: one section per service, "contact ID SERVICE".
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "platform/base/field_table.h"
#include "platform/base/value_codec.h"
#include "platform/extension/extension_rep.h"

namespace extdb {
namespace {

using cfg::FormatValue;
using cfg::ParseValue;

struct ServiceInfo {
  unsigned bit;
  const char* name;
};

const ServiceInfo kServices[] = {
    {0x001, "clir"},
    {0x002, "incoming_blocking"},
    {0x004, "outgoing_blocking"},
    {0x008, "distinctive_ringing"},
    {0x010, "hunting"},
    {0x020, "many_ringing"},
    {0x040, "forward_unconditional"},
    {0x080, "forward_no_answer"},
    {0x100, "forward_busy"},
    {0x200, "intercom"},
};

const cfg::Field<SSClirParams> kClirFields[] = {{"active", &SSClirParams::active}};

const cfg::Field<SSBlockCallParams> kBlockFields[] = {
    {"active", &SSBlockCallParams::active},
    {"block_anonymous", &SSBlockCallParams::blockAnonymous},
    {"block_international", &SSBlockCallParams::blockInternational},
    {"block_mode", &SSBlockCallParams::blockMode},
};

const cfg::Field<SSDistRingingParams> kDistRingFields[] = {
    {"active", &SSDistRingingParams::active},
    {"ring_name", &SSDistRingingParams::ringName},
    {"pattern", &SSDistRingingParams::pattern},
};

const cfg::Field<SSHuntRingingParams> kHuntFields[] = {
    {"active", &SSHuntRingingParams::active},
    {"hunt_mode", &SSHuntRingingParams::huntMode},
};

const cfg::Field<SSManyRingingParams> kManyFields[] = {
    {"active", &SSManyRingingParams::active},
    {"numbers", &SSManyRingingParams::numbers},
};

const cfg::Field<SSForwardParams> kForwardFields[] = {{"active", &SSForwardParams::active}};

const cfg::Field<SSIntercomParams> kIntercomFields[] = {{"mode", &SSIntercomParams::mode}};

// "target_N = number,ring time"; the ring time may be left out. False for
// a ring time that is no number: the target is skipped.
bool ParseHuntTarget(std::string_view value, std::pair<std::string, int32_t>* target) {
  size_t comma = value.find(',');
  int32_t ringTime = 0;
  if (comma != std::string_view::npos && !ParseValue(value.substr(comma + 1), &ringTime))
    return false;
  *target = {std::string(value.substr(0, comma)), ringTime};
  return true;
}

void ReadHunt(const cfg::Section& section, SSHuntRingingParams* hunt) {
  cfg::ReadFields(section, kHuntFields, hunt);
  hunt->targets.clear();
  ForNumberedKeys(section, "target_", [&](std::string_view value) {
    std::pair<std::string, int32_t> target;
    if (ParseHuntTarget(value, &target)) hunt->targets.push_back(std::move(target));
  });
}

void ReadForward(const cfg::Section& section, SSForwardParams* forward) {
  cfg::ReadFields(section, kForwardFields, forward);
  const cfg::Entry* text = section.Find("text");
  forward->hasText = text != nullptr;
  forward->text = text ? std::string(text->value) : std::string();
  forward->destinations.clear();
  ForNumberedKeys(section, "destination_", [&](std::string_view value) {
    AddrInfo info;
    if (ParseAddressEntry(value, &info)) forward->destinations.push_back(info);
  });
}

SSForwardParams* ForwardOf(SupServAccessor* a, unsigned bit) {
  return bit == 0x040 ? &a->forwardUnconditional
                      : bit == 0x080 ? &a->forwardNoAnswer : &a->forwardBusy;
}

const SSForwardParams& ForwardOf(const SupServAccessor& a, unsigned bit) {
  return bit == 0x040 ? a.forwardUnconditional : bit == 0x080 ? a.forwardNoAnswer : a.forwardBusy;
}

void ReadService(const cfg::Section& section, unsigned bit, SupServAccessor* out) {
  switch (bit) {
    case 0x001: cfg::ReadFields(section, kClirFields, &out->clir); break;
    case 0x002: cfg::ReadFields(section, kBlockFields, &out->incomingBlocking); break;
    case 0x004: cfg::ReadFields(section, kBlockFields, &out->outgoingBlocking); break;
    case 0x008: cfg::ReadFields(section, kDistRingFields, &out->distRinging); break;
    case 0x010: ReadHunt(section, &out->hunt); break;
    case 0x020: cfg::ReadFields(section, kManyFields, &out->manyRinging); break;
    case 0x040:
    case 0x080:
    case 0x100: ReadForward(section, ForwardOf(out, bit)); break;
    case 0x200: cfg::ReadFields(section, kIntercomFields, &out->intercom); break;
  }
}

// The number of a numbered key ("destination_12" -> 12), or 0.
unsigned long KeyNumber(std::string_view key, std::string_view prefix) {
  unsigned long n = 0;
  if (!IsNumberedKey(key, prefix) || !ParseValue(key.substr(prefix.size()), &n)) return 0;
  return n;
}

// Makes the numbered entries `prefix`N of `section` read as `values`, in
// order, changing as few lines as possible: entries whose value stays are
// kept, a changed value is set in its own entry, and an added value gets a
// new entry right after the one before it, numbered past every number in
// use (the reader takes them in file order, whatever their numbers).
void SetNumbered(cfg::Document* doc, cfg::Section* section, std::string_view prefix,
                 const std::vector<std::string>& values) {
  cfg::EntryList& entries = section->entries;
  std::vector<size_t> old;  // indices of the numbered entries, in file order
  unsigned long next = 1;
  for (size_t i = 0; i < entries.size(); ++i) {
    if (!IsNumberedKey(entries[i].key, prefix)) continue;
    old.push_back(i);
    next = std::max(next, KeyNumber(entries[i].key, prefix) + 1);
  }
  if (!section->verbatim().empty()) {
    // Verbatim lines stand at entry positions, which a rebuilt list would
    // move: the numbered entries are written afresh at the end instead.
    std::vector<std::string> keys;
    for (const size_t i : old) keys.emplace_back(entries[i].key);
    for (const std::string& key : keys) doc->Remove(*section, key);
    unsigned long n = 0;
    for (const std::string& v : values) doc->Set(*section, std::string(prefix) + std::to_string(++n), v);
    return;
  }
  // Longest common subsequence of the old and new values: those stay.
  const size_t m = old.size(), k = values.size();
  std::vector<std::vector<uint16_t>> lcs(m + 1, std::vector<uint16_t>(k + 1, 0));
  for (size_t i = m; i-- > 0;)
    for (size_t j = k; j-- > 0;)
      lcs[i][j] = entries[old[i]].value == values[j]
                      ? static_cast<uint16_t>(lcs[i + 1][j + 1] + 1)
                      : std::max(lcs[i + 1][j], lcs[i][j + 1]);
  // Walk both lists; between two kept entries, old entries take the new
  // values in place, and what is left over is removed or added.
  std::vector<std::vector<std::string>> added_after(m + 1);  // [m]: before the first
  std::vector<bool> removed(m, false);
  std::vector<size_t> gap_old;
  std::vector<size_t> gap_new;
  size_t last = m;  // the old entry new ones follow; m: none yet
  auto close_gap = [&] {
    size_t pairs = std::min(gap_old.size(), gap_new.size());
    for (size_t p = 0; p < pairs; ++p) {
      entries[old[gap_old[p]]].value = doc->Intern(values[gap_new[p]]);
      last = gap_old[p];
    }
    for (size_t p = pairs; p < gap_old.size(); ++p) removed[gap_old[p]] = true;
    for (size_t p = pairs; p < gap_new.size(); ++p) added_after[last].push_back(values[gap_new[p]]);
    gap_old.clear();
    gap_new.clear();
  };
  size_t i = 0, j = 0;
  while (i < m || j < k) {
    if (i < m && j < k && entries[old[i]].value == values[j]) {
      close_gap();
      last = i;
      ++i;
      ++j;
    } else if (j == k || (i < m && lcs[i + 1][j] >= lcs[i][j + 1])) {
      gap_old.push_back(i++);
    } else {
      gap_new.push_back(j++);
    }
  }
  close_gap();
  cfg::EntryList rebuilt(entries.get_allocator());
  rebuilt.reserve(entries.size() + values.size());
  auto add = [&](const std::vector<std::string>& texts) {
    for (const std::string& v : texts)
      rebuilt.push_back(cfg::Entry{doc->Intern(std::string(prefix) + std::to_string(next++)),
                                   doc->Intern(v), 0});
  };
  size_t o = 0;
  for (size_t e = 0; e < entries.size(); ++e) {
    if (o < m && old[o] == e) {
      if (o == 0) add(added_after[m]);
      if (!removed[o]) rebuilt.push_back(entries[e]);
      add(added_after[o]);
      ++o;
    } else {
      rebuilt.push_back(entries[e]);
    }
  }
  if (m == 0) add(added_after[m]);
  entries = std::move(rebuilt);
}

// Makes `section` read as the service's values, changing only what differs.
void WriteService(const SupServAccessor& in, unsigned bit, cfg::Document* doc,
                  cfg::Section* section) {
  switch (bit) {
    case 0x001: cfg::WriteFields(in.clir, kClirFields, doc, section); break;
    case 0x002: cfg::WriteFields(in.incomingBlocking, kBlockFields, doc, section); break;
    case 0x004: cfg::WriteFields(in.outgoingBlocking, kBlockFields, doc, section); break;
    case 0x008: cfg::WriteFields(in.distRinging, kDistRingFields, doc, section); break;
    case 0x010: {
      cfg::WriteFields(in.hunt, kHuntFields, doc, section);
      std::vector<std::string> targets;
      for (const auto& target : in.hunt.targets)
        targets.push_back(target.first + "," + FormatValue(target.second));
      SetNumbered(doc, section, "target_", targets);
      break;
    }
    case 0x020: cfg::WriteFields(in.manyRinging, kManyFields, doc, section); break;
    case 0x040:
    case 0x080:
    case 0x100: {
      const SSForwardParams& forward = ForwardOf(in, bit);
      cfg::WriteFields(forward, kForwardFields, doc, section);
      if (forward.hasText) {
        doc->Set(*section, "text", forward.text);
      } else {
        doc->Remove(*section, "text");
      }
      std::vector<std::string> destinations;
      for (const AddrInfo& info : forward.destinations)
        destinations.push_back(FormatAddressEntry(info));
      SetNumbered(doc, section, "destination_", destinations);
      break;
    }
    case 0x200: cfg::WriteFields(in.intercom, kIntercomFields, doc, section); break;
  }
}

bool AcceptsAddressEntry(std::string_view value) {
  AddrInfo info;
  return ParseAddressEntry(value, &info);
}

cfg::KeyRules ServiceRules(unsigned bit) {
  switch (bit) {
    case 0x001: return cfg::FieldRules(kClirFields);
    case 0x002:
    case 0x004: return cfg::FieldRules(kBlockFields);
    case 0x008: return cfg::FieldRules(kDistRingFields);
    case 0x010: {
      cfg::KeyRules rules = cfg::FieldRules(kHuntFields);
      rules.push_back(cfg::NumberedRule(
          "target_",
          [](std::string_view value) {
            std::pair<std::string, int32_t> target;
            return ParseHuntTarget(value, &target);
          },
          "\"number\" or \"number,ring time\""));
      return rules;
    }
    case 0x020: return cfg::FieldRules(kManyFields);
    case 0x040:
    case 0x080:
    case 0x100: {
      cfg::KeyRules rules = cfg::FieldRules(kForwardFields);
      rules.push_back(cfg::RuleFor<std::string>("text"));
      rules.push_back(cfg::NumberedRule("destination_", AcceptsAddressEntry,
                                        "\"enabled,type,address\""));
      return rules;
    }
    default: return cfg::FieldRules(kIntercomFields);
  }
}

}  // namespace

const cfg::KeyRules* ServiceSectionRules(std::string_view name, unsigned long* contact) {
  static const std::vector<cfg::KeyRules> kRules = [] {
    std::vector<cfg::KeyRules> rules;
    for (const ServiceInfo& s : kServices) rules.push_back(ServiceRules(s.bit));
    return rules;
  }();
  // "contact ID SERVICE", the id written as the writer writes it: the
  // reader looks the section up by that exact name.
  const size_t space = name.rfind(' ');
  unsigned long id = 0;
  if (space == std::string_view::npos || !ContactId(name.substr(0, space), &id) ||
      name.substr(0, space) != ContactSection(id))
    return nullptr;
  const std::string_view service = name.substr(space + 1);
  for (size_t i = 0; i < std::size(kServices); ++i)
    if (service == kServices[i].name) {
      *contact = id;
      return &kRules[i];
    }
  return nullptr;
}

std::string ContactSection(unsigned long id) { return "contact " + std::to_string(id); }

std::string ServiceSection(unsigned long id, const char* service) {
  return ContactSection(id) + " " + service;
}

const char* ServiceName(unsigned bit) {
  for (const ServiceInfo& s : kServices)
    if (s.bit == bit) return s.name;
  return nullptr;
}

std::string FormatAddressEntry(const AddrInfo& info) {
  return FormatValue(info.enabled) + "," + FormatValue(info.type) + "," + info.address;
}

void ReadServices(const cfg::Document& doc, unsigned long id, unsigned mask, SupServAccessor* out,
                  unsigned* found) {
  *found = 0;
  for (const ServiceInfo& s : kServices) {
    if (!(mask & s.bit)) continue;
    const cfg::Section* section = doc.Find(ServiceSection(id, s.name));
    if (section == nullptr) continue;
    ReadService(*section, s.bit, out);
    *found |= s.bit;
  }
}

bool CanWriteServices(const SupServAccessor& in, unsigned mask) {
  // "target_N = number,ring time": the number ends at the first comma.
  if (mask & 0x010)
    for (const auto& target : in.hunt.targets)
      if (!cfg::IsListMember(target.first)) return false;
  return !(mask & 0x020) || cfg::CanWriteFields(in.manyRinging, kManyFields);
}

void WriteServices(const SupServAccessor& in, unsigned long id, unsigned mask, cfg::Document* doc) {
  for (const ServiceInfo& s : kServices) {
    if (!(mask & s.bit)) continue;
    const std::string name = ServiceSection(id, s.name);
    cfg::Section* section = doc->Find(name);
    if (section == nullptr) section = &doc->AddBeside(name);
    WriteService(in, s.bit, doc, section);
  }
}

void WriteContact(const AddressPatternBlock& block, cfg::Document* doc) {
  const std::string name = ContactSection(block.id);
  cfg::Section* section = doc->Find(name);
  if (section == nullptr) section = &doc->AddBeside(name);
  doc->Set(*section, "name", block.name);
  doc->Set(*section, "call_type", FormatValue(block.callType));
}

}  // namespace extdb
