#include "tools/dump.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <ostream>
#include <utility>
#include <vector>

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
  return {{"file", file}, {"users", std::move(list)}};
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
          {"shared_extensions", std::move(shared)},
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

// The keys a record shows first, in this order; any other key follows in
// nlohmann::json's sorted order.
using KeyOrder = std::vector<const char*>;

const KeyOrder& ExtensionKeys() {
  static const KeyOrder keys = {
      "name",        "type",         "description",      "sip",        "personal",     "services",
      "line",        "media",        "functional_table", "speed_dial", "address_book", "pstn",
      "access_list", "group_members"};
  return keys;
}

const KeyOrder& AttendantKeys() {
  static const KeyOrder keys = {"name",    "type",  "system_attendant", "sip", "personal",
                                "console", "media", "codec_option"};
  return keys;
}

// The members of an object record in the order the dump shows them.
std::vector<json::const_iterator> OrderedMembers(const json& record, const KeyOrder& first) {
  std::vector<json::const_iterator> members;
  members.reserve(record.size());
  for (const char* key : first) {
    const auto it = record.find(key);
    if (it != record.end()) members.push_back(it);
  }
  for (auto it = record.begin(); it != record.end(); ++it) {
    const bool listed =
        std::any_of(first.begin(), first.end(), [&](const char* key) { return it.key() == key; });
    if (!listed) members.push_back(it);
  }
  return members;
}

ordered_json InOrder(const json& record, const KeyOrder& first) {
  ordered_json ordered = ordered_json::object();
  for (const json::const_iterator& it : OrderedMembers(record, first))
    ordered[it.key()] = ToOrdered(it.value());
  return ordered;
}

bool IsSystemAttendant(const CMAgent& agent, const Attendant& a) {
  const Attendant* system = agent.generalData.sysAttendant;
  return system != nullptr && system->name == a.name;
}

// Receives the dump's top-level members in the documented order. The two
// long arrays arrive one record at a time, so a receiver that writes them
// out never holds more than one record.
class DumpSink {
 public:
  virtual ~DumpSink() = default;
  virtual void Member(const char* key, ordered_json value) = 0;
  virtual void BeginArray(const char* key) = 0;
  // One element of the open array: `record` with `first` ahead of its
  // other keys.
  virtual void Record(const json& record, const KeyOrder& first) = 0;
  virtual void EndArray() = 0;
};

// The one description of the dump's content and order; DumpJson and
// WriteDumpJson differ only in the sink.
void Produce(const CMAgent& agent, DumpSink& sink) {
  const GeneralData& g = agent.generalData;
  const size_t empty = static_cast<size_t>(
      std::count(agent.extensionBase.begin(), agent.extensionBase.end(), nullptr));
  sink.Member("extension_table", {{"slots", agent.extensionBase.size()}, {"empty_slots", empty}});
  sink.BeginArray("extensions");
  for (const ExtensionData* e : agent.extensionBase)
    if (e != nullptr) sink.Record(ExtensionJson(*e), ExtensionKeys());
  sink.EndArray();
  sink.BeginArray("attendants");
  for (const Attendant* a : agent.attendants)
    if (a != nullptr) sink.Record(AttendantJson(*a, IsSystemAttendant(agent, *a)), AttendantKeys());
  sink.EndArray();
  // The system attendant in full: it may be a record of its own, not one of
  // the attendants.
  sink.Member("system_attendant",
              g.sysAttendant ? InOrder(AttendantJson(*g.sysAttendant, true), AttendantKeys())
                             : ordered_json(nullptr));
  sink.Member("general", GeneralJson(agent));
  sink.Member("system_messages", agent.sysMessageNames);
  sink.Member("call_records", CallRecordsJson(g.cdr));
  sink.Member("external_user_cache", ExternalUsersJson(g.externalUserCacheDb, g.externalUserCache));
  sink.Member("external_users", ExternalUsersJson(g.externalUserDb, g.externalUsers));
  ordered_json phones = ordered_json::array();
  for (const AuthorizedPhonesData& p : g.authorizedPhones)
    phones.push_back({{"address", p.phoneAddress},
                      {"type", p.phoneType},
                      {"extension", p.extension},
                      {"user", p.userName},
                      {"lines", p.lineCount},
                      {"permissions", p.permissions},
                      {"login_time", p.loginTime}});
  sink.Member("auto_login", std::move(phones));
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
  sink.Member("tones", std::move(tones));
}

// Builds the whole document.
class DocumentSink : public DumpSink {
 public:
  void Member(const char* key, ordered_json value) override { doc_[key] = std::move(value); }
  void BeginArray(const char* key) override {
    key_ = key;
    array_ = ordered_json::array();
  }
  void Record(const json& record, const KeyOrder& first) override {
    array_.push_back(InOrder(record, first));
  }
  void EndArray() override { doc_[key_] = std::move(array_); }

  ordered_json Take() { return std::move(doc_); }

 private:
  ordered_json doc_ = ordered_json::object();
  std::string key_;
  ordered_json array_;
};

