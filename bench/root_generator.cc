#include "bench/root_generator.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace bench_roots {
namespace fs = std::filesystem;

namespace {

// Six-digit numbers: a large exchange's numbering plan, and never the
// attendant's 100.
constexpr int kFirstUser = 100000;
const char kAttendant[] = "100";
const char kMarker[] = "generated.ok";

// Deterministic per-user variety: the same root on every machine and run.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15ull + 0x632BE59BD9B4E019ull) {}
  uint64_t Next() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  int Below(int n) { return static_cast<int>(Next() % static_cast<uint64_t>(n)); }
  bool OneIn(int n) { return Below(n) == 0; }

 private:
  uint64_t state_;
};

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

template <size_t N>
const char* Pick(Random& r, const char* const (&list)[N]) {
  return list[r.Below(static_cast<int>(N))];
}

// Builds one file in the common text format.
class Text {
 public:
  Text& Comment(const std::string& text) {
    out_ += "# " + text + "\n";
    return *this;
  }
  Text& Section(const std::string& name) {
    if (!out_.empty()) out_ += '\n';
    out_ += "section " + name + "\n{\n";
    return *this;
  }
  Text& Key(const char* key, const std::string& value) {
    out_ += key;
    out_ += " = ";
    out_ += value;
    out_ += '\n';
    return *this;
  }
  Text& Key(const char* key, long value) { return Key(key, std::to_string(value)); }
  // A text key left out when empty, as the web configuration saves it.
  Text& Optional(const char* key, const std::string& value) {
    return value.empty() ? *this : Key(key, value);
  }
  Text& End() {
    out_ += "}\n";
    return *this;
  }
  std::string& str() { return out_; }

 private:
  std::string out_;
};

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

// ---------------------------------------------------------------- files

void WriteFile(const std::string& path, const std::string& text) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) throw std::runtime_error("cannot create " + path + ": " + std::strerror(errno));
  size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      ::close(fd);
      throw std::runtime_error("cannot write " + path);
    }
    done += static_cast<size_t>(n);
  }
  ::close(fd);
}

std::string GeneralCfg(int users) {
  Text t;
  t.Comment("General settings of a large exchange, made for the start-up benchmarks.");
  // Logging off: the benchmarks measure the load, not the trace.
  t.Section("logging").Key("log_enabled", 0).Key("log_details", 0).End();
  t.Section("system")
      .Key("system_prefix", "corp-")
      .Key("voice_codecs", "G711A,G711U,G729")
      .Key("extra_voice_codecs", "G722")
      .Key("routing_mode", "R")
      .Key("operator_number", kAttendant)
      .Key("max_extensions", std::max(64, users))
      .Key("max_external_users", 32)
      .Key("external_user_expiry_hours", 6)
      .End();
  t.Section("callerid")
      .Key("caller_id_local", "%a")
      .Key("caller_id_ip", "%d <%u@%h>")
      .Key("caller_id_pstn", "%u")
      .End();
  t.Section("limits")
      .Key("max_hold_calls", 5)
      .Key("max_conference_parties", 8)
      .Key("max_parked_calls", 16)
      .Key("max_call_waiting", 5)
      .Key("max_calls_per_extension", 2)
      .End();
  t.Section("timers")
      .Key("dial_timeout", 10)
      .Key("park_timeout", 180)
      .Key("no_answer_timeout", 30)
      .Key("inter_digit_timeout", 5)
      .Key("session_timer", 1)
      .Key("session_timer_interval", 1800)
      .End();
  t.Section("features")
      .Key("hot_desking", 0)
      .Key("direct_inward_dial", 1)
      .Key("music_on_hold", 1)
      .Key("tone_wave_mode", 0)
      .Key("sip_keep_alive", 1)
      .Key("conference_tone", 1)
      .Key("call_pickup_notify", 1)
      .Key("barge_in", 0)
      .Key("emergency_routing", 1)
      .Key("stun_enabled", 0)
      .Key("nat_keep_alive", 0)
      .Key("early_media", 1)
      .Key("mwi_mode", 0)
      .End();
  t.Section("pstn")
      .Key("fxo_agent", 1)
      .Key("isdn_agent", 0)
      .Key("cas_agent", 0)
      .Key("fxo_ports", 4)
      .Key("isdn_interfaces", 1)
      .Key("e1t1_interfaces", 1)
      .End();
  t.Section("cdr")
      .Key("cdr_enabled", 1)
      .Key("cdr_stated_records", 2000)
      .Key("cdr_missed_records", 500)
      .Key("cdr_failed_records", 500)
      .Key("cdr_stated_files", 10)
      .Key("cdr_missed_files", 5)
      .Key("cdr_failed_files", 5)
      .End();
  return t.str();
}

