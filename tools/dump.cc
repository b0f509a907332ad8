#include "tools/dump.h"

#include <filesystem>
#include <initializer_list>
#include <ostream>
#include <utility>

#include "cmcfg/cm_agent.h"
#include "cmcfg/tone_type.h"
#include "tools/ext.h"
#include "tools/format.h"
#include "tools/session.h"

namespace cmcfg_tool {
namespace {

using nlohmann::json;
using nlohmann::ordered_json;

ordered_json ExternalUsersJson(const std::string& file, const std::list<ExternalUserEntry>& users) {
  ordered_json list = ordered_json::array();
  for (const ExternalUserEntry& u : users)
    list.push_back({{"e164", u.e164Number},
                    {"user", u.userName},
                    {"display", u.displayName},
                    {"host", u.host},
                    {"port", u.port},
                    {"registered", u.registrationTime}});
  return {{"file", file}, {"users", list}};
}

ordered_json GeneralJson(const CMAgent& agent) {
  const GeneralData& g = agent.generalData;
  ordered_json shared = ordered_json::array();
  for (const SharedExtension& s : g.sharedExtensions)
    shared.push_back({{"extension", s.extension}, {"flag", s.flag}});
  return {{"system_prefix", g.systemPrefix},
          {"default_voice_codecs", ToOrdered(CodecJson(g.defaultVoiceCodecs))},
          {"routing_mode", std::string(1, g.routingMode)},
          {"operator_number", g.operatorNumber},
          {"dial_plan", g.dialPlanPath},
          {"registration_status_file", g.regStatusFile},
          {"caller_id", {{"local", g.callerIdLocal}, {"ip", g.callerIdIp}, {"pstn", g.callerIdPstn}}},
          {"pstn_agent_type", g.pstnAgentType},
          {"max_external_users", g.maxExternalUsers},
          {"external_user_expiry", g.externalUserExpiry},
          {"shared_extensions", shared},
          {"max_hold_calls", g.maxHoldCalls},
          {"max_conference_parties", g.maxConferenceParties},
          {"max_parked_calls", g.maxParkedCalls},
          {"max_call_waiting", g.maxCallWaiting},
          {"max_calls_per_extension", g.maxCallsPerExtension},
          {"dial_timeout", g.dialTimeout},
          {"inter_digit_timeout", g.interDigitTimeout},
          {"no_answer_timeout", g.noAnswerTimeout},
          {"park_timeout", g.parkTimeout},
          {"registration_retries", g.registrationRetries},
          {"hot_desking", g.hotDesking},
          {"direct_inward_dial", g.directInwardDial},
          {"music_on_hold", g.musicOnHold},
          {"night_service", g.nightService},
          {"group_call_waiting", g.groupCallWaiting},
          {"tone_wave_mode", g.toneWaveMode},
          {"call_recording", g.callRecording},
          {"conference_tone", g.conferenceTone},
          {"sip_keep_alive", g.sipKeepAlive},
          {"call_pickup_notify", g.callPickupNotify},
          {"barge_in", g.bargeIn},
          {"early_media", g.earlyMedia},
          {"video_calls", g.videoCalls},
          {"presence", g.presence},
          {"cas_agent_flag", g.casAgentFlag},
          {"session_timer", g.sessionTimer},
          {"session_timer_interval", g.sessionTimerInterval},
          {"emergency_routing", g.emergencyRouting},
          {"stun_enabled", g.stunEnabled},
          {"nat_keep_alive", g.natKeepAlive},
          {"mwi_mode", g.mwiMode},
          {"fxo_ports", g.fxoPorts},
          {"log", {{"enabled", agent.logEnabled},
                   {"level_second", agent.logLevelSecond},
                   {"login", agent.logLogin}}}};
}

ordered_json CallRecordsJson(const CDRData& c) {
  auto database = [](const std::string& path, uint32_t records, uint32_t files) {
    return ordered_json{{"path", path}, {"records", records}, {"files", files}};
  };
  return {{"enabled", c.enabled},
          {"second", c.second},
          {"third", c.third},
          {"stated", database(c.statedPath, c.statedRecords, c.statedFiles)},
          {"missed", database(c.missedPath, c.missedRecords, c.missedFiles)},
          {"failed", database(c.failedPath, c.failedRecords, c.failedFiles)}};
}

// The record with `first` in that order ahead of any other key; the
// members below stay in nlohmann::json's sorted order.
ordered_json InOrder(const json& record, std::initializer_list<const char*> first) {
  ordered_json ordered = ordered_json::object();
  for (const char* key : first)
    if (record.contains(key)) ordered[key] = ToOrdered(record[key]);
  for (auto it = record.begin(); it != record.end(); ++it)
    if (!ordered.contains(it.key())) ordered[it.key()] = ToOrdered(it.value());
  return ordered;
}

ordered_json ExtensionRecord(const ExtensionData& e) {
  return InOrder(ExtensionJson(e),
                 {"name", "type", "description", "sip", "personal", "services", "line", "media",
                  "functional_table", "speed_dial", "address_book", "pstn", "access_list",
                  "group_members"});
}

ordered_json AttendantRecord(const Attendant& a, bool systemAttendant) {
  return InOrder(AttendantJson(a, systemAttendant),
                 {"name", "type", "system_attendant", "sip", "personal", "console", "media",
                  "codec_option"});
}

}  // namespace

ordered_json ToOrdered(const json& value) {
  // Object keys come out of nlohmann::json sorted, so the copy keeps a
  // stable order.
  if (value.is_object()) {
    ordered_json object = ordered_json::object();
    for (auto it = value.begin(); it != value.end(); ++it) object[it.key()] = ToOrdered(it.value());
    return object;
  }
  if (value.is_array()) {
    ordered_json array = ordered_json::array();
    for (const json& item : value) array.push_back(ToOrdered(item));
    return array;
  }
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_number_unsigned()) return value.get<uint64_t>();
  if (value.is_number_integer()) return value.get<int64_t>();
  if (value.is_number_float()) return value.get<double>();
  return nullptr;
}

