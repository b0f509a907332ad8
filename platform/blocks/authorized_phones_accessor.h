#ifndef CMCFG_PLATFORM_BLOCKS_AUTHORIZED_PHONES_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_AUTHORIZED_PHONES_ACCESSOR_H_

#include <cstdint>
#include <string>

#include "platform/base/document.h"
#include "platform/base/key_rules.h"
#include "platform/blocks/blocks_accessor_base.h"
#include "platform/blocks/shared_accessor.h"

// One authorised phone ("telephony/authorized_phones.cfg"): a phone that
// logs its user in automatically. The phone is known by its address and
// type. `name` is not stored: it mirrors phoneAddress when read.
struct AuthorizedPhoneBlock {
  unsigned long id = 0;
  std::string name;
  std::string phoneAddress;  // MAC or IP address of the phone
  std::string extension;     // extension logged in on it
  int32_t phoneType = 2;
  int32_t lineCount = 2;
  std::string userName;
  int32_t permissions = 0;
  int32_t loginTime = 0;  // time of the last login, seconds since 1970

  void Read(const cfg::Section& section);
  void Write(cfg::Document& doc, cfg::Section& section) const;
  // The keys Read takes and how, for checkers.
  static cfg::KeyRules KeyRules();
};

// The authorised phones. Shared instance and thread rule as
// GatewayAccessor: a phone saved while other threads hold the instance is
// saved under Lock.
class AuthorizedPhonesAccessor : public BlocksAccessorBase<AuthorizedPhoneBlock>,
                                 public SharedAccessor<AuthorizedPhonesAccessor> {
 public:
  static constexpr const char* kFileName = "authorized_phones.cfg";

 private:
  explicit AuthorizedPhonesAccessor(std::string path) : BlocksAccessorBase(std::move(path)) {}
  ~AuthorizedPhonesAccessor() override = default;
  friend class SharedAccessor<AuthorizedPhonesAccessor>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_AUTHORIZED_PHONES_ACCESSOR_H_
