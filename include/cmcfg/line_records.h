#ifndef CMCFG_LINE_RECORDS_H_
#define CMCFG_LINE_RECORDS_H_

#include <cstdint>
#include <list>
#include <string>
#include <utility>

#include "cmcfg/codec_info.h"
#include "cmcfg/export.h"
#include "cmcfg/sup_service_records.h"
#include "cmcfg/types.h"

struct ExtPersonalInfoParams;
struct ExtServicesParams;

// TOS marking of signalling and media. The records of this header are
// plain values; the lists are owned by the record that holds them.
struct CMCFG_EXPORT TosSettings {
  // Takes both bytes of the named TOS profile, read from the TOS settings
  // for this call; an unknown profile (or no TOS configuration) leaves the
  // record as it was.
  TosSettings& operator=(const std::string& profile);
  uint8_t signaling = 0;
  uint8_t media = 0;
};

// Disconnect supervision of a local FXS port.
struct CMCFG_EXPORT FxsDisconnectData {
  int32_t values[4] = {0, 0, 0, 5};
};

// Binding to an FXS port of a remote media gateway.
struct CMCFG_EXPORT RemoteData {
  // Unbound: both ids INACTIVE_PARTY, the rest zero.
  RemoteData();
  // Takes only the personal value (the remote-access setting).
  RemoteData& operator=(const ExtPersonalInfoParams& params);
  // Back to the unbound record of the constructor.
  void Reset();

  int32_t isRemote = 0;
  int32_t personalValue = 0;
  int32_t rtpProxy = 0;
  int32_t symmetricRtp = 0;
  uint32_t lineId;
  uint32_t gatewayId;
};

// Fax settings of an extension.
struct CMCFG_EXPORT FaxData {
  // Takes the five fax values and the fax profile; the lists stay.
  FaxData& operator=(const ExtServicesParams& params);
  // Either fax mode set.
  bool IsFaxOn() const { return faxModeA != 0 || faxModeB != 0; }
  // Whether to listen for fax tones on a call. Not on the call side: fax
  // on. On the call side the configured forcing or `force` say yes even
  // with fax off; otherwise fax on and tone detection enabled.
  bool IsStartFaxToneDetection(bool callSide, bool force) const;

  std::list<FaxCodecInfo> faxCodecs;         // fax relay
  std::list<CodecInfo> faxTransparentCodecs;  // fax in the voice band
  int32_t faxModeA = 0;
  int32_t faxModeB = 0;
  int32_t faxParam3 = 0;
  int32_t toneDetectionEnabled = 0;
  int32_t toneDetectionForced = 0;
  std::string faxProfile;
};

// Modem settings of an extension.
struct CMCFG_EXPORT ModemData {
  // Takes the modem mode; the codec list stays.
  ModemData& operator=(const ExtServicesParams& params);
  std::list<CodecInfo> modemCodecs;
  int32_t modemMode = 0;
};

struct CMCFG_EXPORT WatchSettings {
  // Zeroes the value.
  void Reset() { value = 0; }
  uint16_t value = 0;
};

// Everything the call manager needs about one extension's line.
struct CMCFG_EXPORT LineSettings {
  // Local port unbound (both ids INACTIVE_PARTY), remote port unbound.
  LineSettings();
  // Unbinds the local port and sets lineFlag back to 1 (keeping codecs,
  // TOS, fax, modem and the remote binding); the call queue is reset too
  // unless keepQueue.
  void Clear(bool keepQueue);
  // Clear, and unbind the remote port as well.
  void Reset(bool keepQueue);

  std::list<CodecInfo> voiceCodecs;
  uint32_t lineId;
  uint32_t gatewayId;
  uint32_t presentationId = 0;
  TosSettings tos;
  FxsDisconnectData disconnect;
  CallQueueData callQueue;
  RemoteData remote;
  FaxData fax;
  ModemData modem;
  int32_t fxsExtra = 0;
  int32_t codecOption = 0;
  int32_t lineFlag = 1;
};

// FXOSettings, ISDNSettings, CASSettings: the PSTN channels of a trunk
// extension, by kind of trunk.
struct CMCFG_EXPORT FXOSettings {
  std::list<unsigned short> channels;
};

struct CMCFG_EXPORT ISDNSettings {
  std::list<unsigned short> channels;
};

struct CMCFG_EXPORT CASSettings {
  // Per E1/T1 span, its time slots.
  std::list<std::pair<unsigned short, std::list<unsigned short>>> spans;
};

// A media description carried for the call manager.
struct CMCFG_EXPORT MediaParams {
  // Empties the lists and the address.
  ~MediaParams();
  int32_t direction = 0;
  int32_t packetTime = 20;
  std::list<CodecInfo> codecs;
  std::list<FaxCodecInfo> faxCodecs;
  int32_t rtpPort = 0;
  int32_t rtcpPort = 0;
  std::string address;
};

#endif  // CMCFG_LINE_RECORDS_H_
