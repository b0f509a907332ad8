#include "tools/show.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iomanip>
#include <iterator>
#include <ostream>
#include <sys/stat.h>

#include "cmcfg/cm_agent.h"
#include "cmcfg/tone_type.h"

namespace cmcfg_tool {
namespace {

const char* TypeName(ExtType type) {
  switch (type) {
    case kExtAttendant: return "attendant";
    case kExtUser: return "user";
    case kExtPickup: return "pickup";
    case kExtCallPark: return "call park";
    case kExtPaging: return "paging";
  }
  return "unknown";
}

std::string CodecNames(const std::list<CodecInfo>& codecs) {
  std::string names;
  for (const CodecInfo& codec : codecs) names += (names.empty() ? "" : ",") + codec.name;
  return names.empty() ? "-" : names;
}

// "1,2,5-9": runs of three or more consecutive numbers as ranges.
template <typename List>
std::string Numbers(const List& numbers) {
  std::string text;
  for (auto it = numbers.begin(); it != numbers.end();) {
    auto last = it;
    size_t run = 1;
    for (auto next = std::next(it); next != numbers.end() && *next == *last + 1; ++next, ++run)
      last = next;
    text += text.empty() ? "" : ",";
    if (run >= 3) {
      text += std::to_string(*it) + "-" + std::to_string(*last);
      it = std::next(last);
    } else {
      text += std::to_string(*it);
      ++it;
    }
  }
  return text;
}

std::string CasText(const CASSettings& cas) {
  std::string text;
  for (const auto& span : cas.spans)
    text += (text.empty() ? "" : ";") + std::to_string(span.first) + "/" + Numbers(span.second);
  return text;
}

size_t EmptySlots(const CMAgent& agent) {
  size_t empty = 0;
  for (const ExtensionData* e : agent.extensionBase) empty += e == nullptr;
  return empty;
}

void PrintExtensions(const CMAgent& agent, std::ostream& out) {
  out << "Extension table: " << agent.extensionBase.size() << " slots, " << EmptySlots(agent)
      << " empty\n";
  for (const ExtensionData* e : agent.extensionBase) {
    if (e == nullptr) continue;
    out << "  " << std::left << std::setw(8) << e->name << std::setw(10) << TypeName(e->type)
        << " voice " << CodecNames(e->line.voiceCodecs);
    if (!e->line.fax.faxCodecs.empty()) out << "  fax relay " << e->line.fax.faxCodecs.size();
    if (!e->line.fax.faxTransparentCodecs.empty())
      out << "  fax in band " << CodecNames(e->line.fax.faxTransparentCodecs);
    if (!e->line.modem.modemCodecs.empty()) out << "  modem " << CodecNames(e->line.modem.modemCodecs);
    if (!e->fxo.channels.empty()) out << "  FXO " << Numbers(e->fxo.channels);
    if (!e->isdn.channels.empty()) out << "  ISDN " << Numbers(e->isdn.channels);
    if (!e->cas.spans.empty()) out << "  CAS " << CasText(e->cas);
    if (!e->description.empty()) out << "  \"" << e->description << "\"";
    out << "\n";
  }
  out << "Attendants: " << agent.attendants.size() << "\n";
  for (const Attendant* a : agent.attendants)
    if (a) out << "  " << std::left << std::setw(8) << a->name << " voice " << CodecNames(a->voiceCodecs) << "\n";
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

nlohmann::json CodecJson(const std::list<CodecInfo>& codecs) {
  nlohmann::json list = nlohmann::json::array();
  for (const CodecInfo& c : codecs)
    list.push_back({{"name", c.name}, {"rtp", c.rtpCodec}, {"dsp", c.dspCodec},
                    {"rate", c.samplingRate}, {"flags", c.flags}});
  return list;
}

nlohmann::json ExternalJson(const std::list<ExternalUserEntry>& users) {
  nlohmann::json list = nlohmann::json::array();
  for (const ExternalUserEntry& u : users)
    list.push_back({{"e164", u.e164Number}, {"user", u.userName}, {"display", u.displayName},
                    {"host", u.host}, {"port", u.port}, {"registered", u.registrationTime}});
  return list;
}

// Gives the tables' records back: the agent leaves them to its caller.
void ReleaseTables(CMAgent& agent) {
  for (size_t i = 0; i < agent.extensionBase.size(); ++i) agent.EraseExtension(i, true, false);
  while (!agent.attendants.empty()) agent.EraseAttendant(agent.attendants.size() - 1);
}

class ScopedEnv {
 public:
  ScopedEnv(const char* name, const std::string& value) : name_(name) {
    if (const char* old = getenv(name)) old_ = old, had_ = true;
    if (!value.empty()) setenv(name, value.c_str(), 1);
  }
  ~ScopedEnv() {
    if (had_)
      setenv(name_, old_.c_str(), 1);
    else
      unsetenv(name_);
  }

 private:
  const char* name_;
  std::string old_;
  bool had_ = false;
};

}  // namespace

std::string ResolveRoot(const std::string& explicitRoot) {
  std::string root = explicitRoot;
  if (root.empty()) {
    const char* env = getenv("ORBA_PATH");
    root = env && *env ? env : "/etc/orba-conf/";
  }
  if (root.back() != '/') root += '/';
  return root;
}

std::string CheckRoot(const std::string& root) {
  struct stat st;
  if (stat(root.c_str(), &st) != 0) return strerror(errno);
  if (!S_ISDIR(st.st_mode)) return "not a directory";
  if (access(root.c_str(), R_OK | X_OK) != 0) return strerror(errno);
  return "";
}

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
    j["extensions"].push_back({{"name", e->name}, {"type", TypeName(e->type)},
                               {"voice", CodecJson(e->line.voiceCodecs)},
                               {"fax_relay", e->line.fax.faxCodecs.size()},
                               {"fax_transparent", CodecJson(e->line.fax.faxTransparentCodecs)},
                               {"modem", CodecJson(e->line.modem.modemCodecs)},
                               {"fxo", e->fxo.channels}, {"isdn", e->isdn.channels},
                               {"cas", CasText(e->cas)}});
  }
  for (const Attendant* a : agent.attendants)
    if (a) j["attendants"].push_back({{"name", a->name}, {"voice", CodecJson(a->voiceCodecs)}});
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
  const std::string problem = CheckRoot(root);
  if (!problem.empty()) {
    err << "cmcfg: cannot read the configuration root " << root << ": " << problem << "\n";
    return 2;
  }
  ScopedEnv rootEnv("ORBA_PATH", root);
  ScopedEnv logEnv("CMCFG_LOG_DIR", options.logDir);
  CMAgent agent;
  agent.Destroy();
  if (options.json)
    out << SummaryJson(agent).dump(2) << "\n";
  else {
    out << "Configuration root: " << root << "\n";
    PrintSummary(agent, out);
  }
  ReleaseTables(agent);
  return 0;
}

}  // namespace cmcfg_tool