// Hands each record of the two arrays on, and keeps the rest.
class RecordSink : public DumpSink {
 public:
  using OnRecord = std::function<void(const std::string& array, ordered_json record)>;
  explicit RecordSink(const OnRecord& onRecord) : onRecord_(onRecord) {}
  void Member(const char* key, ordered_json value) override { doc_[key] = std::move(value); }
  void BeginArray(const char* key) override {
    key_ = key;
    doc_[key_] = ordered_json::array();
  }
  void Record(const json& record, const KeyOrder& first) override {
    onRecord_(key_, InOrder(record, first));
  }
  void EndArray() override {}

  ordered_json Take() { return std::move(doc_); }

 private:
  const OnRecord& onRecord_;
  ordered_json doc_ = ordered_json::object();
  std::string key_;
};

// A value as JsonText prints it, without the newline: indented by two when
// `indent` is 2, on one line when it is -1.
template <typename Json>
std::string Dumped(const Json& value, int indent) {
  return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

// Appends `text`, a value dumped at the outermost level, as it reads
// `depth` spaces deep: every line after its first moves right. A dumped
// string holds its newlines escaped, so each raw one is the dump's own.
void AppendIndented(std::string* out, const std::string& text, size_t depth) {
  size_t from = 0;
  for (size_t nl = text.find('\n'); nl != std::string::npos; nl = text.find('\n', from)) {
    out->append(text, from, nl + 1 - from);
    out->append(depth, ' ');
    from = nl + 1;
  }
  out->append(text, from, std::string::npos);
}

// Writes the document as JsonText would print it, member by member and
// record by record; a record is written straight from its nlohmann::json
// form, whose nested keys are already in the order the dump shows them.
class StreamSink : public DumpSink {
 public:
  explicit StreamSink(std::ostream& out) : out_(out) { out_ << "{"; }
  void Member(const char* key, ordered_json value) override {
    AppendKey(Separator(&members_), key, kIndent);
    AppendIndented(&buffer_, Dumped(value, 2), kIndent);
    Flush();
  }
  void BeginArray(const char* key) override {
    AppendKey(Separator(&members_), key, kIndent);
    buffer_ += '[';
    elements_ = 0;
  }
  void Record(const json& record, const KeyOrder& first) override {
    buffer_ += Separator(&elements_);
    buffer_.append(2 * kIndent, ' ');
    AppendRecord(record, first, 2 * kIndent);
    Flush();
  }
  void EndArray() override {
    if (elements_ != 0) buffer_.append("\n").append(kIndent, ' ');
    buffer_ += ']';
    Flush();
  }
  void Finish() { out_ << "\n}\n"; }

 private:
  static constexpr size_t kIndent = 2;

  // What goes ahead of an item: a comma unless it is the first; counts it.
  static const char* Separator(size_t* count) { return (*count)++ == 0 ? "\n" : ",\n"; }
  // `separator`, then `"key": ` on a line of its own `depth` deep.
  void AppendKey(const char* separator, const std::string& key, size_t depth) {
    buffer_.append(separator).append(depth, ' ');
    buffer_ += Dumped(json(key), -1) + ": ";
  }
  void AppendRecord(const json& record, const KeyOrder& first, size_t depth) {
    if (record.empty()) {
      buffer_ += "{}";
      return;
    }
    buffer_ += "{";
    const char* separator = "\n";
    for (const json::const_iterator& it : OrderedMembers(record, first)) {
      AppendKey(separator, it.key(), depth + kIndent);
      AppendIndented(&buffer_, Dumped(it.value(), 2), depth + kIndent);
      separator = ",\n";
    }
    buffer_.append("\n").append(depth, ' ') += '}';
  }
  void Flush() {
    out_ << buffer_;
    buffer_.clear();
  }

  std::ostream& out_;
  std::string buffer_;  // the piece being written, reused
  size_t members_ = 0;
  size_t elements_ = 0;
};

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

std::string JsonText(const json& value) { return Dumped(value, 2) + "\n"; }

std::string JsonText(const ordered_json& value) { return Dumped(value, 2) + "\n"; }

ordered_json DumpJson(const CMAgent& agent) {
  DocumentSink sink;
  Produce(agent, sink);
  return sink.Take();
}

ordered_json DumpJsonByRecord(
    const CMAgent& agent,
    const std::function<void(const std::string& array, ordered_json record)>& onRecord) {
  RecordSink sink(onRecord);
  Produce(agent, sink);
  return sink.Take();
}

void WriteDumpJson(const CMAgent& agent, std::ostream& out) {
  StreamSink sink(out);
  Produce(agent, sink);
  sink.Finish();
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
  AgentSession session(root, options.logDir, Access::kInspect, &err);
  WriteDumpJson(session.agent(), out);
  // A full disk must not pass for a complete dump.
  if (!out.flush()) {
    err << "cmcfg: cannot write the dump\n";
    return 1;
  }
  return 0;
}

}  // namespace cmcfg_tool
