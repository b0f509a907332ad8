#ifndef CMCFG_UPDATE_TYPE_CODES_H_
#define CMCFG_UPDATE_TYPE_CODES_H_

// Codes with which the configuration front end tells the call manager what
// changed.
struct UpdateTypeCodes {
  // UpdateSupServices: the one service to re-read (0x101B + k selects
  // service bit k); any other value, kUpdateAll among them, every service.
  enum UpdateType {
    kUpdateAll = 0,
    kUpdateClir = 0x101B,
    kUpdateIncomingBlocking = 0x101C,
    kUpdateOutgoingBlocking = 0x101D,
    kUpdateDistinctiveRinging = 0x101E,
    kUpdateHunting = 0x101F,
    kUpdateManyExtRinging = 0x1020,
    kUpdateForwardUnconditional = 0x1021,
    kUpdateForwardNoAnswer = 0x1022,
    kUpdateForwardBusy = 0x1023,
    kUpdateIntercom = 0x1024,
  };
  // UpdateContact: re-read (add or change) or erase the listed contacts.
  enum UpdateTypeMode {
    kModeAdd = 0,
    kModeChange = 1,
    kModeErase = 2,
  };
};

#endif  // CMCFG_UPDATE_TYPE_CODES_H_
