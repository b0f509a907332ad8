// Decoding of an extension file's sections into its parameter blocks.
#include <string>

#include "platform/base/field_table.h"
#include "platform/base/value_codec.h"
#include "platform/extension/extension_rep.h"

namespace extdb {

using cfg::ParseValue;

bool ParseAddressEntry(std::string_view text, AddrInfo* out) {
  size_t first = text.find(',');
  if (first == std::string_view::npos) return false;
  size_t second = text.find(',', first + 1);
  if (second == std::string_view::npos) return false;
  AddrInfo info;
  if (!ParseValue(text.substr(0, first), &info.enabled) ||
      !ParseValue(text.substr(first + 1, second - first - 1), &info.type))
    return false;
  info.address = std::string(text.substr(second + 1));
  *out = info;
  return true;
}

namespace {

const cfg::Field<ExtSipSettingsParams> kSipFields[] = {
    {"auth_name", &ExtSipSettingsParams::authName},
    {"user_name", &ExtSipSettingsParams::userName},
    {"password", &ExtSipSettingsParams::password},
    {"host", &ExtSipSettingsParams::host},
    {"port", &ExtSipSettingsParams::port, &cfg::kPortDomain},
    {"proxy", &ExtSipSettingsParams::proxy},
    {"outbound_proxy", &ExtSipSettingsParams::outboundProxy},
    {"transport", &ExtSipSettingsParams::transport, &cfg::kTransportDomain},
    {"domain", &ExtSipSettingsParams::domain},
    {"display_name", &ExtSipSettingsParams::displayName},
    {"contact", &ExtSipSettingsParams::contact},
    {"register_expiry", &ExtSipSettingsParams::registerExpiry, &cfg::kCountDomain},
    {"registration_enabled", &ExtSipSettingsParams::registrationEnabled, &cfg::kFlagDomain},
    {"sip_keep_alive", &ExtSipSettingsParams::sipKeepAlive, &cfg::kCountDomain},
};

const cfg::Field<ExtPersonalInfoParams> kPersonalFields[] = {
    {"full_name", &ExtPersonalInfoParams::fullName},
    {"email", &ExtPersonalInfoParams::email},
    {"password", &ExtPersonalInfoParams::password},
    {"password_policy", &ExtPersonalInfoParams::passwordPolicy},
    {"language", &ExtPersonalInfoParams::language},
    {"user_class", &ExtPersonalInfoParams::userClass},
    {"remote_access", &ExtPersonalInfoParams::remoteAccess},
    {"tos_profile", &ExtPersonalInfoParams::tosProfile},
    {"queue_enabled", &ExtPersonalInfoParams::queueEnabled, &cfg::kFlagDomain},
    {"queue_size", &ExtPersonalInfoParams::queueSize, &cfg::kCountDomain},
    {"queue_mode", &ExtPersonalInfoParams::queueMode},
    {"queue_disabled", &ExtPersonalInfoParams::queueDisabled},
    {"queue_overflow", &ExtPersonalInfoParams::queueOverflow, &cfg::kFlagDomain},
    {"announcement_enabled", &ExtPersonalInfoParams::announcementEnabled, &cfg::kFlagDomain},
    {"announcement_value", &ExtPersonalInfoParams::announcementValue},
    {"announcement_text", &ExtPersonalInfoParams::announcementText},
    {"announcement_repeat", &ExtPersonalInfoParams::announcementRepeat, &cfg::kCountDomain},
};

const cfg::Field<ExtServicesParams> kServicesFields[] = {
    {"call_waiting", &ExtServicesParams::callWaiting, &cfg::kFlagDomain},
    {"do_not_disturb", &ExtServicesParams::doNotDisturb},
    {"hotline", &ExtServicesParams::hotline},
    {"call_transfer", &ExtServicesParams::callTransfer, &cfg::kFlagDomain},
    {"voice_mail_mode", &ExtServicesParams::voiceMailMode},
    {"voice_mail_rings", &ExtServicesParams::voiceMailRings, &cfg::kCountDomain},
    {"voice_mail_box", &ExtServicesParams::voiceMailBox},
    {"remote_control", &ExtServicesParams::remoteControl},
    {"fax_mode_a", &ExtServicesParams::faxModeA},
    {"fax_mode_b", &ExtServicesParams::faxModeB},
    {"fax_param3", &ExtServicesParams::faxParam3},
    {"fax_tone_detection", &ExtServicesParams::faxToneDetection, &cfg::kFlagDomain},
    {"fax_tone_forced", &ExtServicesParams::faxToneForced, &cfg::kFlagDomain},
    {"fax_profile", &ExtServicesParams::faxProfile},
    {"modem_mode", &ExtServicesParams::modemMode},
    {"conference_allowed", &ExtServicesParams::conferenceAllowed, &cfg::kFlagDomain},
    {"conference_max_parties", &ExtServicesParams::conferenceMaxParties, &cfg::kCountDomain},
    {"call_pickup_allowed", &ExtServicesParams::callPickupAllowed, &cfg::kFlagDomain},
    {"call_pickup_group", &ExtServicesParams::callPickupGroup},
    {"intrusion_allowed", &ExtServicesParams::intrusionAllowed, &cfg::kFlagDomain},
    {"intrusion_level", &ExtServicesParams::intrusionLevel},
    {"music_on_hold", &ExtServicesParams::musicOnHold},
    {"caller_id_presentation", &ExtServicesParams::callerIdPresentation},
    {"call_hold_allowed", &ExtServicesParams::callHoldAllowed, &cfg::kFlagDomain},
    {"anonymous_call_rejection", &ExtServicesParams::anonymousRejection, &cfg::kFlagDomain},
};

const cfg::Field<ExtTimeoutsParams> kTimeoutsFields[] = {
    {"no_answer_timeout", &ExtTimeoutsParams::noAnswerTimeout, &cfg::kCountDomain},
    {"call_park_timeout", &ExtTimeoutsParams::callParkTimeout, &cfg::kCountDomain},
    {"dial_timeout", &ExtTimeoutsParams::dialTimeout, &cfg::kCountDomain},
};

const cfg::Field<ExtCodecParams> kCodecFields[] = {
    {"voice_codecs", &ExtCodecParams::voiceCodecs},
    {"fax_codecs", &ExtCodecParams::faxCodecs},
    {"extra_voice_codecs", &ExtCodecParams::extraVoiceCodecs},
    {"modem_codecs", &ExtCodecParams::modemCodecs},
    {"codec_option", &ExtCodecParams::codecOption},
};

const cfg::Field<ExtPstnAgentParams> kPstnAgentFields[] = {
    {"fxo_channels", &ExtPstnAgentParams::fxoChannels},
    {"cas_channels", &ExtPstnAgentParams::casChannels},
    {"isdn_channels", &ExtPstnAgentParams::isdnChannels},
};

const cfg::Field<CallParkGeneralParams> kCallParkFields[] = {
    {"timeout_minutes", &CallParkGeneralParams::timeoutMinutes, &cfg::kCountDomain},
};

const cfg::Field<PickupGroupParams> kPickupFields[] = {
    {"members", &PickupGroupParams::members},
};

const cfg::Field<ExtBusyRedialParams> kBusyRedialFields[] = {
    {"interval", &ExtBusyRedialParams::interval, &cfg::kCountDomain},
    {"period_minutes", &ExtBusyRedialParams::periodMinutes, &cfg::kCountDomain},
};

const cfg::Field<ExtAutoCallParams> kAutoCallFields[] = {
    {"enabled", &ExtAutoCallParams::enabled, &cfg::kFlagDomain},
    {"destination", &ExtAutoCallParams::destination},
};

const cfg::Field<AttGeneralParams> kAttendantFields[] = {
    {"console_mode", &AttGeneralParams::consoleMode},
    {"night_mode", &AttGeneralParams::nightMode},
    {"queue_size", &AttGeneralParams::queueSize, &cfg::kCountDomain},
    {"ring_timeout", &AttGeneralParams::ringTimeout, &cfg::kCountDomain},
    {"welcome_message", &AttGeneralParams::welcomeMessage},
    {"night_destination", &AttGeneralParams::nightDestination},
    {"tos_profile", &AttGeneralParams::tosProfile},
};

// The section of each property that has one section.
struct PropertySection {
  unsigned property;
  const char* name;
};
const PropertySection kPropertySections[] = {
    {kPropSipSettings, "sip"},
    {kPropPersonalInfo, "personal"},
    {kPropServices, "services"},
    {kPropTimeouts, "timeouts"},
    {kPropCodecs, "codecs"},
    {kPropServiceCodes, "service_codes"},
    {kPropPstnAgent, "pstn_agent"},
    {kPropCallPark, "call_park"},
    {kPropAccessList, "access_list"},
    {kPropPickupGroup, "pickup_group"},
    {kPropBusyRedial, "busy_redial"},
    {kPropAutoCall, "auto_call"},
    {kPropAttendantGeneral, "attendant"},
    {kPropAttendantConsole, "attendant"},  // one section serves both
};

// The section of a one-section property in the file, or nullptr.
const cfg::Section* SectionOf(const cfg::Document& doc, unsigned property) {
  for (const PropertySection& known : kPropertySections)
    if (known.property == property) return doc.Find(known.name);
  return nullptr;
}

bool HasPrefixedSection(const cfg::Document& doc, std::string_view prefix) {
  for (const cfg::Section& section : doc.sections())
    if (section.name.size() > prefix.size() && section.name.substr(0, prefix.size()) == prefix)
      return true;
  return false;
}

// The block of a property: its section's values, or the defaults when the
// file has no such section.
template <typename Block, size_t N>
Block Decode(const cfg::Document& doc, unsigned property, const cfg::Field<Block> (&fields)[N]) {
  Block block;
  block.property = property;
  const cfg::Section* section = SectionOf(doc, property);
  if (section != nullptr) cfg::ReadFields(*section, fields, &block);
  return block;
}

ExtServiceCodesParams DecodeServiceCodes(const cfg::Document& doc) {
  ExtServiceCodesParams block;
  block.property = kPropServiceCodes;
  const cfg::Section* section = SectionOf(doc, kPropServiceCodes);
  if (section == nullptr) return block;
  // One walk over the entries, each key read as "code_N" where it stands:
  // no key text is built per code. The first entry of a key counts, as
  // for Find.
  constexpr std::string_view kPrefix = "code_";
  bool seen[ExtServiceCodesParams::kCount] = {};
  for (const cfg::Entry& entry : section->entries) {
    const std::string_view key = entry.key;
    if (key.size() <= kPrefix.size() || key.size() > kPrefix.size() + 2 ||
        key.compare(0, kPrefix.size(), kPrefix) != 0 || key[kPrefix.size()] == '0')
      continue;
    int number = 0;
    for (char c : key.substr(kPrefix.size()))
      number = c >= '0' && c <= '9' ? number * 10 + (c - '0') : -1000;
    if (number < 1 || number > ExtServiceCodesParams::kCount || seen[number - 1]) continue;
    seen[number - 1] = true;
    block.codes[number - 1].assign(entry.value.data(), entry.value.size());
  }
  return block;
}

// "entry_N = priority,enabled,type,address"; false when a piece does not
// parse (the entry is skipped).
bool ParseAccessEntry(std::string_view value, AccessListParams::Entry* out) {
  size_t comma = value.find(',');
  if (comma == std::string_view::npos) return false;
  AccessListParams::Entry entry;
  if (!ParseValue(value.substr(0, comma), &entry.priority) ||
      !ParseAddressEntry(value.substr(comma + 1), &entry.address))
    return false;
  *out = entry;
  return true;
}

AccessListParams DecodeAccessList(const cfg::Document& doc) {
  AccessListParams block;
  block.property = kPropAccessList;
  const cfg::Section* section = SectionOf(doc, kPropAccessList);
  if (section == nullptr) return block;
  ForNumberedKeys(*section, "entry_", [&](std::string_view value) {
    AccessListParams::Entry entry;
    if (ParseAccessEntry(value, &entry)) block.entries.push_back(entry);
  });
  return block;
}

const char kSpeedDialPrefix[] = "speed_dial ";

const cfg::Field<SpeedDialBlock> kSpeedDialFields[] = {
    {"name", &SpeedDialBlock::name},
    {"calling_code", &SpeedDialBlock::callingCode},
    {"dest_type", &SpeedDialBlock::destType},
    {"address", &SpeedDialBlock::address},
    {"destination", &SpeedDialBlock::destination},
};

// The id of a "speed_dial ID" section; false for any other name.
bool SpeedDialId(std::string_view name, unsigned long* id) {
  const std::string_view prefix = kSpeedDialPrefix;
  return name.size() > prefix.size() && name.substr(0, prefix.size()) == prefix &&
         ParseValue(name.substr(prefix.size()), id);
}

void DecodeSpeedDial(const cfg::Document& doc, Extension::Rep* rep) {
  // Entries handed out before stay alive until the extension goes.
  rep->retiredSpeedDial.splice(rep->retiredSpeedDial.end(), rep->speedDial);
  for (const cfg::Section& section : doc.sections()) {
    SpeedDialBlock block;
    if (!SpeedDialId(section.name, &block.id)) continue;
    cfg::ReadFields(section, kSpeedDialFields, &block);
    rep->speedDial.push_back(std::move(block));
  }
}

// The keys Decode takes from a one-section property's section.
cfg::KeyRules PropertyRules(unsigned property) {
  switch (property) {
    case kPropSipSettings: return cfg::FieldRules(kSipFields);
    case kPropPersonalInfo: return cfg::FieldRules(kPersonalFields);
    case kPropServices: return cfg::FieldRules(kServicesFields);
    case kPropTimeouts: return cfg::FieldRules(kTimeoutsFields);
    case kPropCodecs: return cfg::FieldRules(kCodecFields);
    case kPropServiceCodes: {
      cfg::KeyRules codes;
      for (int i = 0; i < ExtServiceCodesParams::kCount; ++i)
        codes.push_back(cfg::RuleFor<std::string>("code_" + std::to_string(i + 1)));
      return codes;
    }
    case kPropPstnAgent: return cfg::FieldRules(kPstnAgentFields);
    case kPropCallPark: return cfg::FieldRules(kCallParkFields);
    case kPropAccessList:
      return {cfg::NumberedRule(
          "entry_",
          [](std::string_view value) {
            AccessListParams::Entry entry;
            return ParseAccessEntry(value, &entry);
          },
          "\"priority,enabled,type,address\"")};
    case kPropPickupGroup: return cfg::FieldRules(kPickupFields);
    case kPropBusyRedial: return cfg::FieldRules(kBusyRedialFields);
    case kPropAutoCall: return cfg::FieldRules(kAutoCallFields);
    default: return cfg::FieldRules(kAttendantFields);  // both attendant properties
  }
}

}  // namespace

const cfg::KeyRules* PropertySectionRules(std::string_view name) {
  static const cfg::SectionRules kRules = [] {
    cfg::SectionRules rules;
    for (const PropertySection& known : kPropertySections)
      rules[known.name] = PropertyRules(known.property);
    return rules;
  }();
  auto it = kRules.find(name);
  return it == kRules.end() ? nullptr : &it->second;
}

const cfg::KeyRules* SpeedDialRules(std::string_view name, unsigned long* id) {
  static const cfg::KeyRules kRules = cfg::FieldRules(kSpeedDialFields);
  return SpeedDialId(name, id) ? &kRules : nullptr;
}

void DecodeProperties(const cfg::Document& doc, unsigned mask, Extension::Rep* rep) {
  // A block that is there is assigned, not replaced, so that pointers
  // handed out before a reload stay valid.
  auto assign = [&](unsigned property, auto& slot, auto decode) {
    if (mask & property) slot = decode();
  };
  assign(kPropSipSettings, rep->sip, [&] { return Decode(doc, kPropSipSettings, kSipFields); });
  assign(kPropPersonalInfo, rep->personal,
         [&] { return Decode(doc, kPropPersonalInfo, kPersonalFields); });
  assign(kPropServices, rep->services, [&] { return Decode(doc, kPropServices, kServicesFields); });
  assign(kPropTimeouts, rep->timeouts, [&] { return Decode(doc, kPropTimeouts, kTimeoutsFields); });
  assign(kPropCodecs, rep->codecs, [&] { return Decode(doc, kPropCodecs, kCodecFields); });
  assign(kPropServiceCodes, rep->serviceCodes, [&] { return DecodeServiceCodes(doc); });
  assign(kPropPstnAgent, rep->pstnAgent,
         [&] { return Decode(doc, kPropPstnAgent, kPstnAgentFields); });
  assign(kPropCallPark, rep->callPark, [&] { return Decode(doc, kPropCallPark, kCallParkFields); });
  assign(kPropAccessList, rep->accessList, [&] { return DecodeAccessList(doc); });
  assign(kPropPickupGroup, rep->pickupGroup,
         [&] { return Decode(doc, kPropPickupGroup, kPickupFields); });
  assign(kPropBusyRedial, rep->busyRedial,
         [&] { return Decode(doc, kPropBusyRedial, kBusyRedialFields); });
  assign(kPropAutoCall, rep->autoCall, [&] { return Decode(doc, kPropAutoCall, kAutoCallFields); });
  // One section serves both attendant properties.
  assign(kPropAttendantGeneral | kPropAttendantConsole, rep->attendant,
         [&] { return Decode(doc, kPropAttendantGeneral, kAttendantFields); });
  if (mask & kPropSpeedDial) DecodeSpeedDial(doc, rep);
}

bool HasPropertySection(const cfg::Document& doc, unsigned property) {
  if (property == kPropSpeedDial) return HasPrefixedSection(doc, kSpeedDialPrefix);
  if (property == kPropAddressPatterns) {
    unsigned long id = 0;
    for (const cfg::Section& section : doc.sections())
      if (ContactId(section.name, &id)) return true;
    return false;
  }
  return SectionOf(doc, property) != nullptr;
}

}  // namespace extdb
