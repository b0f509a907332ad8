#ifndef CMCFG_USR_DATA_H_
#define CMCFG_USR_DATA_H_

#include <cstdint>
#include <string>

#include "cmcfg/export.h"

struct ExtSipSettingsParams;

// A user's SIP registration data. The log prints it as
// userName@host:port.
class CMCFG_EXPORT UsrSipData {
 public:
  UsrSipData() = default;
  UsrSipData(const UsrSipData&) = default;
  UsrSipData& operator=(const UsrSipData&) = default;
  ~UsrSipData() = default;

  // Fills the record from the extension's SIP block: the eleven texts in
  // the block's order, except that the first two trade places (the block
  // keeps the authentication name first); enabled becomes 1.
  void Init(const ExtSipSettingsParams& block);

  std::string userName;    // SIP user name
  std::string authName;
  std::string password;    // substituted together with userName
  std::string host;
  std::string port;
  std::string proxy;
  std::string outboundProxy;
  std::string transport;
  std::string domain;
  std::string displayName;
  std::string contact;
  int32_t enabled = 1;
  int32_t registerExpiry = 0;
  int32_t registrationEnabled = 0;
  int32_t keepAlive = 0;
};

// A user: the extension number and its SIP data, with a backup of the SIP
// data taken before the first substitution. Copies are deep: each record
// owns a backup of its own.
class CMCFG_EXPORT UsrData {
 public:
  UsrData() = default;
  UsrData(const UsrData& other);
  UsrData& operator=(const UsrData& other);
  // Deletes the backup.
  ~UsrData();

  // Replaces the SIP user name and password, keeping the SIP data from
  // before the first substitution for RollbackSipData. 1 when replaced; 0
  // (nothing touched) when they already were those.
  int SubstituteSipData(const std::string& user, const std::string& credential);
  // Restores the SIP data from before the first substitution and drops the
  // backup; 1, or 0 (nothing touched) when there is none.
  int RollbackSipData();

  std::string name;         // the extension number: the record's key
  std::string displayName;  // from the personal data
  UsrSipData sip;
  UsrSipData* sipBackup = nullptr;  // owned
};

#endif  // CMCFG_USR_DATA_H_
