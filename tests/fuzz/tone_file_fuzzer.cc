// The regional tone reader over a fuzzed telephony/regional/tonetypes.cfg.
#include <string>
#include <string_view>

#include "cmcfg/tone_type_reader.h"
#include "platform/base/document.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

// Values are read through a 4096-byte buffer as C strings.
std::string AsRead(std::string_view value) {
  value = value.substr(0, value.find('\0'));
  return std::string(value.substr(0, 4095));
}

bool Same(const ToneType& a, const ToneType& b) {
  return a.pattern == b.pattern && a.mode == b.mode && a.frequency_1 == b.frequency_1 &&
         a.frequency_2 == b.frequency_2 && a.tone_level_1 == b.tone_level_1 &&
         a.tone_level_2 == b.tone_level_2 && a.is_play_wav_on == b.is_play_wav_on;
}

bool DigitsAndCommas(const std::string& text) {
  return text.find_first_not_of("0123456789,") == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_support::Root({"telephony/regional"});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text = fuzz_support::AsText(data, size);
  fuzz_support::Root().Write("telephony/regional/tonetypes.cfg", text);

  ToneTypeReader reader;
  static ToneType tones[kDeviceToneCount];
  FUZZ_CHECK(reader.Load(tones));

  // What the reader is given, parsed the same way, to check the documented
  // rules tone by tone.
  const cfg::Document doc = cfg::Document::Parse(std::string(text));
  for (int t = 0; t < kDeviceToneCount; ++t) {
    const DeviceTone tone = static_cast<DeviceTone>(t);
    const ToneType& got = tones[t];
    const ToneType& def = reader.GetDefaultTone(tone);
    FUZZ_CHECK(!got.pattern.empty());
    const cfg::Section* section = doc.Find(DeviceToneNames[t]);
    if (section == nullptr) {
      FUZZ_CHECK(Same(got, def));
      continue;
    }
    if (const cfg::Entry* pattern = section->Find("pattern")) {
      const std::string written = AsRead(pattern->value);
      FUZZ_CHECK(got.pattern == (written.empty() ? def.pattern : written));
    } else if (!AsRead(section->Get("tone_duration")).empty() &&
               !AsRead(section->Get("silence_duration")).empty()) {
      // Composed from two numbers.
      FUZZ_CHECK(DigitsAndCommas(got.pattern));
    }
    // A key missing or empty keeps the built-in value.
    if (AsRead(section->Get("frequency_2")).empty()) FUZZ_CHECK(got.frequency_2 == def.frequency_2);
    if (AsRead(section->Get("tone_level_2")).empty()) FUZZ_CHECK(got.tone_level_2 == def.tone_level_2);
    if (AsRead(section->Get("mode")).empty()) FUZZ_CHECK(got.mode == def.mode);
    if (AsRead(section->Get("is_play_wav_on")).empty())
      FUZZ_CHECK(got.is_play_wav_on == def.is_play_wav_on);
  }

  // One tone read on its own is the same as in the whole table.
  const DeviceTone one = static_cast<DeviceTone>(size % kDeviceToneCount);
  ToneType single;
  FUZZ_CHECK(reader.Load(one, single));
  FUZZ_CHECK(Same(single, tones[one]));
  return 0;
}
