// The file of one generated user: a full profile with an address book.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/generated_text.h"
#include "bench/root_generator.h"

namespace bench_roots {
namespace {

const char* const kFirstNames[] = {"Alice", "Bruno", "Chloe", "Dmitri", "Elena", "Farid",
                                   "Greta", "Hugo",  "Ines",  "Jonas",  "Kira",  "Lars",
                                   "Maya",  "Nils",  "Olga",  "Pavel",  "Rosa",  "Sven"};
const char* const kLastNames[] = {"Moreau", "Keller", "Olsen",  "Novak", "Ricci",  "Berg",
                                  "Costa",  "Dubois", "Fischer", "Haas", "Jansen", "Larsen",
                                  "Meyer",  "Nagy",   "Peters", "Quist", "Romero", "Weber"};
const char* const kDepartments[] = {"Sales", "Support", "Finance", "Engineering", "Logistics",
                                    "Purchasing", "Legal", "Marketing"};
const char* const kVoiceCodecs[] = {"G711U", "G711A", "G729", "G729a", "G723", "G722", "iLBC"};
const char* const kFaxCodecs[] = {"T38,G711A", "T38", "T38-ECM,T38", "G711A", "T38,G711U"};
const char* const kModemCodecs[] = {"G711U", "G711A", "G711A,G711U"};
const char* const kTransports[] = {"udp", "udp", "udp", "tcp", "tls"};
const char* const kRingPatterns[] = {"short", "long", "triple", "default", "400,200,400,2000"};

// The twenty service codes of the exchange's keypad plan; a few services
// have two codes, and some use hook flash ('f').
const char* const kServiceCodes[20] = {"*72",     "*73",  "*90,*91", "*92,*93", "*21,*22",
                                       "#9f",     "*69",  "*70",     "*78,*79", "*60",
                                       "*67",     "*82",  "*66",     "*86",     "*97",
                                       "*80",     "**8",  "#3f",     "#4f,#5f", "*99"};

// Another user's number, for forwarding targets and contacts; the root's
// own user when it is alone.
std::string Colleague(Random& r, int users) {
  return UserNumber(users > 0 ? r.Below(users) : 0);
}

std::string Mobile(Random& r) { return "06" + std::to_string(10000000 + r.Below(90000000)); }

// destination_N = enabled,type,address; types 0 number, 1 SIP, 2 PSTN.
std::string Destination(Random& r, int users) {
  switch (r.Below(3)) {
    case 0:
      return "1,0," + Colleague(r, users);
    case 1: {
      // One draw per statement: operands of + are unsequenced, and the root
      // must come out the same from every compiler.
      const std::string name = Pick(r, kFirstNames);
      return "1,1,sip:" + name + std::to_string(r.Below(1000)) + "@mobile.example";
    }
    default:
      return "1,2," + Mobile(r);
  }
}

void Forward(Text& t, Random& r, int users, int contact, const char* service, bool active) {
  t.Section("contact " + std::to_string(contact) + " " + service)
      .Key("active", active ? 1 : 0);
  if (r.OneIn(4)) t.Key("text", "set from the phone");
  const int count = 1 + r.Below(2);
  for (int i = 1; i <= count; ++i)
    t.Key(("destination_" + std::to_string(i)).c_str(), Destination(r, users));
  t.End();
}

void Contact(Text& t, int id, const std::string& name, int callType) {
  t.Section("contact " + std::to_string(id)).Key("name", name).Key("call_type", callType).End();
}

// The address book: the any-caller contact, patterns, colleagues, a SIP
// partner and PSTN numbers, each with forwarding and some other services.
void AddressBook(Text& t, Random& r, int users) {
  static const char* const kForwards[] = {"forward_unconditional", "forward_busy",
                                          "forward_no_answer"};
  for (int id = 1; id <= 10; ++id) {
    switch (id) {
      case 1:
        Contact(t, id, "*", 0);
        break;
      case 2:
        Contact(t, id, "55?1", 0);
        break;
      case 3:
        Contact(t, id, "9*", 2);
        break;
      case 7:
        Contact(t, id, "sip:partner" + std::to_string(r.Below(100)) + "@branch.example", 1);
        break;
      case 8:
        Contact(t, id, "0900*", 2);
        break;
      case 9:
        Contact(t, id, "0215550?", 2);
        break;
      default:
        Contact(t, id, Colleague(r, users), 0);
        break;
    }
    // Every contact forwards somewhere; the any-caller one has all three.
    if (id == 1) {
      for (const char* service : kForwards) Forward(t, r, users, id, service, !r.OneIn(3));
    } else {
      const int first = r.Below(3);
      Forward(t, r, users, id, kForwards[first], r.OneIn(2));
      if (r.OneIn(2)) Forward(t, r, users, id, kForwards[(first + 1) % 3], r.OneIn(2));
    }
    const std::string prefix = "contact " + std::to_string(id) + " ";
    switch (id % 5) {
      case 0:
        t.Section(prefix + "clir").Key("active", 1).End();
        t.Section(prefix + "intercom").Key("mode", r.Below(3)).End();
        break;
      case 1:
        t.Section(prefix + "outgoing_blocking")
            .Key("active", 1)
            .Key("block_international", r.Below(2))
            .Key("block_mode", 1)
            .End();
        break;
      case 2:
        t.Section(prefix + "incoming_blocking")
            .Key("active", 1)
            .Key("block_anonymous", r.Below(2))
            .Key("block_mode", 1)
            .End();
        break;
      case 3:
        t.Section(prefix + "distinctive_ringing")
            .Key("active", 1)
            .Key("ring_name", "vip")
            .Key("pattern", Pick(r, kRingPatterns))
            .End();
        break;
      default: {
        t.Section(prefix + "hunting")
            .Key("active", r.Below(2))
            .Key("hunt_mode", r.Below(2))
            .Key("target_1", Colleague(r, users) + ",15")
            .Key("target_2", Colleague(r, users) + ",20")
            .End();
        const std::string ringsWith = Colleague(r, users);
        t.Section(prefix + "many_ringing")
            .Key("active", 0)
            .Key("numbers", ringsWith + "," + Colleague(r, users))
            .End();
        break;
      }
    }
  }
}

std::string VoiceCodecs(Random& r) {
  std::vector<const char*> codecs(std::begin(kVoiceCodecs), std::end(kVoiceCodecs));
  for (size_t i = codecs.size() - 1; i > 0; --i)
    std::swap(codecs[i], codecs[static_cast<size_t>(r.Below(static_cast<int>(i + 1)))]);
  const int count = 3 + r.Below(3);
  std::string list;
  for (int i = 0; i < count; ++i) list += (i ? "," : "") + std::string(codecs[i]);
  return list;
}

std::string Digits(Random& r, int count) {
  std::string s;
  for (int i = 0; i < count; ++i) s += static_cast<char>('0' + r.Below(10));
  return s;
}

}  // namespace

std::string UserFileText(int index, int users) {
  Random r(static_cast<uint64_t>(index) + 1);
  const std::string number = UserNumber(index);
  const std::string first = Pick(r, kFirstNames);
  const std::string last = Pick(r, kLastNames);
  const std::string full = first + " " + last;
  std::string login = first + "." + last;
  std::transform(login.begin(), login.end(), login.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });

