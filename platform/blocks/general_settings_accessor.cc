#include "platform/blocks/general_settings_accessor.h"

#include <string>
#include <utility>

#include "platform/blocks/accessor_instance.h"

namespace {

using Field = blocks::SettingField<GeneralSettingsAccessor>;
using G = GeneralSettingsAccessor;

const Field kFields[] = {
    {"logging", {"log_enabled", &G::logEnabled}},
    {"logging", {"log_details", &G::logDetails}},

    {"system", {"system_prefix", &G::systemPrefix}},
    {"system", {"voice_codecs", &G::voiceCodecs}},
    {"system", {"extra_voice_codecs", &G::extraVoiceCodecs}},
    {"system", {"routing_mode", &G::routingMode}},
    {"system", {"operator_number", &G::operatorNumber}},
    {"system", {"max_extensions", &G::maxExtensions}},
    {"system", {"max_external_users", &G::maxExternalUsers}},
    {"system", {"external_user_expiry_hours", &G::externalUserExpiryHours}},

    {"callerid", {"caller_id_local", &G::callerIdLocal}},
    {"callerid", {"caller_id_ip", &G::callerIdIp}},
    {"callerid", {"caller_id_pstn", &G::callerIdPstn}},

    {"limits", {"max_hold_calls", &G::maxHoldCalls}},
    {"limits", {"max_conference_parties", &G::maxConferenceParties}},
    {"limits", {"max_parked_calls", &G::maxParkedCalls}},
    {"limits", {"max_call_waiting", &G::maxCallWaiting}},
    {"limits", {"max_calls_per_extension", &G::maxCallsPerExtension}},

    {"timers", {"dial_timeout", &G::dialTimeout}},
    {"timers", {"park_timeout", &G::parkTimeout}},
    {"timers", {"no_answer_timeout", &G::noAnswerTimeout}},
    {"timers", {"inter_digit_timeout", &G::interDigitTimeout}},
    {"timers", {"session_timer", &G::sessionTimer}},
    {"timers", {"session_timer_interval", &G::sessionTimerInterval}},

    {"features", {"hot_desking", &G::hotDesking}},
    {"features", {"direct_inward_dial", &G::directInwardDial}},
    {"features", {"music_on_hold", &G::musicOnHold}},
    {"features", {"tone_wave_mode", &G::toneWaveMode}},
    {"features", {"sip_keep_alive", &G::sipKeepAlive}},
    {"features", {"conference_tone", &G::conferenceTone}},
    {"features", {"call_pickup_notify", &G::callPickupNotify}},
    {"features", {"barge_in", &G::bargeIn}},
    {"features", {"emergency_routing", &G::emergencyRouting}},
    {"features", {"stun_enabled", &G::stunEnabled}},
    {"features", {"nat_keep_alive", &G::natKeepAlive}},
    {"features", {"early_media", &G::earlyMedia}},
    {"features", {"mwi_mode", &G::mwiMode}},

    {"pstn", {"fxo_agent", &G::fxoAgent}},
    {"pstn", {"isdn_agent", &G::isdnAgent}},
    {"pstn", {"cas_agent", &G::casAgent}},
    {"pstn", {"fxo_ports", &G::fxoPorts}},
    {"pstn", {"isdn_interfaces", &G::isdnInterfaces}},
    {"pstn", {"e1t1_interfaces", &G::e1t1Interfaces}},

    {"cdr", {"cdr_enabled", &G::cdrEnabled}},
    {"cdr", {"cdr_stated_records", &G::cdrStatedRecords}},
    {"cdr", {"cdr_missed_records", &G::cdrMissedRecords}},
    {"cdr", {"cdr_failed_records", &G::cdrFailedRecords}},
    {"cdr", {"cdr_stated_files", &G::cdrStatedFiles}},
    {"cdr", {"cdr_missed_files", &G::cdrMissedFiles}},
    {"cdr", {"cdr_failed_files", &G::cdrFailedFiles}},
};

}  // namespace

GeneralSettingsAccessor::GeneralSettingsAccessor(std::string path)
    : SettingsAccessor(std::move(path), kFields) {}

template class SharedAccessor<GeneralSettingsAccessor>;
