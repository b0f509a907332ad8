#include "cmcfg/sup_service_records.h"
#include "platform/extension/ext_params.h"

void CallQueueData::Reset() {
  reserved1 = 0;
  reserved2 = 0;
  size = 0;
  mode = 0;
  pending = 0;
  resetOnly = 0;
  announcement = 0;
  flags = 0;
}

void CallQueueData::UpdateFlag(unsigned char mask, bool on) {
  if (on) {
    flags |= mask;
  } else {
    flags &= static_cast<unsigned char>(~mask);
  }
}

CallQueueData& CallQueueData::operator=(const ExtPersonalInfoParams& params) {
  if (!params.queueEnabled || params.queueSize == 0) {
    Reset();
    return *this;
  }
  size = params.queueSize > 255 ? 255 : params.queueSize;
  mode = params.queueMode;
  flags = 0;
  if (params.queueDisabled == 0) flags |= kAccepting;
  if (params.queueOverflow) flags |= kOverflow;
  if (!params.announcementEnabled || params.announcementText.empty() ||
      params.announcementValue == 0) {
    announcement = 0;
    return *this;
  }
  announcement = params.announcementValue;
  announcementText = params.announcementText;
  announcementRepeat = params.announcementRepeat;
  return *this;
}