  Text t;
  t.Comment("Extension " + number + ": " + full + ".");
  t.Section("extension").Key("description", full + ", " + Pick(r, kDepartments)).End();

  t.Section("sip")
      .Key("auth_name", login + "." + number)
      .Key("user_name", number)
      .Key("password", first.substr(0, 3) + "-" + Digits(r, 5))
      .Key("host", r.OneIn(3) ? "10.1." + std::to_string(r.Below(250)) + ".1"
                              : std::string("pbx.corp.example"))
      .Key("port", r.OneIn(10) ? 5070 : 5060);
  if (r.OneIn(4)) t.Key("proxy", "proxy.corp.example");
  if (r.OneIn(8)) t.Key("outbound_proxy", "sbc.corp.example:5061");
  t.Key("transport", Pick(r, kTransports)).Key("domain", "corp.example").Key("display_name", full);
  if (r.OneIn(5)) {
    const std::string subnet = std::to_string(r.Below(250));
    t.Key("contact", "sip:" + number + "@10.20." + subnet + "." + std::to_string(1 + r.Below(250)) +
                         ":5060");
  }
  t.Key("register_expiry", r.OneIn(3) ? 1800 : 3600)
      .Key("registration_enabled", r.OneIn(20) ? 0 : 1)
      .Key("sip_keep_alive", r.OneIn(4) ? 30 : 0)
      .End();

