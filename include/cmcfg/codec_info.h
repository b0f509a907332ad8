#ifndef CMCFG_CODEC_INFO_H_
#define CMCFG_CODEC_INFO_H_

#include <cstdint>
#include <string>

// One codec offered in media negotiation, as the codec library describes it.
// Plain values, like every record of this header.
struct CodecInfo {
  uint16_t rtpCodec = 0;      // RTP payload type
  uint16_t dspCodec = 0;      // codec number of the DSP firmware
  int32_t packetTime = 20;    // milliseconds of audio per packet
  uint8_t flags = 0;          // 1 marks modem and fax-transparent entries
  uint16_t samplingRate = 0;  // Hz
  std::string name;
};

// One fax relay encoding: eleven values taken whole from "fax.cfg".
struct FaxCodecInfo {
  uint32_t values[11] = {};
};

#endif  // CMCFG_CODEC_INFO_H_