// Every name set: an empty one would make the agent write its default back
// into the cached root.
const char kPathsCfg[] = R"(section paths
{
external_user_cache_file = external_user_cache_db
reg_status_file = reg_status_file
cdr_stated_db = CDR_db
cdr_missed_db = missed_calls_db
cdr_failed_db = unsuccess_calls_db
}
)";

const char kGatewaysCfg[] = R"(# Gateway 1 is the local media gateway with most of the FXS ports; 2 and 3
# are remote gateways in the branch offices.
section 1
{
name = main-office
type = 1
}

section 2
{
name = branch-north
type = 2
address = 192.168.20.5
}

section 3
{
name = branch-south
type = 2
address = 192.168.30.5
}
)";

const char kFaxCfg[] = R"(section T38
{
version = 0
max_bit_rate = 14400
rate_management = 2
max_buffer = 200
max_datagram = 72
error_correction = 1
redundancy_low = 3
redundancy_high = 1
fill_bit_removal = 0
transcoding_mmr = 0
transcoding_jbig = 0
}

section T38-ECM
{
version = 3
max_bit_rate = 33600
rate_management = 2
max_buffer = 400
max_datagram = 160
error_correction = 2
redundancy_low = 0
redundancy_high = 0
fill_bit_removal = 1
transcoding_mmr = 1
transcoding_jbig = 0
}
)";

const char kTosCfg[] = R"(section 1
{
name = voice
signaling_tos = 0x68
media_tos = 0xB8
}

section 2
{
name = default
signaling_tos = 0x00
media_tos = 0x00
}
)";

const char kRingPatternsCfg[] = R"(section 1
{
name = short
cadence = 500,4000
}

section 2
{
name = long
cadence = 2000,4000
}

section 3
{
name = triple
cadence = 400,200,400,200,400,2000
}
)";

const char kFxsCfg[] = R"(section fxs
{
ring_cadence = 1000,2500
ring_voltage = 45
ring_frequency = 25
flash_time_min = 100
flash_time_max = 800
}
)";

const char kLogLoginCfg[] = R"(section login
{
login_trace = 1
login_audit = 1
}
)";

const char kDialplanCfg[] = R"(section internal
{
pattern = 1XXXXX
route = extension
}

section external
{
pattern = 0.
route = pstn
strip = 1
}
)";

const char kToneTypesCfg[] = R"(section DeviceTone_InsideDial
{
frequency_1 = 425
pattern = 1000,0
is_play_wav_on = 0
}

section DeviceTone_LineBusy
{
frequency_1 = 425
tone_duration = 500
silence_duration = 500
is_play_wav_on = 0
}

section DeviceTone_Alerting
{
mode = 0
frequency_1 = 425
pattern = 1000,4000
is_play_wav_on = 0
}

section DeviceTone_Reorder
{
frequency_1 = 425
pattern = 200,200
}

section DeviceTone_CallWaiting
{
mode = 1
frequency_1 = 425
tone_level_1 = -10
tone_duration = 200
silence_duration = 5000
is_play_wav_on = 0
}
)";

