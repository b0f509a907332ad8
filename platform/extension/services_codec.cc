// The supplementary services of an address-book contact in the extension
// file: one section per service, "contact ID SERVICE".
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

// Puts the service's keys into an emptied section.
void WriteService(const SupServAccessor& in, unsigned bit, cfg::Document* doc,
                  cfg::Section* section) {
  switch (bit) {
    case 0x001: cfg::WriteFields(in.clir, kClirFields, doc, section); break;
    case 0x002: cfg::WriteFields(in.incomingBlocking, kBlockFields, doc, section); break;
    case 0x004: cfg::WriteFields(in.outgoingBlocking, kBlockFields, doc, section); break;
    case 0x008: cfg::WriteFields(in.distRinging, kDistRingFields, doc, section); break;
    case 0x010: {
      cfg::WriteFields(in.hunt, kHuntFields, doc, section);
      int n = 0;
      for (const auto& target : in.hunt.targets)
        doc->Set(*section, "target_" + std::to_string(++n),
                 target.first + "," + FormatValue(target.second));
      break;
    }
    case 0x020: cfg::WriteFields(in.manyRinging, kManyFields, doc, section); break;
    case 0x040:
    case 0x080:
    case 0x100: {
      const SSForwardParams& forward = ForwardOf(in, bit);
      cfg::WriteFields(forward, kForwardFields, doc, section);
      if (forward.hasText) doc->Set(*section, "text", forward.text);
      int n = 0;
      for (const AddrInfo& info : forward.destinations)
        doc->Set(*section, "destination_" + std::to_string(++n), FormatAddressEntry(info));
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
    if (section == nullptr) {
      section = &doc->Add(name);
    } else {
      section->entries.clear();
    }
    WriteService(in, s.bit, doc, section);
  }
}

void WriteContact(const AddressPatternBlock& block, cfg::Document* doc) {
  const std::string name = ContactSection(block.id);
  cfg::Section* section = doc->Find(name);
  if (section == nullptr) section = &doc->Add(name);
  doc->Set(*section, "name", block.name);
  doc->Set(*section, "call_type", FormatValue(block.callType));
}

}  // namespace extdb
