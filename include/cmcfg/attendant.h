#ifndef CMCFG_ATTENDANT_H_
#define CMCFG_ATTENDANT_H_

#include <cstdint>
#include <list>
#include <string>

#include "cmcfg/codec_info.h"
#include "cmcfg/export.h"
#include "cmcfg/line_records.h"
#include "cmcfg/usr_data.h"

class CHAttendant;
struct AttGeneralParams;
struct ExtPersonalInfoParams;

// An attendant console: the user data and the console's settings. A plain
// value; the agent owns the records of its attendant table. consoleContext
// belongs to the call manager: copied with the record, never freed here.
class CMCFG_EXPORT Attendant : public UsrData {
 public:
  Attendant() = default;
  // Copies the general, personal and SIP data of the stored attendant
  // (loading those blocks into it); a block it lacks leaves the defaults.
  explicit Attendant(const CHAttendant& stored);
  Attendant(const Attendant&) = default;
  Attendant& operator=(const Attendant&) = default;
  ~Attendant() = default;

  // Takes the console and night modes, queue size, ring timeout, welcome
  // message and night destination, and the TOS bytes of the named profile
  // when one is named (an unknown profile keeps the bytes).
  void InitGenData(const AttGeneralParams& params);
  // Takes the full name as displayName, and the e-mail address.
  void InitPersonalData(const ExtPersonalInfoParams& params);

  int32_t consoleMode = 0;
  int32_t nightMode = 0;
  int32_t codecOption = 0;
  std::list<CodecInfo> voiceCodecs;
  std::list<FaxCodecInfo> faxCodecs;
  std::list<CodecInfo> faxTransparentCodecs;
  std::list<CodecInfo> modemCodecs;
  std::string welcomeMessage;
  std::string nightDestination;
  std::string email;
  WatchSettings watch;
  TosSettings tos;
  void* consoleContext = nullptr;  // the call manager's
  int32_t enabled = 1;
  int32_t queueSize = 15;
  int32_t ringTimeout = 5;
  int32_t announce = 1;
  int32_t counters[8] = {};
  int32_t maxQueue = 15;
};

#endif  // CMCFG_ATTENDANT_H_