  const bool queue = r.OneIn(6);
  t.Section("personal")
      .Key("full_name", full)
      .Key("email", login + "." + number + "@corp.example")
      .Key("password", Digits(r, 4 + r.Below(3)))
      .Key("password_policy", 3)
      .Key("language", r.Below(4))
      .Key("user_class", r.Below(3))
      .Key("remote_access", 0)
      .Key("tos_profile", r.OneIn(5) ? "default" : "voice")
      .Key("queue_enabled", queue ? 1 : 0)
      .Key("queue_size", queue ? 5 : 0)
      .Key("queue_mode", 0)
      .Key("queue_disabled", 0)
      .Key("queue_overflow", queue ? 1 : 0)
      .Key("announcement_enabled", queue ? 1 : 0)
      .Key("announcement_value", queue ? 3 : 0)
      .Optional("announcement_text", queue ? "please-hold" : "")
      .Key("announcement_repeat", queue ? 20 : 0)
      .End();

  const int vmMode = r.Below(4);
  const bool fax = r.OneIn(10);
  t.Section("services")
      .Key("call_waiting", r.OneIn(5) ? 0 : 1)
      .Key("do_not_disturb", r.OneIn(15) ? 1 : 0)
      .Key("hotline", 0)
      .Key("call_transfer", 1)
      .Key("voice_mail_mode", vmMode)
      .Key("voice_mail_rings", 2 + r.Below(4))
      .Optional("voice_mail_box", vmMode >= 2 ? "mailbox-" + number : std::string())
      .Key("remote_control", 0)
      .Key("fax_mode_a", fax ? 1 : 0)
      .Key("fax_mode_b", 0)
      .Key("fax_param3", 0)
      .Key("fax_tone_detection", fax ? 1 : 0)
      .Key("fax_tone_forced", 0)
      .Optional("fax_profile", fax ? "T38" : "")
      .Key("modem_mode", 0)
      .Key("conference_allowed", 1)
      .Key("conference_max_parties", r.OneIn(4) ? 6 : 0)
      .Key("call_pickup_allowed", 1)
      .Key("call_pickup_group", 1 + index / 50)
      .Key("intrusion_allowed", r.OneIn(3) ? 0 : 1)
      .Key("intrusion_level", r.Below(3))
      .Key("music_on_hold", r.Below(3))
      .Key("caller_id_presentation", r.OneIn(10) ? 0 : 1)
      .Key("call_hold_allowed", 1)
      .Key("anonymous_call_rejection", r.OneIn(8) ? 1 : 0)
      .End();

  t.Section("timeouts")
      .Key("no_answer_timeout", 10 + 5 * r.Below(4))
      .Key("call_park_timeout", 60)
      .Key("dial_timeout", 10)
      .End();

  t.Section("codecs")
      .Key("voice_codecs", VoiceCodecs(r))
      .Key("fax_codecs", Pick(r, kFaxCodecs))
      .Key("modem_codecs", Pick(r, kModemCodecs))
      .Key("codec_option", 0)
      .End();

  t.Section("service_codes");
  for (int i = 0; i < 20; ++i)
    t.Key(("code_" + std::to_string(i + 1)).c_str(), kServiceCodes[i]);
  t.End();

  t.Section("busy_redial")
      .Key("interval", r.OneIn(2) ? 30 : 60)
      .Key("period_minutes", r.OneIn(2) ? 10 : 30)
      .End();

  const bool autoCall = r.OneIn(20);
  t.Section("auto_call")
      .Key("enabled", autoCall ? 1 : 0)
      .Optional("destination", autoCall ? std::string(kAttendant) : std::string())
      .End();

  for (int i = 0; i < 10; ++i) {
    const std::string firstName = Pick(r, kFirstNames);
    t.Section("speed_dial " + std::to_string(i + 1))
        .Key("name", firstName + " " + Pick(r, kLastNames))
        .Key("calling_code", "#0" + std::to_string(i));
    if (i % 3 == 1) {
      t.Key("dest_type", 1).Key("address", "sip:" + login + std::to_string(i) + "@partner.example");
    } else {
      t.Key("dest_type", 0).Key("destination", Colleague(r, users));
    }
    t.End();
  }

  AddressBook(t, r, users);
  return std::move(t.str());
}

}  // namespace bench_roots