const char kExternalUserDb[] = R"(section branch-office-1
{
E164_phone_number = +494012345601
user_name = hamburg1
user_display_name = Hamburg Front Desk
user_host_address = 203.0.113.20
user_host_port = 5060
registration_date_and_time = 1795000000
}

section branch-office-2
{
E164_phone_number = +494012345602
user_name = hamburg2
user_display_name = Hamburg Sales
user_host_address = 203.0.113.21
user_host_port = 5062
registration_date_and_time = 1795003600
}

section softphone-anna
{
E164_phone_number = +4915112345678
user_name = anna.home
user_display_name = Anna (home office)
user_host_address = 198.51.100.77
user_host_port = 5070
registration_date_and_time = 1795007200
}
)";

const char kAttendantCfg[] = R"(section extension
{
description = Reception console
}

section sip
{
auth_name = reception
user_name = 100
password = Rc-7741
host = pbx.corp.example
port = 5060
transport = udp
display_name = Reception
register_expiry = 3600
registration_enabled = 1
}

section personal
{
full_name = Reception
email = reception@corp.example
}

section attendant
{
console_mode = 1
night_mode = 0
queue_size = 10
ring_timeout = 20
welcome_message = Welcome to the corporate exchange
night_destination = *
tos_profile = voice
}

section codecs
{
voice_codecs =
fax_codecs = T38
modem_codecs = G711A
}
)";

const char kSystemCfg[] = R"(section database
{
system_attendant = 100
}
)";

std::string SysMessagesCfg() {
  static const char* const kNames[] = {
      "System started",        "System shutdown",      "Configuration loaded",
      "Configuration error",   "Extension registered", "Extension unregistered",
      "Registration failed",   "Line busy",            "Line out of order",
      "Trunk up",              "Trunk down",           "FXO port ready",
      "FXO port failure",      "ISDN layer 1 up",      "ISDN layer 1 down",
      "ISDN layer 2 up",       "ISDN layer 2 down",    "E1/T1 alarm",
      "E1/T1 alarm cleared",   "Call records full"};
  Text t;
  int id = 0;
  for (const char* name : kNames) t.Section(std::to_string(id++)).Key("name", name).End();
  return t.str();
}

std::string AuthorizedPhonesCfg(int users) {
  Text t;
  for (int i = 0; i < 2; ++i) {
    t.Section(std::to_string(i + 1))
        .Key("phone_address", "00:04:13:2a:10:0" + std::to_string(i + 1))
        .Key("extension", users > i ? UserNumber(i) : std::string(kAttendant))
        .Key("phone_type", 2)
        .Key("line_count", 2 + 2 * i)
        .Key("user_name", i == 0 ? "Alice Moreau" : "Bruno Keller")
        .Key("permissions", i)
        .Key("login_time", 0)
        .End();
  }
  return t.str();
}

// Every second user sits on an FXS port: most on the local gateway 1,
// every eighth on a remote gateway, and a few on a local and a remote port
// at once.
std::string LineDb(int users) {
  Text bindings, ports;
  bindings.Comment("Which extension sits on which FXS port, and the ports' settings.");
  int nextLine[4] = {0, 1, 1, 1};
  auto bind = [&](int user, int gateway) {
    const int line = nextLine[gateway]++;
    const std::string endpoint = std::to_string(gateway) + "/" + std::to_string(line);
    bindings.Section("binding " + endpoint)
        .Key("extension", UserNumber(user))
        .Key("presentation_id", line)
        .End();
    if (gateway == 1) {
      ports.Section("fxs " + endpoint)
          .Key("disconnect_mode", 1)
          .Key("disconnect_min_ms", 300)
          .Key("disconnect_max_ms", 800)
          .Key("disconnect_delay_s", 5)
          .Key("caller_id_type", 1)
          .End();
    } else {
      ports.Section("fxs " + endpoint).Key("rtp_proxy", line % 2).Key("symmetric_rtp", 1).End();
    }
  };
  for (int user = 0; user < users; user += 2) {
    const int bound = user / 2;
    const int remote = 2 + (bound / 8) % 2;
    if (bound % 8 == 7) {
      bind(user, remote);
    } else {
      bind(user, 1);
      if (bound % 50 == 3) bind(user, remote);
    }
  }
  ports.Section("fxo 1/1").Key("number", "0301234500").End();
  ports.Section("fxo 1/2").Key("number", "0301234501").End();
  return bindings.str() + "\n" + ports.str();
}

