#include "tools/show.h"

#include <iomanip>
#include <ostream>

#include "cmcfg/cm_agent.h"
#include "cmcfg/tone_type.h"
#include "tools/dump.h"
#include "tools/format.h"

namespace cmcfg_tool {
namespace {

size_t EmptySlots(const CMAgent& agent) {
  size_t empty = 0;
  for (const ExtensionData* e : agent.extensionBase) empty += e == nullptr;
  return empty;
}

std::string ExtensionCodecCounts(const ExtensionData& e) {
  return CodecCounts(e.line.voiceCodecs.size(), e.line.fax.faxCodecs.size(),
                     e.line.fax.faxTransparentCodecs.size(), e.line.modem.modemCodecs.size());
}

std::string AttendantCodecCounts(const Attendant& a) {
  return CodecCounts(a.voiceCodecs.size(), a.faxCodecs.size(), a.faxTransparentCodecs.size(),
                     a.modemCodecs.size());
}

void PrintExtensions(const CMAgent& agent, std::ostream& out) {
  out << "Extension table: " << agent.extensionBase.size() << " slots, " << EmptySlots(agent)
      << " empty (codecs: voice/fax relay/fax in band/modem)\n";
  for (const ExtensionData* e : agent.extensionBase) {
    if (e == nullptr) continue;
    out << "  " << std::left << std::setw(8) << e->name << std::setw(10) << TypeName(e->type)
        << " sip " << SipText(e->sip.userName, e->sip.host, e->sip.port) << "  local "
        << LocalEndpoint(e->line) << "  remote " << RemoteEndpoint(e->line) << "  codecs "
        << ExtensionCodecCounts(*e);
    if (!e->fxo.channels.empty()) out << "  FXO " << Numbers(e->fxo.channels);
    if (!e->isdn.channels.empty()) out << "  ISDN " << Numbers(e->isdn.channels);
    if (!e->cas.spans.empty()) out << "  CAS " << CasText(e->cas.spans);
    if (!e->description.empty()) out << "  \"" << e->description << "\"";
    out << "\n";
  }
  out << "Attendants: " << agent.attendants.size() << "\n";
  for (const Attendant* a : agent.attendants) {
    if (a == nullptr) continue;
    out << "  " << std::left << std::setw(8) << a->name << " sip "
        << SipText(a->sip.userName, a->sip.host, a->sip.port) << "  codecs "
        << AttendantCodecCounts(*a) << "  voice " << CodecNames(a->voiceCodecs);
    if (!a->displayName.empty()) out << "  \"" << a->displayName << "\"";
    out << "\n";
  }
  const Attendant* system = agent.generalData.sysAttendant;
  out << "System attendant: " << (system ? system->name : std::string("none")) << "\n";
}

void PrintGeneral(const CMAgent& agent, std::ostream& out) {
  const GeneralData& g = agent.generalData;
  out << "General data:\n"
      << "  system prefix        " << g.systemPrefix << "\n"
      << "  default voice codecs " << CodecNames(g.defaultVoiceCodecs) << "\n"
      << "  routing mode         " << g.routingMode << "\n"
      << "  operator number      " << g.operatorNumber << "\n"
      << "  dial plan            " << g.dialPlanPath << "\n"
      << "  registration status  " << g.regStatusFile << "\n"
      << "  caller ID templates  local \"" << g.callerIdLocal << "\", IP \"" << g.callerIdIp
      << "\", PSTN \"" << g.callerIdPstn << "\"\n"
      << "  PSTN agent type      " << g.pstnAgentType << "\n"
      << "  tone wave mode       " << g.toneWaveMode << "\n"
      << "  max external users   " << g.maxExternalUsers << " (expire after "
      << g.externalUserExpiry << " s)\n"
      << "  limits               conference " << g.maxConferenceParties << ", parked "
      << g.maxParkedCalls << ", waiting " << g.maxCallWaiting << ", per extension "
      << g.maxCallsPerExtension << "\n"
      << "  timers (s)           dial " << g.dialTimeout << ", inter-digit " << g.interDigitTimeout
      << ", no answer " << g.noAnswerTimeout << ", park " << g.parkTimeout << "\n"
      << "  log                  " << (agent.logEnabled ? "on" : "off") << "\n"
      << "  system messages      " << agent.sysMessageNames.size() << " names\n";
}

void PrintCallRecords(const CMAgent& agent, std::ostream& out) {
  const CDRData& c = agent.generalData.cdr;
  out << "Call records: " << (c.enabled ? "on" : "off") << "\n"
      << "  stated  " << c.statedPath << " [" << c.statedRecords << "/" << c.statedFiles << "]\n"
      << "  missed  " << c.missedPath << " [" << c.missedRecords << "/" << c.missedFiles << "]\n"
      << "  failed  " << c.failedPath << " [" << c.failedRecords << "/" << c.failedFiles << "]\n";
}

void PrintExternal(const std::string& file, const std::list<ExternalUserEntry>& users,
                   std::ostream& out) {
  out << "External users in " << file << ": " << users.size() << "\n";
  for (const ExternalUserEntry& u : users)
    out << "  " << std::left << std::setw(14) << u.e164Number << " " << u.userName << "@" << u.host
        << ":" << u.port << " \"" << u.displayName << "\" registered " << u.registrationTime << "\n";
}

void PrintUsers(const CMAgent& agent, std::ostream& out) {
  const GeneralData& g = agent.generalData;
  PrintExternal(g.externalUserCacheDb, g.externalUserCache, out);
  PrintExternal(g.externalUserDb, g.externalUsers, out);
  out << "Auto-login phones: " << g.authorizedPhones.size() << "\n";
  for (const AuthorizedPhonesData& p : g.authorizedPhones)
    out << "  " << std::left << std::setw(18) << p.phoneAddress << " type " << p.phoneType
        << " extension " << p.extension << " user " << p.userName << " lines " << p.lineCount
        << "\n";
}

void PrintTones(const CMAgent& agent, std::ostream& out) {
  out << "Tones: " << kDeviceToneCount << "\n";
  for (int t = 0; t < kDeviceToneCount; ++t) {
    const ToneType& tone = agent.toneTypes[t];
    out << "  " << std::left << std::setw(42) << DeviceToneNames[t] << std::setw(12) << tone.pattern
        << " mode " << tone.mode << "  " << tone.frequency_1 << "/" << tone.frequency_2 << " Hz  "
        << tone.tone_level_1 << "/" << tone.tone_level_2 << (tone.is_play_wav_on ? "  wav" : "")
        << "\n";
  }
}

nlohmann::json ExternalJson(const std::list<ExternalUserEntry>& users) {
  nlohmann::json list = nlohmann::json::array();
  for (const ExternalUserEntry& u : users)
    list.push_back({{"e164", u.e164Number}, {"user", u.userName}, {"display", u.displayName},
                    {"host", u.host}, {"port", u.port}, {"registered", u.registrationTime}});
  return list;
}

}  // namespace

void PrintSummary(const CMAgent& agent, std::ostream& out) {
  PrintExtensions(agent, out);
  PrintGeneral(agent, out);
  PrintCallRecords(agent, out);
  PrintUsers(agent, out);
  PrintTones(agent, out);
}

nlohmann::json SummaryJson(const CMAgent& agent) {
  const GeneralData& g = agent.generalData;
  nlohmann::json j;
  j["extension_slots"] = agent.extensionBase.size();
  j["empty_slots"] = EmptySlots(agent);
  for (const ExtensionData* e : agent.extensionBase) {
    if (e == nullptr) continue;
    j["extensions"].push_back(
        {{"name", e->name},
         {"type", TypeName(e->type)},
         {"sip", SipJson(e->sip.userName, e->sip.host, e->sip.port)},
         {"local", EndpointJson(LocalEndpoint(e->line))},
         {"remote", EndpointJson(RemoteEndpoint(e->line))},
         {"codec_counts",
          {{"voice", e->line.voiceCodecs.size()},
           {"fax_relay", e->line.fax.faxCodecs.size()},
           {"fax_transparent", e->line.fax.faxTransparentCodecs.size()},
           {"modem", e->line.modem.modemCodecs.size()}}},
         {"voice", CodecJson(e->line.voiceCodecs)},
         {"fax_relay", e->line.fax.faxCodecs.size()},
         {"fax_transparent", CodecJson(e->line.fax.faxTransparentCodecs)},
         {"modem", CodecJson(e->line.modem.modemCodecs)},
         {"fxo", e->fxo.channels},
         {"isdn", e->isdn.channels},
         {"cas", CasText(e->cas.spans)}});
  }
  for (const Attendant* a : agent.attendants) {
    if (a == nullptr) continue;
    j["attendants"].push_back({{"name", a->name},
                               {"sip", SipJson(a->sip.userName, a->sip.host, a->sip.port)},
                               {"codec_counts",
                                {{"voice", a->voiceCodecs.size()},
                                 {"fax_relay", a->faxCodecs.size()},
                                 {"fax_transparent", a->faxTransparentCodecs.size()},
                                 {"modem", a->modemCodecs.size()}}},
                               {"voice", CodecJson(a->voiceCodecs)}});
  }
  j["system_attendant"] = g.sysAttendant ? g.sysAttendant->name : "";
  j["general"] = {{"system_prefix", g.systemPrefix},
                  {"default_voice_codecs", CodecJson(g.defaultVoiceCodecs)},
                  {"routing_mode", std::string(1, g.routingMode)},
                  {"dial_plan", g.dialPlanPath},
                  {"registration_status_file", g.regStatusFile},
                  {"caller_id", {g.callerIdLocal, g.callerIdIp, g.callerIdPstn}},
                  {"pstn_agent_type", g.pstnAgentType},
                  {"max_external_users", g.maxExternalUsers}};
  j["call_records"] = {{"enabled", g.cdr.enabled},
                       {"stated", {g.cdr.statedPath, g.cdr.statedRecords, g.cdr.statedFiles}},
                       {"missed", {g.cdr.missedPath, g.cdr.missedRecords, g.cdr.missedFiles}},
                       {"failed", {g.cdr.failedPath, g.cdr.failedRecords, g.cdr.failedFiles}}};
  j["external_user_cache"] = {{"file", g.externalUserCacheDb}, {"users", ExternalJson(g.externalUserCache)}};
  j["external_users"] = {{"file", g.externalUserDb}, {"users", ExternalJson(g.externalUsers)}};
  for (const AuthorizedPhonesData& p : g.authorizedPhones)
    j["auto_login"].push_back({{"address", p.phoneAddress}, {"type", p.phoneType},
                               {"extension", p.extension}, {"user", p.userName}});
  for (int t = 0; t < kDeviceToneCount; ++t) {
    const ToneType& tone = agent.toneTypes[t];
    j["tones"].push_back({{"name", DeviceToneNames[t]}, {"pattern", tone.pattern},
                          {"mode", tone.mode}, {"frequency", {tone.frequency_1, tone.frequency_2}},
                          {"level", {tone.tone_level_1, tone.tone_level_2}},
                          {"wav", tone.is_play_wav_on}});
  }
  return j;
}

int RunShow(const ShowOptions& options, std::ostream& out, std::ostream& err) {
  const std::string root = ResolveRoot(options.root);
  if (!RootIsUsable(root, err)) return 2;
  AgentSession session(root, options.logDir, Access::kInspect, &err);
  if (options.json) {
    out << JsonText(SummaryJson(session.agent()));
  } else {
    out << "Configuration root: " << root << "\n";
    PrintSummary(session.agent(), out);
  }
  return 0;
}

}  // namespace cmcfg_tool
