#include "tools/ext.h"

#include <cstdio>
#include <iomanip>
#include <ostream>
#include <utility>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "tools/dump.h"
#include "tools/format.h"
#include "tools/session.h"

namespace cmcfg_tool {
namespace {

using nlohmann::json;

// One "  label              value" line.
void Row(std::ostream& out, const std::string& label, const std::string& value) {
  out << "  " << std::left << std::setw(19) << label << value << "\n";
}

std::string OnOff(int32_t value) { return value != 0 ? "on" : "off"; }

std::string OrDash(const std::string& text) { return text.empty() ? "-" : text; }

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

std::string Join(const std::list<std::string>& items) {
  std::string text;
  for (const std::string& item : items) text += (text.empty() ? "" : ",") + item;
  return text.empty() ? "-" : text;
}

std::string FaxRelayText(const std::list<FaxCodecInfo>& codecs) {
  if (codecs.empty()) return "-";
  // The names of fax.cfg are not kept; its first two values tell the
  // encodings apart.
  std::string text;
  for (const FaxCodecInfo& c : codecs)
    text += (text.empty() ? "" : "; ") + std::string("version ") + std::to_string(c.values[0]) +
            ", " + std::to_string(c.values[1]) + " bit/s";
  return text;
}

// A byte as two hexadecimal digits, as tos.cfg writes them.
std::string ByteText(unsigned value) {
  char buffer[8];
  snprintf(buffer, sizeof buffer, "0x%02X", value & 0xFFu);
  return buffer;
}

std::string TosText(const TosSettings& tos) {
  return "signalling " + ByteText(tos.signaling) + ", media " + ByteText(tos.media);
}

// ---- SIP

void PrintSip(const UsrSipData& sip, std::ostream& out) {
  out << "SIP\n";
  Row(out, "address", SipText(sip.userName, sip.host, sip.port));
  Row(out, "auth name", OrDash(sip.authName));
  Row(out, "password", sip.password.empty() ? "none" : "set");
  Row(out, "proxy", OrDash(sip.proxy));
  Row(out, "outbound proxy", OrDash(sip.outboundProxy));
  Row(out, "transport", OrDash(sip.transport));
  Row(out, "domain", OrDash(sip.domain));
  Row(out, "display name", OrDash(sip.displayName));
  Row(out, "contact", OrDash(sip.contact));
  Row(out, "registration",
      OnOff(sip.registrationEnabled) + ", expiry " + std::to_string(sip.registerExpiry) +
          " s, keep-alive " + std::to_string(sip.keepAlive) + " s");
}

json SipDataJson(const UsrSipData& sip) {
  json j = SipJson(sip.userName, sip.host, sip.port);
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

// ---- line and media

std::string QueueText(const CallQueueData& q) {
  if (q.size == 0) return "none";
  std::string text = "size " + std::to_string(q.size) + ", mode " + std::to_string(q.mode) +
                     (q.IsFlagOn(CallQueueData::kAccepting) ? ", accepting" : ", closed") +
                     (q.IsFlagOn(CallQueueData::kOverflow) ? ", overflow" : "");
  if (q.announcement != 0)
    text += ", announcement " + std::to_string(q.announcement) + " " + Quoted(q.announcementText) +
            " every " + std::to_string(q.announcementRepeat) + " s";
  return text;
}

void PrintLine(const LineSettings& line, std::ostream& out) {
  out << "Line\n";
  std::string local = LocalEndpoint(line);
  if (local != "-") local += ", presentation id " + std::to_string(line.presentationId);
  Row(out, "local", local);
  std::string remote = RemoteEndpoint(line);
  if (line.remote.isRemote)
    remote += ", RTP proxy " + OnOff(line.remote.rtpProxy) + ", symmetric RTP " +
              OnOff(line.remote.symmetricRtp);
  Row(out, "remote", remote);
  Row(out, "remote access", std::to_string(line.remote.personalValue));
  const int32_t* d = line.disconnect.values;
  Row(out, "disconnect",
      std::to_string(d[0]) + "/" + std::to_string(d[1]) + "/" + std::to_string(d[2]) + "/" +
          std::to_string(d[3]) + " (mode/min ms/max ms/delay s)");
  Row(out, "caller ID type", std::to_string(line.fxsExtra));
  Row(out, "TOS", TosText(line.tos));
  Row(out, "call queue", QueueText(line.callQueue));
}

json LineJson(const LineSettings& line) {
  const CallQueueData& q = line.callQueue;
  return {{"local", EndpointJson(LocalEndpoint(line))},
          {"presentation_id", line.presentationId},
          {"remote", EndpointJson(RemoteEndpoint(line))},
          {"rtp_proxy", line.remote.rtpProxy},
          {"symmetric_rtp", line.remote.symmetricRtp},
          {"remote_access", line.remote.personalValue},
          {"disconnect", std::vector<int32_t>(line.disconnect.values, line.disconnect.values + 4)},
          {"caller_id_type", line.fxsExtra},
          {"tos", {{"signaling", line.tos.signaling}, {"media", line.tos.media}}},
          {"call_queue",
           {{"size", q.size},
            {"mode", q.mode},
            {"accepting", q.IsFlagOn(CallQueueData::kAccepting)},
            {"overflow", q.IsFlagOn(CallQueueData::kOverflow)},
            {"announcement", q.announcement},
            {"announcement_text", q.announcementText},
            {"announcement_repeat", q.announcementRepeat}}},
          {"codec_option", line.codecOption}};
}

void PrintMedia(const std::list<CodecInfo>& voice, const std::list<FaxCodecInfo>& fax,
                const std::list<CodecInfo>& faxInBand, const std::list<CodecInfo>& modem,
                int32_t codecOption, std::ostream& out) {
  out << "Media\n";
  Row(out, "voice", CodecNames(voice));
  Row(out, "fax relay", FaxRelayText(fax));
  Row(out, "fax in band", CodecNames(faxInBand));
  Row(out, "modem", CodecNames(modem));
  Row(out, "codec option", std::to_string(codecOption));
}

json MediaJson(const std::list<CodecInfo>& voice, const std::list<FaxCodecInfo>& fax,
               const std::list<CodecInfo>& faxInBand, const std::list<CodecInfo>& modem) {
  return {{"voice", CodecJson(voice)},
          {"fax_relay", FaxRelayJson(fax)},
          {"fax_transparent", CodecJson(faxInBand)},
          {"modem", CodecJson(modem)}};
}

// ---- services of the extension itself

void PrintServices(const ExtensionData& e, std::ostream& out) {
  out << "Services\n";
  Row(out, "call waiting", std::to_string(e.callWaiting));
  Row(out, "do not disturb", std::to_string(e.doNotDisturb));
  Row(out, "hotline", std::to_string(e.hotline));
  Row(out, "call transfer", std::to_string(e.callTransfer));
  Row(out, "conference",
      "allowed " + std::to_string(e.conferenceAllowed) + ", max parties " +
          std::to_string(e.conferenceMaxParties));
  Row(out, "call pickup",
      "allowed " + std::to_string(e.callPickupAllowed) + ", group " +
          std::to_string(e.callPickupGroup));
  Row(out, "intrusion",
      "allowed " + std::to_string(e.intrusionAllowed) + ", level " +
          std::to_string(e.intrusionLevel));
  Row(out, "music on hold", std::to_string(e.musicOnHold));
  Row(out, "caller ID shown", std::to_string(e.callerIdPresentation));
  Row(out, "call hold", std::to_string(e.callHoldAllowed));
  Row(out, "anonymous reject", std::to_string(e.anonymousRejection));
  Row(out, "remote control",
      "policy " + ByteText(e.rc.policy) + ", value " + std::to_string(e.rc.value));
  Row(out, "no answer", std::to_string(e.noAnswerTimeout) + " s");
  Row(out, "voice mail",
      "mode " + std::to_string(e.vms.mode) + " (" + OnOff(e.IsMailboxOn(false)) + "), rings " +
          std::to_string(e.vms.rings) + ", mailbox " + OrDash(e.vms.mailbox));
  Row(out, "auto-redial",
      "every " + std::to_string(e.redialInterval) + " s for " + std::to_string(e.redialPeriod) +
          " s");
  Row(out, "auto-call",
      OnOff(e.autoCall.enabled) + ", destination " + OrDash(e.autoCall.destination));
  Row(out, "call park", "timeout " + std::to_string(e.callParkTimeout) + " s");
  const FaxData& fax = e.line.fax;
  Row(out, "fax",
      "modes " + std::to_string(fax.faxModeA) + "/" + std::to_string(fax.faxModeB) + " (" +
          OnOff(fax.IsFaxOn()) + "), tone detection " + std::to_string(fax.toneDetectionEnabled) +
          ", forced " + std::to_string(fax.toneDetectionForced) + ", profile " +
          OrDash(fax.faxProfile));
  Row(out, "modem mode", std::to_string(e.line.modem.modemMode));
}

json ServicesJson(const ExtensionData& e) {
  const FaxData& fax = e.line.fax;
  return {{"call_waiting", e.callWaiting},
          {"do_not_disturb", e.doNotDisturb},
          {"hotline", e.hotline},
          {"call_transfer", e.callTransfer},
          {"conference_allowed", e.conferenceAllowed},
          {"conference_max_parties", e.conferenceMaxParties},
          {"call_pickup_allowed", e.callPickupAllowed},
          {"call_pickup_group", e.callPickupGroup},
          {"intrusion_allowed", e.intrusionAllowed},
          {"intrusion_level", e.intrusionLevel},
          {"music_on_hold", e.musicOnHold},
          {"caller_id_presentation", e.callerIdPresentation},
          {"call_hold_allowed", e.callHoldAllowed},
          {"anonymous_rejection", e.anonymousRejection},
          {"remote_control", {{"policy", e.rc.policy}, {"value", e.rc.value}}},
          {"no_answer_timeout", e.noAnswerTimeout},
          {"voice_mail",
           {{"mode", e.vms.mode},
            {"rings", e.vms.rings},
            {"mailbox", e.vms.mailbox},
            {"on", e.IsMailboxOn(false)}}},
          {"auto_redial", {{"interval", e.redialInterval}, {"period", e.redialPeriod}}},
          {"auto_call", {{"enabled", e.autoCall.enabled}, {"destination", e.autoCall.destination}}},
          {"call_park_timeout", e.callParkTimeout},
          {"fax",
           {{"mode_a", fax.faxModeA},
            {"mode_b", fax.faxModeB},
            {"tone_detection", fax.toneDetectionEnabled},
            {"tone_forced", fax.toneDetectionForced},
            {"profile", fax.faxProfile}}},
          {"modem_mode", e.line.modem.modemMode}};
}

// ---- address book

std::vector<std::string> ActiveServices(const SupServiceSet& s) {
  std::vector<std::string> names;
  if (s.clir.active) names.push_back("CLIR");
  if (s.incomingBlocking.active) names.push_back("blocking in");
  if (s.outgoingBlocking.active) names.push_back("blocking out");
  if (s.distRinging.active) names.push_back("dist. ringing");
  if (s.hunt.active) names.push_back("hunting");
  if (s.manyRinging.active) names.push_back("M.E.R.");
  if (s.forwardUnconditional.active) names.push_back("forward unconditional");
  if (s.forwardNoAnswer.active) names.push_back("forward no answer");
  if (s.forwardBusy.active) names.push_back("forward busy");
  return names;
}

std::string JoinNames(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "none" : text;
}

std::string Cadence(const std::vector<unsigned long>& cadence) {
  std::string text;
  for (unsigned long ms : cadence) text += (text.empty() ? "" : ",") + std::to_string(ms);
  return text.empty() ? "-" : text;
}

void PrintForward(const char* label, const ForwardData& f, std::ostream& out) {
  // A forward with neither an active flag nor destinations holds nothing.
  if (!f.active && f.destinations.empty() && f.text.empty()) return;
  std::string line = "    " + std::string(label) + " (" + OnOff(f.active) + ")";
  if (!f.text.empty()) line += " " + Quoted(f.text);
  line += ":";
  if (f.destinations.empty()) line += " -";
  for (auto it = f.destinations.begin(); it != f.destinations.end(); ++it)
    line += (it == f.destinations.begin() ? " " : ", ") + DestinationText(*it);
  out << line << "\n";
}

void PrintContact(const AddressBookEntry& entry, std::ostream& out) {
  const Contact& c = entry.first;
  const SupServiceSet& s = entry.second;
  out << "  " << std::left << std::setw(19) << c.name << CallTypeName(c.callType) << ", id " << c.id
      << ", armed " << (s.IsArmed(false) ? "yes" : "no") << " (any service "
      << (s.IsArmed(true) ? "yes" : "no") << "), intercom mode " << s.intercom.mode
      << ", active: " << JoinNames(ActiveServices(s)) << "\n";
  if (s.incomingBlocking.active)
    out << "    blocking in mode " << s.incomingBlocking.blockMode << "\n";
  if (s.outgoingBlocking.active)
    out << "    blocking out mode " << s.outgoingBlocking.blockMode << "\n";
  if (s.distRinging.active)
    out << "    dist. ringing " << Quoted(s.distRinging.ringName) << ", pattern "
        << OrDash(s.distRinging.pattern) << ", cadence " << Cadence(s.distRinging.cadence) << "\n";
  if (s.hunt.active || !s.hunt.targets.empty()) {
    out << "    hunting (" << OnOff(s.hunt.active) << ") mode " << s.hunt.huntMode << ":";
    const char* separator = " ";
    for (const HuntRingTarget& t : s.hunt.targets) {
      out << separator << t.number << " (" << t.value << " s)";
      separator = ", ";
    }
    out << "\n";
  }
  if (s.manyRinging.active || !s.manyRinging.extensions.empty())
    out << "    M.E.R. (" << OnOff(s.manyRinging.active) << "): " << Join(s.manyRinging.extensions)
        << "\n";
  PrintForward("forward unconditional", s.forwardUnconditional, out);
  PrintForward("forward no answer", s.forwardNoAnswer, out);
  PrintForward("forward busy", s.forwardBusy, out);
}

// The address book is most of a dump, so its records are built member by
// member: a pair of an initializer list is a temporary array of its own.

json ForwardJson(const ForwardData& f) {
  json j = json::object();
  j["active"] = f.active;
  j["text"] = f.text;
  json& destinations = j["destinations"] = json::array();
  for (const ForwardParams& d : f.destinations) destinations.push_back(DestinationJson(d));
  return j;
}

json BlockingJson(const CallBlockingData& b) {
  json j = json::object();
  j["active"] = b.active;
  j["mode"] = b.blockMode;
  return j;
}

json ContactJson(const AddressBookEntry& entry) {
  const Contact& c = entry.first;
  const SupServiceSet& s = entry.second;
  json j = json::object();
  j["name"] = c.name;
  j["id"] = c.id;
  j["call_type"] = CallTypeName(c.callType);
  j["armed"] = s.IsArmed(false);
  j["armed_any"] = s.IsArmed(true);
  j["active"] = ActiveServices(s);
  j["clir"] = s.clir.active;
  j["incoming_blocking"] = BlockingJson(s.incomingBlocking);
  j["outgoing_blocking"] = BlockingJson(s.outgoingBlocking);
  json& ringing = j["distinctive_ringing"];
  ringing["active"] = s.distRinging.active;
  ringing["ring_name"] = s.distRinging.ringName;
  ringing["pattern"] = s.distRinging.pattern;
  ringing["cadence"] = s.distRinging.cadence;
  json& hunting = j["hunting"];
  hunting["active"] = s.hunt.active;
  hunting["mode"] = s.hunt.huntMode;
  json& targets = hunting["targets"] = json::array();
  for (const HuntRingTarget& t : s.hunt.targets) {
    json& target = targets.emplace_back(json::object());
    target["number"] = t.number;
    target["ring_time"] = t.value;
  }
  json& many = j["many_ringing"];
  many["active"] = s.manyRinging.active;
  many["extensions"] = s.manyRinging.extensions;
  j["forward_unconditional"] = ForwardJson(s.forwardUnconditional);
  j["forward_no_answer"] = ForwardJson(s.forwardNoAnswer);
  j["forward_busy"] = ForwardJson(s.forwardBusy);
  j["intercom_mode"] = s.intercom.mode;
  return j;
}

// ---- lists of the extension

void PrintTables(const ExtensionData& e, std::ostream& out) {
  out << "Functional table: " << e.functionalTable.size() << "\n";
  for (const FunctionalEntry& entry : e.functionalTable)
    Row(out, KeysText(entry.first), HexText(static_cast<uint32_t>(entry.second)));
  out << "Speed dial: " << e.speedDial.size() << "\n";
  for (const SpeedDialEntry& entry : e.speedDial)
    Row(out, KeysText(entry.first), DestinationText(entry.second));
  out << "Address book: " << e.addressBook.size() << "\n";
  for (const AddressBookEntry& entry : e.addressBook) PrintContact(entry, out);
}

void PrintGroups(const ExtensionData& e, std::ostream& out) {
  out << "PSTN channels\n";
  Row(out, "FXO", OrDash(Numbers(e.fxo.channels)));
  Row(out, "ISDN", OrDash(Numbers(e.isdn.channels)));
  Row(out, "CAS", OrDash(CasText(e.cas.spans)));
  out << "Access list: " << e.accessList.size() << "\n";
  for (const AccessData& a : e.accessList)
    Row(out, "priority " + std::to_string(a.priority),
        CallTypeName(a.type) + " " + a.address + (a.enabled ? "" : " (disabled)"));
  out << "Group members: " << Join(e.groupMembers) << "\n";
}

}  // namespace

FoundRecord FindRecord(const CMAgent& agent, const std::string& name) {
  FoundRecord found;
  const Attendant* system = agent.generalData.sysAttendant;
  for (const ExtensionData* e : agent.extensionBase) {
    if (e != nullptr && e->name == name) {
      found.extension = e;
      return found;
    }
  }
  for (const Attendant* a : agent.attendants) {
    if (a != nullptr && a->name == name) {
      found.attendant = a;
      found.systemAttendant = system != nullptr && system->name == name;
      return found;
    }
  }
  if (system != nullptr && system->name == name) {
    found.attendant = system;
    found.systemAttendant = true;
  }
  return found;
}

void PrintExtension(const ExtensionData& e, std::ostream& out) {
  out << "Extension " << e.name << " (" << TypeName(e.type) << ")";
  if (!e.description.empty()) out << " " << Quoted(e.description);
  out << "\n";
  PrintSip(e.sip, out);
  out << "Personal\n";
  Row(out, "display name", OrDash(e.displayName));
  Row(out, "password keys",
      std::to_string(e.password.keys.size()) + " (policy " + std::to_string(e.password.setting) +
          ")");
  Row(out, "user class", std::to_string(e.userClass));
  Row(out, "language", std::to_string(e.language));
  PrintServices(e, out);
  PrintLine(e.line, out);
  PrintMedia(e.line.voiceCodecs, e.line.fax.faxCodecs, e.line.fax.faxTransparentCodecs,
             e.line.modem.modemCodecs, e.line.codecOption, out);
  PrintTables(e, out);
  PrintGroups(e, out);
}

json ExtensionJson(const ExtensionData& e) {
  json functional = json::array();
  for (const FunctionalEntry& entry : e.functionalTable)
    functional.push_back({{"keys", KeysText(entry.first)},
                          {"service", HexText(static_cast<uint32_t>(entry.second))}});
  json speedDial = json::array();
  for (const SpeedDialEntry& entry : e.speedDial)
    speedDial.push_back(
        {{"code", KeysText(entry.first)}, {"destination", DestinationJson(entry.second)}});
  json book = json::array();
  for (const AddressBookEntry& entry : e.addressBook) book.push_back(ContactJson(entry));
  json access = json::array();
  for (const AccessData& a : e.accessList)
    access.push_back({{"priority", a.priority},
                      {"enabled", a.enabled},
                      {"type", CallTypeName(a.type)},
                      {"address", a.address}});
  return {
      {"name", e.name},
      {"type", TypeName(e.type)},
      {"description", e.description},
      {"sip", SipDataJson(e.sip)},
      {"personal",
       {{"display_name", e.displayName},
        {"password_keys", e.password.keys.size()},
        {"password_policy", e.password.setting},
        {"user_class", e.userClass},
        {"language", e.language}}},
      {"services", ServicesJson(e)},
      {"line", LineJson(e.line)},
      {"media", MediaJson(e.line.voiceCodecs, e.line.fax.faxCodecs, e.line.fax.faxTransparentCodecs,
                          e.line.modem.modemCodecs)},
      {"functional_table", std::move(functional)},
      {"speed_dial", std::move(speedDial)},
      {"address_book", std::move(book)},
      {"pstn", {{"fxo", e.fxo.channels}, {"isdn", e.isdn.channels}, {"cas", CasText(e.cas.spans)}}},
      {"access_list", std::move(access)},
      {"group_members", e.groupMembers}};
}

void PrintAttendant(const Attendant& a, bool systemAttendant, std::ostream& out) {
  out << "Attendant " << a.name << (systemAttendant ? " (system attendant)" : "") << "\n";
  PrintSip(a.sip, out);
  out << "Personal\n";
  Row(out, "display name", OrDash(a.displayName));
  Row(out, "email", OrDash(a.email));
  out << "Console\n";
  Row(out, "console mode", std::to_string(a.consoleMode));
  Row(out, "night mode", std::to_string(a.nightMode));
  Row(out, "queue size", std::to_string(a.queueSize));
  Row(out, "ring timeout", std::to_string(a.ringTimeout) + " s");
  Row(out, "welcome message", OrDash(a.welcomeMessage));
  Row(out, "night destination", OrDash(a.nightDestination));
  Row(out, "TOS", TosText(a.tos));
  PrintMedia(a.voiceCodecs, a.faxCodecs, a.faxTransparentCodecs, a.modemCodecs, a.codecOption, out);
}

json AttendantJson(const Attendant& a, bool systemAttendant) {
  return {{"name", a.name},
          {"type", "attendant"},
          {"system_attendant", systemAttendant},
          {"sip", SipDataJson(a.sip)},
          {"personal", {{"display_name", a.displayName}, {"email", a.email}}},
          {"console",
           {{"console_mode", a.consoleMode},
            {"night_mode", a.nightMode},
            {"queue_size", a.queueSize},
            {"ring_timeout", a.ringTimeout},
            {"welcome_message", a.welcomeMessage},
            {"night_destination", a.nightDestination},
            {"tos", {{"signaling", a.tos.signaling}, {"media", a.tos.media}}}}},
          {"media", MediaJson(a.voiceCodecs, a.faxCodecs, a.faxTransparentCodecs, a.modemCodecs)},
          {"codec_option", a.codecOption}};
}

int RunExt(const ExtOptions& options, std::ostream& out, std::ostream& err) {
  const std::string root = ResolveRoot(options.root);
  if (!RootIsUsable(root, err)) return 2;
  AgentSession session(root, options.logDir, Access::kInspect, &err);
  const FoundRecord found = FindRecord(session.agent(), options.name);
  if (found.extension == nullptr && found.attendant == nullptr) {
    err << "cmcfg: no extension or attendant named \"" << options.name << "\" under " << root
        << "\n";
    return 1;
  }
  if (options.json) {
    out << JsonText(found.extension ? ExtensionJson(*found.extension)
                                    : AttendantJson(*found.attendant, found.systemAttendant));
  } else if (found.extension) {
    PrintExtension(*found.extension, out);
  } else {
    PrintAttendant(*found.attendant, found.systemAttendant, out);
  }
  return 0;
}

}  // namespace cmcfg_tool
