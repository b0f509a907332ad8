#include "cmcfg/tone_type_reader.h"

#include <string>

#include "platform/base/config_root.h"
#include "platform/base/file_utility.h"
#include "platform/base/multi_section_file.h"
#include "platform/base/smart_buffer.h"
#include "tones/tone_key_rules.h"
#include "tones/tone_values.h"

namespace {

std::string ToneFilePath() { return cfg::ConfigRoot() + "telephony/regional/tonetypes.cfg"; }

// Opened read-only and shared: the tone file is never written here.
Configuration::MultiSectionFile OpenToneFile(const std::string& path) {
  return Configuration::MultiSectionFile(path, false, true, false, "section", "{\n", "}\n", "=",
                                         "#", nullptr);
}

// Reads `key` into the buffer; true when it gave a non-empty text.
bool ReadKey(Configuration::MultiSectionFile& file, const char* key, SmartBuffer& buffer) {
  file.GetSectionEntry(key, buffer.GetData(), buffer.GetSize());
  return buffer.GetData()[0] != '\0';
}

// -1 when the duration is missing or empty.
int ReadDuration(Configuration::MultiSectionFile& file, const char* key, SmartBuffer& buffer) {
  if (!ReadKey(file, key, buffer)) return -1;
  return tones::ReadNumber<uint16_t>(buffer.GetData());
}

}  // namespace

bool ToneTypeReader::Load(ToneType* tones) {
  const std::string path = ToneFilePath();
  if (!FileUtility::IsFileExist(path.c_str())) {
    for (int t = 0; t < kDeviceToneCount; ++t) tones[t] = GetDefaultTone(static_cast<DeviceTone>(t));
    return true;
  }
  Configuration::MultiSectionFile file = OpenToneFile(path);
  for (int t = 0; t < kDeviceToneCount; ++t) LoadTone(file, static_cast<DeviceTone>(t), tones[t]);
  return true;
}

bool ToneTypeReader::Load(DeviceTone tone, ToneType& type) {
  const std::string path = ToneFilePath();
  if (!FileUtility::IsFileExist(path.c_str())) {
    type = GetDefaultTone(tone);
    return true;
  }
  Configuration::MultiSectionFile file = OpenToneFile(path);
  LoadTone(file, tone, type);
  return true;
}

bool ToneTypeReader::LoadTone(Configuration::MultiSectionFile& file, DeviceTone tone,
                              ToneType& type) {
  const ToneType& def = GetDefaultTone(tone);
  if (!file.GotoSection(DeviceToneNames[tone])) {
    type = def;
    return false;
  }
  SmartBuffer buffer;
  tones::ReadToneFields(
      [&](const char* key) {
        file.GetSectionEntry(key, buffer.GetData(), buffer.GetSize());
        return buffer.GetData();
      },
      def, &type);

  if (file.GetSectionEntry("pattern", buffer.GetData(), buffer.GetSize())) {
    type.pattern = buffer.GetData()[0] != '\0' ? std::string(buffer.GetData()) : def.pattern;
    return true;
  }
  const int tone_ms = ReadDuration(file, "tone_duration", buffer);
  const int silence_ms = ReadDuration(file, "silence_duration", buffer);
  if (tone_ms != -1 && silence_ms != -1) {
    if (type.mode != 1) {
      type.pattern = std::to_string(tone_ms) + "," + std::to_string(silence_ms);
    } else if (silence_ms != 0) {
      // Mode 1 counts silence first, after a leading 0.
      type.pattern = "0," + std::to_string(silence_ms) + "," + std::to_string(tone_ms);
    } else {
      type.pattern = std::to_string(tone_ms);
    }
  } else if (buffer.GetData()[0] != '\0') {
    // Only the silence was given: its text stands for the whole cadence.
    type.pattern = buffer.GetData();
  } else {
    type.pattern = def.pattern;
  }
  return true;
}
