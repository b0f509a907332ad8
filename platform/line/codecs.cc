#include "platform/line/codecs.h"

#include <strings.h>

#include <cstdlib>
#include <string_view>

#include "platform/base/document_store.h"
#include "platform/base/number_rules.h"

namespace {

struct CodecRow {
  const char* name;
  int dsp;
  uint16_t rtp;
  uint16_t rate;
};

// The DSP firmware's codecs. G.729a has its own DSP codec but shares the
// payload type of G.729. The G.726 rates and iLBC use dynamic payload types
// fixed here. G.722 samples at 16 kHz although its RTP clock runs at 8 kHz.
const CodecRow kCodecs[] = {
    {"G711U", 0, 0, 8000},     {"G711A", 1, 8, 8000},      {"G723", 2, 4, 8000},
    {"G729", 3, 18, 8000},     {"G729a", 4, 18, 8000},     {"G726-16", 5, 98, 8000},
    {"G726-24", 6, 99, 8000},  {"G726-32", 7, 100, 8000},  {"G726-40", 8, 101, 8000},
    {"iLBC", 9, 97, 8000},     {"G722", 10, 9, 16000},     {"L16", 11, 11, 44100},
};

const CodecRow* ByDsp(int dsp) {
  for (const CodecRow& row : kCodecs)
    if (row.dsp == dsp) return &row;
  return nullptr;
}

// The eleven values of a fax encoding, in the order they are handed on.
const char* const kFaxKeys[11] = {
    "version",          "max_bit_rate",    "rate_management", "max_buffer",
    "max_datagram",     "error_correction", "redundancy_low", "redundancy_high",
    "fill_bit_removal", "transcoding_mmr", "transcoding_jbig",
};


}  // namespace

int GetDspCodecByName(const std::string& name) {
  for (const CodecRow& row : kCodecs)
    if (name == row.name) return row.dsp;
  return -1;
}

uint16_t GetRtpCodecByDspCodec(int dspCodec) {
  const CodecRow* row = ByDsp(dspCodec);
  return row ? row->rtp : 0;
}

uint16_t GetSamplingRate(int dspCodec) {
  const CodecRow* row = ByDsp(dspCodec);
  return row ? row->rate : 0;
}

struct EncodingManager::Rep {
  std::string path;
  bool loaded = false;
  std::vector<FaxEncoding> encodings;

  void Load() {
    loaded = true;
    cfg::Document doc;
    cfg::LoadDocument(path, &doc);  // a missing or bad file has no encodings
    for (const cfg::Section& section : doc.sections()) {
      FaxEncoding encoding;
      encoding.name = std::string(section.name);
      for (int i = 0; i < 11; ++i) encoding.values[i] = cfg::CUnsignedOrZero(section.Get(kFaxKeys[i]));
      encodings.push_back(encoding);
    }
  }
};

EncodingManager::EncodingManager(const std::string& /*profile*/, const std::string& path,
                                 bool readNow)
    : rep_(new Rep) {
  rep_->path = path;
  if (readNow) rep_->Load();
}

EncodingManager::~EncodingManager() = default;

const FaxEncoding* EncodingManager::GetFaxEncoding(const std::string& name, bool exact) {
  if (!rep_->loaded) rep_->Load();
  for (const FaxEncoding& encoding : rep_->encodings) {
    bool same = exact ? encoding.name == name : strcasecmp(encoding.name.c_str(), name.c_str()) == 0;
    if (same) return &encoding;
  }
  return nullptr;
}
