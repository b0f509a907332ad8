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
    {"port", &ExtSipSettingsParams::port},
    {"proxy", &ExtSipSettingsParams::proxy},
    {"outbound_proxy", &ExtSipSettingsParams::outboundProxy},
    {"transport", &ExtSipSettingsParams::transport},
    {"domain", &ExtSipSettingsParams::domain},
    {"display_name", &ExtSipSettingsParams::displayName},
    {"contact", &ExtSipSettingsParams::contact},
    {"register_expiry", &ExtSipSettingsParams::registerExpiry},
    {"registration_enabled", &ExtSipSettingsParams::registrationEnabled},
    {"sip_keep_alive", &ExtSipSettingsParams::sipKeepAlive},
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
    {"queue_enabled", &ExtPersonalInfoParams::queueEnabled},
    {"queue_size", &ExtPersonalInfoParams::queueSize},
    {"queue_mode", &ExtPersonalInfoParams::queueMode},
    {"queue_disabled", &ExtPersonalInfoParams::queueDisabled},
    {"queue_overflow", &ExtPersonalInfoParams::queueOverflow},
    {"announcement_enabled", &ExtPersonalInfoParams::announcementEnabled},
    {"announcement_value", &ExtPersonalInfoParams::announcementValue},
    {"announcement_text", &ExtPersonalInfoParams::announcementText},
    {"announcement_repeat", &ExtPersonalInfoParams::announcementRepeat},
};

const cfg::Field<ExtServicesParams> kServicesFields[] = {
    {"call_waiting", &ExtServicesParams::callWaiting},
    {"do_not_disturb", &ExtServicesParams::doNotDisturb},
    {"hotline", &ExtServicesParams::hotline},
    {"call_transfer", &ExtServicesParams::callTransfer},
    {"voice_mail_mode", &ExtServicesParams::voiceMailMode},
    {"voice_mail_rings", &ExtServicesParams::voiceMailRings},
    {"voice_mail_box", &ExtServicesParams::voiceMailBox},
    {"remote_control", &ExtServicesParams::remoteControl},
    {"fax_mode_a", &ExtServicesParams::faxModeA},
    {"fax_mode_b", &ExtServicesParams::faxModeB},
    {"fax_param3", &ExtServicesParams::faxParam3},
    {"fax_tone_detection", &ExtServicesParams::faxToneDetection},
    {"fax_tone_forced", &ExtServicesParams::faxToneForced},
    {"fax_profile", &ExtServicesParams::faxProfile},
    {"modem_mode", &ExtServicesParams::modemMode},
    {"conference_allowed", &ExtServicesParams::conferenceAllowed},
    {"conference_max_parties", &ExtServicesParams::conferenceMaxParties},
    {"call_pickup_allowed", &ExtServicesParams::callPickupAllowed},
    {"call_pickup_group", &ExtServicesParams::callPickupGroup},
    {"intrusion_allowed", &ExtServicesParams::intrusionAllowed},
    {"intrusion_level", &ExtServicesParams::intrusionLevel},
    {"music_on_hold", &ExtServicesParams::musicOnHold},
    {"caller_id_presentation", &ExtServicesParams::callerIdPresentation},
    {"call_hold_allowed", &ExtServicesParams::callHoldAllowed},
    {"anonymous_call_rejection", &ExtServicesParams::anonymousRejection},
};

const cfg::Field<ExtTimeoutsParams> kTimeoutsFields[] = {
    {"no_answer_timeout", &ExtTimeoutsParams::noAnswerTimeout},
    {"call_park_timeout", &ExtTimeoutsParams::callParkTimeout},
    {"dial_timeout", &ExtTimeoutsParams::dialTimeout},
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
    {"timeout_minutes", &CallParkGeneralParams::timeoutMinutes},
};

const cfg::Field<PickupGroupParams> kPickupFields[] = {
    {"members", &PickupGroupParams::members},
};

const cfg::Field<ExtBusyRedialParams> kBusyRedialFields[] = {
    {"interval", &ExtBusyRedialParams::interval},
    {"period_minutes", &ExtBusyRedialParams::periodMinutes},
};

const cfg::Field<ExtAutoCallParams> kAutoCallFields[] = {
    {"enabled", &ExtAutoCallParams::enabled},
    {"destination", &ExtAutoCallParams::destination},
};

const cfg::Field<AttGeneralParams> kAttendantFields[] = {
    {"console_mode", &AttGeneralParams::consoleMode},
    {"night_mode", &AttGeneralParams::nightMode},
    {"queue_size", &AttGeneralParams::queueSize},
    {"ring_timeout", &AttGeneralParams::ringTimeout},
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
  for (int i = 0; i < ExtServiceCodesParams::kCount; ++i) {
    const cfg::Entry* entry = section->Find("code_" + std::to_string(i + 1));
    if (entry != nullptr) block.codes[i] = std::string(entry->value);
  }
  return block;
}

AccessListParams DecodeAccessList(const cfg::Document& doc) {
  AccessListParams block;
  block.property = kPropAccessList;
  const cfg::Section* section = SectionOf(doc, kPropAccessList);
  if (section == nullptr) return block;
  // "entry_N = priority,enabled,type,address"
  ForNumberedKeys(*section, "entry_", [&](std::string_view value) {
    size_t comma = value.find(',');
    if (comma == std::string_view::npos) return;
    AccessListParams::Entry entry;
    if (!ParseValue(value.substr(0, comma), &entry.priority)) return;
    if (!ParseAddressEntry(value.substr(comma + 1), &entry.address)) return;
    block.entries.push_back(entry);
  });
  return block;
}

const char kSpeedDialPrefix[] = "speed_dial ";

void DecodeSpeedDial(const cfg::Document& doc, Extension::Rep* rep) {
  // Entries handed out before stay alive until the extension goes.
  rep->retiredSpeedDial.splice(rep->retiredSpeedDial.end(), rep->speedDial);
  const std::string_view kPrefix = kSpeedDialPrefix;
  for (const cfg::Section& section : doc.sections()) {
    if (section.name.size() <= kPrefix.size() || section.name.substr(0, kPrefix.size()) != kPrefix)
      continue;
    SpeedDialBlock block;
    if (!ParseValue(section.name.substr(kPrefix.size()), &block.id)) continue;
    if (const cfg::Entry* e = section.Find("name")) block.name = std::string(e->value);
    if (const cfg::Entry* e = section.Find("calling_code")) block.callingCode = std::string(e->value);
    if (const cfg::Entry* e = section.Find("dest_type")) ParseValue(e->value, &block.destType);
    if (const cfg::Entry* e = section.Find("address")) block.address = std::string(e->value);
    if (const cfg::Entry* e = section.Find("destination")) block.destination = std::string(e->value);
    rep->speedDial.push_back(std::move(block));
  }
}

}  // namespace

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
