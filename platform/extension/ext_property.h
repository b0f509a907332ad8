#ifndef CMCFG_PLATFORM_EXTENSION_EXT_PROPERTY_H_
#define CMCFG_PLATFORM_EXTENSION_EXT_PROPERTY_H_

#include <cstddef>
#include <iterator>
#include <optional>
#include <tuple>
#include <utility>

#include "platform/base/field_table.h"
#include "platform/extension/extension_rep.h"

// What each one-section property of an extension is, said once: its mask
// bits, its section, where its decoded block is kept, the getter that
// hands the block out, how the section is decoded and which keys it takes.
// The library decodes and publishes rules from these rows; the agent asks
// for a block by its type.
namespace extdb {

template <typename Block>
struct Property {
  unsigned mask;                                 // the bits that load it
  unsigned bit;                                  // its block's own property value
  const char* section;                           // its section in the file
  std::optional<Block> Extension::Rep::*slot;    // where the decoded block is kept
  Block* (Extension::*get)();                    // the getter that hands it out
  Block (*decode)(const cfg::Section* section);  // its block; nullptr: the defaults
  cfg::KeyRules (*rules)();                      // the keys its section takes
};

// The keys of the properties read by field tables.
inline const cfg::Field<ExtSipSettingsParams> kSipFields[] = {
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

inline const cfg::Field<ExtPersonalInfoParams> kPersonalFields[] = {
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

inline const cfg::Field<ExtServicesParams> kServicesFields[] = {
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

inline const cfg::Field<ExtTimeoutsParams> kTimeoutsFields[] = {
    {"no_answer_timeout", &ExtTimeoutsParams::noAnswerTimeout, &cfg::kCountDomain},
    {"call_park_timeout", &ExtTimeoutsParams::callParkTimeout, &cfg::kCountDomain},
    {"dial_timeout", &ExtTimeoutsParams::dialTimeout, &cfg::kCountDomain},
};

inline const cfg::Field<ExtCodecParams> kCodecFields[] = {
    {"voice_codecs", &ExtCodecParams::voiceCodecs},
    {"fax_codecs", &ExtCodecParams::faxCodecs},
    {"extra_voice_codecs", &ExtCodecParams::extraVoiceCodecs},
    {"modem_codecs", &ExtCodecParams::modemCodecs},
    {"codec_option", &ExtCodecParams::codecOption},
};

inline const cfg::Field<ExtPstnAgentParams> kPstnAgentFields[] = {
    {"fxo_channels", &ExtPstnAgentParams::fxoChannels},
    {"cas_channels", &ExtPstnAgentParams::casChannels},
    {"isdn_channels", &ExtPstnAgentParams::isdnChannels},
};

inline const cfg::Field<CallParkGeneralParams> kCallParkFields[] = {
    {"timeout_minutes", &CallParkGeneralParams::timeoutMinutes, &cfg::kCountDomain},
};

inline const cfg::Field<PickupGroupParams> kPickupFields[] = {
    {"members", &PickupGroupParams::members},
};

inline const cfg::Field<ExtBusyRedialParams> kBusyRedialFields[] = {
    {"interval", &ExtBusyRedialParams::interval, &cfg::kCountDomain},
    {"period_minutes", &ExtBusyRedialParams::periodMinutes, &cfg::kCountDomain},
};

inline const cfg::Field<ExtAutoCallParams> kAutoCallFields[] = {
    {"enabled", &ExtAutoCallParams::enabled, &cfg::kFlagDomain},
    {"destination", &ExtAutoCallParams::destination},
};

inline const cfg::Field<AttGeneralParams> kAttendantFields[] = {
    {"console_mode", &AttGeneralParams::consoleMode},
    {"night_mode", &AttGeneralParams::nightMode},
    {"queue_size", &AttGeneralParams::queueSize, &cfg::kCountDomain},
    {"ring_timeout", &AttGeneralParams::ringTimeout, &cfg::kCountDomain},
    {"welcome_message", &AttGeneralParams::welcomeMessage},
    {"night_destination", &AttGeneralParams::nightDestination},
    {"tos_profile", &AttGeneralParams::tosProfile},
};

// A block read by its field table.
template <typename Block, size_t N, const cfg::Field<Block> (&Fields)[N]>
Block DecodeFields(const cfg::Section* section) {
  Block block;
  if (section != nullptr) cfg::ReadFields(*section, Fields, &block);
  return block;
}
template <typename Block, size_t N, const cfg::Field<Block> (&Fields)[N]>
cfg::KeyRules FieldRulesOf() {
  return cfg::FieldRules(Fields);
}

// The two properties with readers of their own (ext_properties.cc).
ExtServiceCodesParams DecodeServiceCodes(const cfg::Section* section);
cfg::KeyRules ServiceCodeRules();
AccessListParams DecodeAccessList(const cfg::Section* section);
cfg::KeyRules AccessListRules();

#define CMCFG_FIELD_PROPERTY(Block, kMask, kBit, kSection, kSlot, kGet, kFields)             \
  Property<Block> {                                                                           \
    kMask, kBit, kSection, &Extension::Rep::kSlot, &Extension::kGet,                          \
        &DecodeFields<Block, std::size(kFields), kFields>,                                    \
        &FieldRulesOf<Block, std::size(kFields), kFields>                                     \
  }

// Every one-section property, in the order a file is decoded.
inline const auto& Properties() {
  static const auto kProperties = std::make_tuple(
      CMCFG_FIELD_PROPERTY(ExtSipSettingsParams, kPropSipSettings, kPropSipSettings, "sip", sip,
                           GetSipSettingsParams, kSipFields),
      CMCFG_FIELD_PROPERTY(ExtPersonalInfoParams, kPropPersonalInfo, kPropPersonalInfo,
                           "personal", personal, GetPersonalInfoParams, kPersonalFields),
      CMCFG_FIELD_PROPERTY(ExtServicesParams, kPropServices, kPropServices, "services", services,
                           GetServicesParams, kServicesFields),
      CMCFG_FIELD_PROPERTY(ExtTimeoutsParams, kPropTimeouts, kPropTimeouts, "timeouts", timeouts,
                           GetTimeoutsParams, kTimeoutsFields),
      CMCFG_FIELD_PROPERTY(ExtCodecParams, kPropCodecs, kPropCodecs, "codecs", codecs,
                           GetCodecParams, kCodecFields),
      Property<ExtServiceCodesParams>{kPropServiceCodes, kPropServiceCodes, "service_codes",
                                      &Extension::Rep::serviceCodes,
                                      &Extension::GetServiceCodesParams, &DecodeServiceCodes,
                                      &ServiceCodeRules},
      CMCFG_FIELD_PROPERTY(ExtPstnAgentParams, kPropPstnAgent, kPropPstnAgent, "pstn_agent",
                           pstnAgent, GetPstnAgentParams, kPstnAgentFields),
      CMCFG_FIELD_PROPERTY(CallParkGeneralParams, kPropCallPark, kPropCallPark, "call_park",
                           callPark, GetCallParkParams, kCallParkFields),
      Property<AccessListParams>{kPropAccessList, kPropAccessList, "access_list",
                                 &Extension::Rep::accessList, &Extension::GetAccessListParams,
                                 &DecodeAccessList, &AccessListRules},
      CMCFG_FIELD_PROPERTY(PickupGroupParams, kPropPickupGroup, kPropPickupGroup, "pickup_group",
                           pickupGroup, GetPickupGroupParams, kPickupFields),
      CMCFG_FIELD_PROPERTY(ExtBusyRedialParams, kPropBusyRedial, kPropBusyRedial, "busy_redial",
                           busyRedial, GetBusyRedialParams, kBusyRedialFields),
      CMCFG_FIELD_PROPERTY(ExtAutoCallParams, kPropAutoCall, kPropAutoCall, "auto_call",
                           autoCall, GetAutoCallParams, kAutoCallFields),
      // One section serves both attendant properties.
      CMCFG_FIELD_PROPERTY(AttGeneralParams, kPropAttendantGeneral | kPropAttendantConsole,
                           kPropAttendantGeneral, "attendant", attendant, GetAttGeneralParams,
                           kAttendantFields));
  return kProperties;
}

#undef CMCFG_FIELD_PROPERTY

// The row of the property whose block is Block.
template <typename Block>
const Property<Block>& PropertyOf() {
  return std::get<Property<Block>>(Properties());
}

// Calls visit(row) for every row, in order.
template <typename Visit>
void ForEachProperty(Visit&& visit) {
  std::apply([&](const auto&... row) { (visit(row), ...); }, Properties());
}

}  // namespace extdb

#endif  // CMCFG_PLATFORM_EXTENSION_EXT_PROPERTY_H_
