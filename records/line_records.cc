#include "cmcfg/line_records.h"

#include "platform/blocks/tos_params_accessor.h"
#include "platform/extension/ext_params.h"

TosSettings& TosSettings::operator=(const std::string& profile) {
  TosParamsAccessor* accessor = TosParamsAccessor::GetInstance(true);
  if (accessor == nullptr) return *this;
  if (const TosBlock* block = accessor->GetBlockByName(profile)) {
    signaling = block->signalingTos;
    media = block->mediaTos;
  }
  TosParamsAccessor::CloseInstance();
  return *this;
}

RemoteData::RemoteData() : lineId(INACTIVE_PARTY), gatewayId(INACTIVE_PARTY) {}

RemoteData& RemoteData::operator=(const ExtPersonalInfoParams& params) {
  personalValue = params.remoteAccess;
  return *this;
}

void RemoteData::Reset() { *this = RemoteData(); }

FaxData& FaxData::operator=(const ExtServicesParams& params) {
  faxModeA = params.faxModeA;
  faxModeB = params.faxModeB;
  faxParam3 = params.faxParam3;
  toneDetectionEnabled = params.faxToneDetection;
  toneDetectionForced = params.faxToneForced;
  faxProfile = params.faxProfile;
  return *this;
}

bool FaxData::IsStartFaxToneDetection(bool callSide, bool force) const {
  bool on = IsFaxOn();
  if (!callSide) return on;
  // Forcing wins even with fax off.
  if (toneDetectionForced != 0) return true;
  if (force) return true;
  return on && toneDetectionEnabled != 0;
}

ModemData& ModemData::operator=(const ExtServicesParams& params) {
  modemMode = params.modemMode;
  return *this;
}

LineSettings::LineSettings() : lineId(INACTIVE_PARTY), gatewayId(INACTIVE_PARTY) {}

void LineSettings::Clear(bool keepQueue) {
  // Only the local binding goes: another extension took the port, but this
  // one keeps its codecs, fax, TOS and remote binding.
  lineId = INACTIVE_PARTY;
  gatewayId = INACTIVE_PARTY;
  lineFlag = 1;
  if (!keepQueue) callQueue.Reset();
}

void LineSettings::Reset(bool keepQueue) {
  Clear(keepQueue);
  remote.Reset();
}

MediaParams::~MediaParams() {
  address.clear();
  faxCodecs.clear();
  codecs.clear();
}