bool Complete(const std::string& dir) { return fs::exists(dir + "/" + kMarker); }

void Generate(const std::string& dir, int users) {
  const std::string tel = dir + "/telephony/";
  fs::create_directories(tel + "regional");
  fs::create_directories(tel + "extensiondb/attendant");
  fs::create_directories(tel + "extensiondb/user");
  WriteFile(tel + "general.cfg", GeneralCfg(users));
  WriteFile(tel + "paths.cfg", kPathsCfg);
  WriteFile(tel + "gateways.cfg", kGatewaysCfg);
  WriteFile(tel + "fax.cfg", kFaxCfg);
  WriteFile(tel + "tos.cfg", kTosCfg);
  WriteFile(tel + "ringpatterns.cfg", kRingPatternsCfg);
  WriteFile(tel + "fxs.cfg", kFxsCfg);
  WriteFile(tel + "log_login.cfg", kLogLoginCfg);
  WriteFile(tel + "authorized_phones.cfg", AuthorizedPhonesCfg(users));
  WriteFile(tel + "sysmessages.cfg", SysMessagesCfg());
  WriteFile(tel + "dialplan.cfg", kDialplanCfg);
  WriteFile(tel + "externaluserdb", kExternalUserDb);
  // The agent locks the file while it may trim it; made here so a start-up
  // leaves the cached root exactly as generated.
  WriteFile(tel + "externaluserdb.lock", "");
  WriteFile(tel + "regional/tonetypes.cfg", kToneTypesCfg);
  WriteFile(tel + "extensiondb/system.cfg", kSystemCfg);
  WriteFile(tel + "extensiondb/attendant/100.cfg", kAttendantCfg);
  WriteFile(tel + "linedb", LineDb(users));
  for (int i = 0; i < users; ++i)
    WriteFile(tel + "extensiondb/user/" + UserNumber(i) + ".cfg", UserFileText(i, users));
  // Last: a root without the marker is an interrupted generation.
  WriteFile(dir + "/" + kMarker, std::to_string(users) + " users\n");
}

}  // namespace

std::string CacheFolder() {
  const char* dir = std::getenv("CMCFG_BENCH_CACHE");
  return dir != nullptr && *dir != '\0' ? std::string(dir) : std::string("/tmp/cmcfg-bench");
}

std::string UserNumber(int index) { return std::to_string(kFirstUser + index); }

std::vector<std::string> UserFiles(const std::string& root, int users) {
  std::vector<std::string> files;
  files.reserve(static_cast<size_t>(users));
  for (int i = 0; i < users; ++i)
    files.push_back(root + "telephony/extensiondb/user/" + UserNumber(i) + ".cfg");
  return files;
}

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

std::string UserRoot(int users) {
  if (users < 0) throw std::invalid_argument("negative user count");
  const std::string base = CacheFolder();
  const std::string dir = base + "/users-" + std::to_string(users) + "-v" +
                          std::to_string(kGeneratorVersion);
  if (Complete(dir)) return dir + "/";

  fs::create_directories(base);
  std::error_code ec;
  fs::remove_all(dir, ec);  // an interrupted generation
  // Written aside and renamed into place, so a concurrent run never sees a
  // half-written root.
  const std::string partial = dir + ".partial-" + std::to_string(::getpid());
  fs::remove_all(partial, ec);
  Generate(partial, users);
  fs::rename(partial, dir, ec);
  if (ec) {
    fs::remove_all(partial, ec);
    if (!Complete(dir)) throw std::runtime_error("cannot place the generated root " + dir);
  }
  return dir + "/";
}

}  // namespace bench_roots
