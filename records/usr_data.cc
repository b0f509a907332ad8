#include "cmcfg/usr_data.h"

#include "platform/extension/ext_params.h"

void UsrSipData::Init(const ExtSipSettingsParams& block) {
  // The block keeps the authentication name first; the record wants the
  // SIP user name first.
  userName = block.userName;
  authName = block.authName;
  password = block.password;
  host = block.host;
  port = block.port;
  proxy = block.proxy;
  outboundProxy = block.outboundProxy;
  transport = block.transport;
  domain = block.domain;
  displayName = block.displayName;
  contact = block.contact;
  enabled = 1;
  registerExpiry = block.registerExpiry;
  registrationEnabled = block.registrationEnabled;
  keepAlive = block.sipKeepAlive;
}

UsrData::UsrData(const UsrData& other)
    : name(other.name),
      displayName(other.displayName),
      sip(other.sip),
      sipBackup(other.sipBackup ? new UsrSipData(*other.sipBackup) : nullptr) {}

UsrData& UsrData::operator=(const UsrData& other) {
  if (this == &other) return *this;
  name = other.name;
  displayName = other.displayName;
  sip = other.sip;
  if (other.sipBackup == nullptr) {
    delete sipBackup;
    sipBackup = nullptr;
  } else if (sipBackup == nullptr) {
    sipBackup = new UsrSipData(*other.sipBackup);
  } else {
    *sipBackup = *other.sipBackup;
  }
  return *this;
}

UsrData::~UsrData() { delete sipBackup; }

int UsrData::SubstituteSipData(const std::string& user, const std::string& credential) {
  if (user == sip.userName && credential == sip.password) return 0;
  // Only the first substitution is backed up, so a rollback always returns
  // to the configured values.
  if (sipBackup == nullptr) sipBackup = new UsrSipData(sip);
  sip.userName = user;
  sip.password = credential;
  return 1;
}

int UsrData::RollbackSipData() {
  if (sipBackup == nullptr) return 0;
  sip = *sipBackup;
  delete sipBackup;
  sipBackup = nullptr;
  return 1;
}
