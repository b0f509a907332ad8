// The system-wide files of a generated root: settings, gateways, tones,
// the attendant and the line database.
#include <string>

#include "bench/generated_text.h"
#include "bench/root_generator.h"

namespace bench_roots {
namespace {

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

}  // namespace

void WriteSystemFiles(const std::string& tel, int users) {
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
  WriteFile(tel + "regional/tonetypes.cfg", kToneTypesCfg);
  WriteFile(tel + "extensiondb/system.cfg", kSystemCfg);
  WriteFile(tel + "extensiondb/attendant/100.cfg", kAttendantCfg);
  WriteFile(tel + "linedb", LineDb(users));
}

}  // namespace bench_roots
