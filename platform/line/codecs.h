#ifndef CMCFG_PLATFORM_LINE_CODECS_H_
#define CMCFG_PLATFORM_LINE_CODECS_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "cmcfg/codec_info.h"

// The DSP codec number of a codec name ("G711A", "G729a", ...), or -1 when
// the name is not a DSP codec. Exact, case-sensitive names.
int GetDspCodecByName(const std::string& name);
// RTP payload type of a DSP codec (0 for an unknown codec number).
uint16_t GetRtpCodecByDspCodec(int dspCodec);
// Sampling rate in Hz of a DSP codec (0 for an unknown codec number).
uint16_t GetSamplingRate(int dspCodec);

// One fax relay encoding of "fax.cfg".
struct FaxEncoding {
  std::string name;
  uint32_t values[11] = {};
};

// The fax encodings of "fax.cfg" (one section per encoding).
class EncodingManager {
 public:
  // profile: reserved, pass ""; path: the file; readNow: read it in the
  // constructor rather than on first use. A missing or bad file gives no
  // encodings.
  EncodingManager(const std::string& profile, const std::string& path, bool readNow);
  ~EncodingManager();
  EncodingManager(const EncodingManager&) = delete;
  EncodingManager& operator=(const EncodingManager&) = delete;

  // The encoding of that name, or nullptr. exact: case-sensitive match
  // (otherwise case is ignored).
  const FaxEncoding* GetFaxEncoding(const std::string& name, bool exact);

 private:
  struct Rep;
  std::unique_ptr<Rep> rep_;
};

#endif  // CMCFG_PLATFORM_LINE_CODECS_H_
