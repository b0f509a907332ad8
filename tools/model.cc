#include "tools/model.h"

#include <ctime>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "cmcfg/tone_type.h"
#include "tools/format.h"

namespace cmcfg_tool {
namespace {

// Trees are built member by member: a braced pair list is a temporary
// array of its own, and dump builds 100,000 of these.

// An empty object with room for the members of most records: an object
// is a vector of (const key, value) pairs, and growing it copies every
// member below it, the key being const.
Tree Object() {
  Tree j = Tree::object();
  j.get_ref<Tree::object_t&>().reserve(16);
  return j;
}

Tree Codecs(const std::list<CodecInfo>& codecs) {
  Tree list = Tree::array();
  for (const CodecInfo& c : codecs) {
    Tree& one = list.emplace_back(Object());
    one["name"] = c.name;
    one["rtp"] = c.rtpCodec;
    one["dsp"] = c.dspCodec;
    one["rate"] = c.samplingRate;
    one["flags"] = c.flags;
  }
  return list;
}

// The names of fax.cfg are not kept; its first two values tell the
// encodings apart.
Tree FaxRelay(const std::list<FaxCodecInfo>& codecs) {
  Tree list = Tree::array();
  for (const FaxCodecInfo& c : codecs) {
    Tree& one = list.emplace_back(Object());
    one["version"] = c.values[0];
    one["bit_rate"] = c.values[1];
    one["values"] = std::vector<uint32_t>(std::begin(c.values), std::end(c.values));
  }
  return list;
}

Tree Media(const std::list<CodecInfo>& voice, const std::list<FaxCodecInfo>& fax,
           const std::list<CodecInfo>& faxInBand, const std::list<CodecInfo>& modem,
           int32_t codecOption) {
  Tree j = Object();
  j["voice"] = Codecs(voice);
  j["fax_relay"] = FaxRelay(fax);
  j["fax_in_band"] = Codecs(faxInBand);
  j["modem"] = Codecs(modem);
  j["codec_option"] = codecOption;
  return j;
}

Tree Sip(const UsrSipData& sip) {
  Tree j = Object();
  j["user"] = StoredUserName(sip.userName);
  j["host"] = sip.host;
  j["port"] = sip.port;
  j["auth_name"] = sip.authName;
  j["password_set"] = !sip.password.empty();
  j["proxy"] = sip.proxy;
  j["outbound_proxy"] = sip.outboundProxy;
  j["transport"] = sip.transport;
  j["domain"] = sip.domain;
  j["display_name"] = sip.displayName;
  j["contact"] = sip.contact;
  j["registration_enabled"] = sip.registrationEnabled;
  j["register_expiry"] = sip.registerExpiry;
  j["keep_alive"] = sip.keepAlive;
  return j;
}

Tree Tos(const TosSettings& tos) {
  Tree j = Object();
  j["signaling"] = HexText(tos.signaling & 0xFFu);
  j["media"] = HexText(tos.media & 0xFFu);
  return j;
}

// A destination's text comes first: text output shows an object that
// starts with "text" as that text alone.
Tree Destination(const ForwardParams& d) {
  Tree j = Object();
  j["text"] = DestinationText(d);
  j["type"] = CallTypeName(d.callType);
  j["user"] = d.userName;
  j["host"] = d.host;
  j["port"] = d.port;
  return j;
}

Tree Line(const LineSettings& line) {
  const CallQueueData& q = line.callQueue;
  Tree j = Object();
  j["local"] = EndpointJson(LocalEndpoint(line));
  j["presentation_id"] = line.presentationId;
  j["remote"] = EndpointJson(RemoteEndpoint(line));
  j["rtp_proxy"] = line.remote.rtpProxy;
  j["symmetric_rtp"] = line.remote.symmetricRtp;
  j["remote_access"] = line.remote.personalValue;
  Tree& d = j["disconnect"] = Object();
  d["mode"] = line.disconnect.values[0];
  d["min_ms"] = line.disconnect.values[1];
  d["max_ms"] = line.disconnect.values[2];
  d["delay_s"] = line.disconnect.values[3];
  j["caller_id_type"] = line.fxsExtra;
  j["tos"] = Tos(line.tos);
  Tree& queue = j["call_queue"] = Object();
  queue["size"] = q.size;
  queue["mode"] = q.mode;
  queue["accepting"] = q.IsFlagOn(CallQueueData::kAccepting);
  queue["overflow"] = q.IsFlagOn(CallQueueData::kOverflow);
  queue["announcement"] = q.announcement;
  queue["announcement_text"] = q.announcementText;
  queue["announcement_repeat"] = q.announcementRepeat;
  return j;
}

Tree Services(const ExtensionData& e) {
  Tree j = Object();
  j["call_waiting"] = e.callWaiting;
  j["do_not_disturb"] = e.doNotDisturb;
  j["hotline"] = e.hotline;
  j["call_transfer"] = e.callTransfer;
  j["conference_allowed"] = e.conferenceAllowed;
  j["conference_max_parties"] = e.conferenceMaxParties;
  j["call_pickup_allowed"] = e.callPickupAllowed;
  j["call_pickup_group"] = e.callPickupGroup;
  j["intrusion_allowed"] = e.intrusionAllowed;
  j["intrusion_level"] = e.intrusionLevel;
  j["music_on_hold"] = e.musicOnHold;
  j["caller_id_presentation"] = e.callerIdPresentation;
  j["call_hold_allowed"] = e.callHoldAllowed;
  j["anonymous_rejection"] = e.anonymousRejection;
  Tree& rc = j["remote_control"] = Object();
  rc["policy"] = HexText(e.rc.policy & 0xFFu);
  rc["value"] = e.rc.value;
  j["no_answer_timeout"] = e.noAnswerTimeout;
  Tree& vm = j["voice_mail"] = Object();
  vm["mode"] = e.vms.mode;
  vm["on"] = e.IsMailboxOn(false);
  vm["rings"] = e.vms.rings;
  vm["mailbox"] = e.vms.mailbox;
  Tree& redial = j["auto_redial"] = Object();
  redial["interval"] = e.redialInterval;
  redial["period"] = e.redialPeriod;
  Tree& call = j["auto_call"] = Object();
  call["enabled"] = e.autoCall.enabled;
  call["destination"] = e.autoCall.destination;
  j["call_park_timeout"] = e.callParkTimeout;
  const FaxData& fax = e.line.fax;
  Tree& f = j["fax"] = Object();
  f["mode_a"] = fax.faxModeA;
  f["mode_b"] = fax.faxModeB;
  f["on"] = fax.IsFaxOn();
  f["tone_detection"] = fax.toneDetectionEnabled;
  f["tone_forced"] = fax.toneDetectionForced;
  f["profile"] = fax.faxProfile;
  j["modem_mode"] = e.line.modem.modemMode;
  return j;
}

std::vector<std::string> ActiveServices(const SupServiceSet& s) {
  std::vector<std::string> names;
  if (s.clir.active) names.push_back("CLIR");
  if (s.incomingBlocking.active) names.push_back("blocking in");
  if (s.outgoingBlocking.active) names.push_back("blocking out");
  if (s.distRinging.active) names.push_back("distinctive ringing");
  if (s.hunt.active) names.push_back("hunting");
  if (s.manyRinging.active) names.push_back("many ringing");
  if (s.forwardUnconditional.active) names.push_back("forward unconditional");
  if (s.forwardNoAnswer.active) names.push_back("forward no answer");
  if (s.forwardBusy.active) names.push_back("forward busy");
  return names;
}

Tree Blocking(const CallBlockingData& b) {
  Tree j = Object();
  j["active"] = b.active;
  j["mode"] = b.blockMode;
  return j;
}

}  // namespace

Tree ForwardTree(const ForwardData& f) {
  Tree j = Object();
  j["active"] = f.active;
  j["text"] = f.text;
  Tree& destinations = j["destinations"] = Tree::array();
  for (const ForwardParams& d : f.destinations) destinations.push_back(Destination(d));
  return j;
}

Tree ContactTree(const AddressBookEntry& entry) {
  const Contact& c = entry.first;
  const SupServiceSet& s = entry.second;
  Tree j = Object();
  j["name"] = c.name;
  j["id"] = c.id;
  j["call_type"] = CallTypeName(c.callType);
  j["armed"] = s.IsArmed(false);
  j["armed_any"] = s.IsArmed(true);
  j["active"] = ActiveServices(s);
  j["clir"] = s.clir.active;
  j["incoming_blocking"] = Blocking(s.incomingBlocking);
  j["outgoing_blocking"] = Blocking(s.outgoingBlocking);
  Tree& ringing = j["distinctive_ringing"] = Object();
  ringing["active"] = s.distRinging.active;
  ringing["ring_name"] = s.distRinging.ringName;
  ringing["pattern"] = s.distRinging.pattern;
  ringing["cadence"] = s.distRinging.cadence;
  Tree& hunting = j["hunting"] = Object();
  hunting["active"] = s.hunt.active;
  hunting["mode"] = s.hunt.huntMode;
  Tree& targets = hunting["targets"] = Tree::array();
  for (const HuntRingTarget& t : s.hunt.targets) {
    Tree& target = targets.emplace_back(Object());
    target["number"] = t.number;
    target["ring_time"] = t.value;
  }
  Tree& many = j["many_ringing"] = Object();
  many["active"] = s.manyRinging.active;
  many["extensions"] = s.manyRinging.extensions;
  j["forward_unconditional"] = ForwardTree(s.forwardUnconditional);
  j["forward_no_answer"] = ForwardTree(s.forwardNoAnswer);
  j["forward_busy"] = ForwardTree(s.forwardBusy);
  j["intercom_mode"] = s.intercom.mode;
  return j;
}

std::string StoredUserName(const std::string& loaded) {
  // The token is the decimal of (seconds << 32 | microseconds) of the load:
  // as many digits as this second's, and its high word within a day of now.
  const uint64_t now = static_cast<uint32_t>(std::time(nullptr));
  const size_t digits = std::to_string(now << 32).size();
  if (loaded.size() < digits) return loaded;
  const std::string token = loaded.substr(loaded.size() - digits);
  if (token.find_first_not_of("0123456789") != std::string::npos) return loaded;
  const uint64_t seconds = std::stoull(token) >> 32;
  const uint64_t day = 24 * 60 * 60;
  if (seconds + day < now || seconds > now + day) return loaded;
  return loaded.substr(0, loaded.size() - digits) + "\u2026";
}

std::string RootRelative(const std::string& path, const std::string& root) {
  if (root.empty() || path.compare(0, root.size(), root) != 0) return path;
  return path.substr(root.size());
}

Tree ExtensionTree(const ExtensionData& e, Detail detail) {
  // A summary skips the lists that make most of a record's cost.
  const bool full = detail == Detail::kFull;
  Tree j = Object();
  j["name"] = e.name;
  j["type"] = TypeName(e.type);
  j["description"] = e.description;
  j["sip"] = Sip(e.sip);
  Tree& personal = j["personal"] = Object();
  personal["display_name"] = e.displayName;
  personal["password_keys"] = e.password.keys.size();
  personal["password_policy"] = e.password.setting;
  personal["user_class"] = e.userClass;
  personal["language"] = e.language;
  if (full) j["services"] = Services(e);
  j["line"] = Line(e.line);
  j["media"] = Media(e.line.voiceCodecs, e.line.fax.faxCodecs, e.line.fax.faxTransparentCodecs,
                     e.line.modem.modemCodecs, e.line.codecOption);
  if (full) {
    Tree& functional = j["functional_table"] = Tree::array();
    for (const FunctionalEntry& entry : e.functionalTable) {
      Tree& one = functional.emplace_back(Object());
      one["keys"] = KeysText(entry.first);
      one["service"] = HexText(static_cast<uint32_t>(entry.second));
    }
    Tree& speedDial = j["speed_dial"] = Tree::array();
    for (const SpeedDialEntry& entry : e.speedDial) {
      Tree& one = speedDial.emplace_back(Object());
      one["code"] = KeysText(entry.first);
      one["destination"] = Destination(entry.second);
    }
    Tree& book = j["address_book"] = Tree::array();
    for (const AddressBookEntry& entry : e.addressBook) book.push_back(ContactTree(entry));
  }
  Tree& pstn = j["pstn"] = Object();
  pstn["fxo"] = Numbers(e.fxo.channels);
  pstn["isdn"] = Numbers(e.isdn.channels);
  pstn["cas"] = CasText(e.cas.spans);
  if (!full) return SummaryOf(j);
  Tree& access = j["access_list"] = Tree::array();
  for (const AccessData& a : e.accessList) {
    Tree& one = access.emplace_back(Object());
    one["priority"] = a.priority;
    one["enabled"] = a.enabled;
    one["type"] = CallTypeName(a.type);
    one["address"] = a.address;
  }
  j["group_members"] = e.groupMembers;
  return j;
}

Tree AttendantTree(const Attendant& a, bool systemAttendant) {
  Tree j = Object();
  j["name"] = a.name;
  j["type"] = "attendant";
  j["system_attendant"] = systemAttendant;
  j["sip"] = Sip(a.sip);
  Tree& personal = j["personal"] = Object();
  personal["display_name"] = a.displayName;
  personal["email"] = a.email;
  Tree& console = j["console"] = Object();
  console["console_mode"] = a.consoleMode;
  console["night_mode"] = a.nightMode;
  console["queue_size"] = a.queueSize;
  console["ring_timeout"] = a.ringTimeout;
  console["welcome_message"] = a.welcomeMessage;
  console["night_destination"] = a.nightDestination;
  console["tos"] = Tos(a.tos);
  j["media"] =
      Media(a.voiceCodecs, a.faxCodecs, a.faxTransparentCodecs, a.modemCodecs, a.codecOption);
  return j;
}

Tree SummaryOf(const Tree& record) {
  // In the record's own order: the summary is the record with less in it.
  Tree summary = Object();
  const auto pick = [&](const std::string& key, std::initializer_list<const char*> members) {
    Tree& part = summary[key] = Object();
    for (const char* member : members) part[member] = record[key][member];
  };
  for (auto it = record.begin(); it != record.end(); ++it) {
    const std::string& key = it.key();
    if (key == "sip")
      pick(key, {"user", "host", "port"});
    else if (key == "line")
      pick(key, {"local", "remote"});
    else if (key == "personal" && it.value().contains("display_name"))
      summary["display_name"] = it.value()["display_name"];
    else if (key == "name" || key == "type" || key == "description" ||
             key == "system_attendant" || key == "media" || key == "pstn")
      summary[key] = it.value();
  }
  return summary;
}

namespace {

Tree ExternalUsers(const std::string& file, const std::list<ExternalUserEntry>& users,
                   const std::string& root) {
  Tree j = Object();
  j["file"] = RootRelative(file, root);
  Tree& list = j["users"] = Tree::array();
  for (const ExternalUserEntry& u : users) {
    Tree& one = list.emplace_back(Object());
    one["e164"] = u.e164Number;
    one["user"] = u.userName;
    one["display"] = u.displayName;
    one["host"] = u.host;
    one["port"] = u.port;
    one["registered"] = u.registrationTime;
  }
  return j;
}

Tree CallRecords(const CDRData& c, const std::string& root) {
  auto database = [&](const std::string& path, uint32_t records, uint32_t files) {
    Tree j = Object();
    j["path"] = RootRelative(path, root);
    j["records"] = records;
    j["files"] = files;
    return j;
  };
  Tree j = Object();
  j["enabled"] = c.enabled;
  j["second"] = c.second;
  j["third"] = c.third;
  j["stated"] = database(c.statedPath, c.statedRecords, c.statedFiles);
  j["missed"] = database(c.missedPath, c.missedRecords, c.missedFiles);
  j["failed"] = database(c.failedPath, c.failedRecords, c.failedFiles);
  return j;
}

Tree General(const CMAgent& agent, const std::string& root) {
  const GeneralData& g = agent.generalData;
  Tree j = Object();
  j["system_prefix"] = g.systemPrefix;
  j["default_voice_codecs"] = Codecs(g.defaultVoiceCodecs);
  j["routing_mode"] = std::string(1, g.routingMode);
  j["operator_number"] = g.operatorNumber;
  j["dial_plan"] = RootRelative(g.dialPlanPath, root);
  j["registration_status_file"] = RootRelative(g.regStatusFile, root);
  Tree& callerId = j["caller_id"] = Object();
  callerId["local"] = g.callerIdLocal;
  callerId["ip"] = g.callerIdIp;
  callerId["pstn"] = g.callerIdPstn;
  j["pstn_agent_type"] = g.pstnAgentType;
  j["max_external_users"] = g.maxExternalUsers;
  j["external_user_expiry"] = g.externalUserExpiry;
  Tree& shared = j["shared_extensions"] = Tree::array();
  for (const SharedExtension& s : g.sharedExtensions) {
    Tree& one = shared.emplace_back(Object());
    one["extension"] = s.extension;
    one["flag"] = s.flag;
  }
  const std::pair<const char*, int32_t> numbers[] = {
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
      {"fxo_ports", g.fxoPorts}};
  for (const auto& number : numbers) j[number.first] = number.second;
  Tree& log = j["log"] = Object();
  log["enabled"] = agent.logEnabled;
  log["level_second"] = agent.logLevelSecond;
  log["login"] = agent.logLogin;
  j["system_messages"] = agent.sysMessageNames;
  return j;
}

}  // namespace

Tree SystemTree(const CMAgent& agent, const std::string& root) {
  const GeneralData& g = agent.generalData;
  Tree j = Object();
  j["general"] = General(agent, root);
  j["call_records"] = CallRecords(g.cdr, root);
  j["external_user_cache"] = ExternalUsers(g.externalUserCacheDb, g.externalUserCache, root);
  j["external_users"] = ExternalUsers(g.externalUserDb, g.externalUsers, root);
  Tree& phones = j["auto_login"] = Tree::array();
  for (const AuthorizedPhonesData& p : g.authorizedPhones) {
    Tree& one = phones.emplace_back(Object());
    one["address"] = p.phoneAddress;
    one["type"] = p.phoneType;
    one["extension"] = p.extension;
    one["user"] = p.userName;
    one["lines"] = p.lineCount;
    one["permissions"] = p.permissions;
    one["login_time"] = p.loginTime;
  }
  Tree& tones = j["tones"] = Tree::array();
  for (int t = 0; t < kDeviceToneCount; ++t) {
    const ToneType& tone = agent.toneTypes[t];
    Tree& one = tones.emplace_back(Object());
    one["name"] = DeviceToneNames[t];
    one["pattern"] = tone.pattern;
    one["mode"] = tone.mode;
    one["frequency"] = {tone.frequency_1, tone.frequency_2};
    one["level"] = {tone.tone_level_1, tone.tone_level_2};
    one["wav"] = tone.is_play_wav_on;
  }
  return j;
}

}  // namespace cmcfg_tool
