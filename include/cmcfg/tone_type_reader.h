#ifndef CMCFG_TONE_TYPE_READER_H_
#define CMCFG_TONE_TYPE_READER_H_

#include "cmcfg/export.h"
#include "cmcfg/tone_type.h"

namespace Configuration {
class MultiSectionFile;
}

// Reads the regional tone file ("telephony/regional/tonetypes.cfg" under the
// configuration root). Whatever the file does not give is taken from the
// tone's built-in default, so every load yields complete records. Stateless.
class CMCFG_EXPORT ToneTypeReader {
 public:
  ToneTypeReader() = default;
  ~ToneTypeReader() = default;

  // Fills tones[0..65], one per DeviceTone (the caller's array of
  // kDeviceToneCount records). No tone file: every tone its default.
  // Always true.
  bool Load(ToneType* tones);
  // Fills the record of one tone; the file is opened for this call. Always true.
  bool Load(DeviceTone tone, ToneType& type);
  // Fills `type` from the tone's section of an open tone file: each key
  // missing or empty keeps the default's value; "pattern" is taken as
  // given, else the cadence is built from tone_duration and
  // silence_duration. false (and `type` the default) without the section.
  bool LoadTone(Configuration::MultiSectionFile& file, DeviceTone tone, ToneType& type);
  // The built-in record of a tone (0..65; not checked). The table is built
  // on first use, safely from any thread, and lives as long as the process.
  const ToneType& GetDefaultTone(DeviceTone tone) const;
};

#endif  // CMCFG_TONE_TYPE_READER_H_