std::string JsonText(const json& value) {
  return value.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

std::string JsonText(const ordered_json& value) {
  return value.dump(2, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

ordered_json DumpJson(const CMAgent& agent) {
  const GeneralData& g = agent.generalData;
  ordered_json doc = ordered_json::object();
  size_t empty = 0;
  ordered_json extensions = ordered_json::array();
  for (const ExtensionData* e : agent.extensionBase) {
    if (e == nullptr) {
      ++empty;
      continue;
    }
    extensions.push_back(ExtensionRecord(*e));
  }
  doc["extension_table"] = {{"slots", agent.extensionBase.size()}, {"empty_slots", empty}};
  doc["extensions"] = std::move(extensions);
  ordered_json attendants = ordered_json::array();
  for (const Attendant* a : agent.attendants) {
    if (a == nullptr) continue;
    attendants.push_back(
        AttendantRecord(*a, g.sysAttendant != nullptr && g.sysAttendant->name == a->name));
  }
  doc["attendants"] = std::move(attendants);
  // The system attendant in full: it may be a record of its own, not one of
  // the attendants.
  doc["system_attendant"] =
      g.sysAttendant ? AttendantRecord(*g.sysAttendant, true) : ordered_json(nullptr);
  doc["general"] = GeneralJson(agent);
  doc["system_messages"] = agent.sysMessageNames;
  doc["call_records"] = CallRecordsJson(g.cdr);
  doc["external_user_cache"] = ExternalUsersJson(g.externalUserCacheDb, g.externalUserCache);
  doc["external_users"] = ExternalUsersJson(g.externalUserDb, g.externalUsers);
  ordered_json phones = ordered_json::array();
  for (const AuthorizedPhonesData& p : g.authorizedPhones)
    phones.push_back({{"address", p.phoneAddress},
                      {"type", p.phoneType},
                      {"extension", p.extension},
                      {"user", p.userName},
                      {"lines", p.lineCount},
                      {"permissions", p.permissions},
                      {"login_time", p.loginTime}});
  doc["auto_login"] = std::move(phones);
  ordered_json tones = ordered_json::array();
  for (int t = 0; t < kDeviceToneCount; ++t) {
    const ToneType& tone = agent.toneTypes[t];
    tones.push_back({{"name", DeviceToneNames[t]},
                     {"pattern", tone.pattern},
                     {"mode", tone.mode},
                     {"frequency", {tone.frequency_1, tone.frequency_2}},
                     {"level", {tone.tone_level_1, tone.tone_level_2}},
                     {"wav", tone.is_play_wav_on}});
  }
  doc["tones"] = std::move(tones);
  return doc;
}

std::string ExtensionFileCount(const std::string& root) {
  namespace fs = std::filesystem;
  size_t count = 0;
  std::error_code error;
  fs::recursive_directory_iterator it(root + "telephony/extensiondb", error), end;
  for (; !error && it != end; it.increment(error))
    if (it->path().extension() == ".cfg" && it->path().filename() != "system.cfg") ++count;
  std::string digits = std::to_string(count), text;
  for (size_t i = 0; i < digits.size(); ++i) {
    if (i != 0 && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

int RunDump(const DumpOptions& options, std::ostream& out, std::ostream& err) {
  const std::string root = ResolveRoot(options.root);
  if (!RootIsUsable(root, err)) return 2;
  ordered_json doc;
  {
    AgentSession session(root, options.logDir, Access::kInspect, &err);
    doc = DumpJson(session.agent());
  }
  out << JsonText(doc);
  return 0;
}

}  // namespace cmcfg_tool
