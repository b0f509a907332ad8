#ifndef CMCFG_PLATFORM_BLOCKS_TOS_PARAMS_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_TOS_PARAMS_ACCESSOR_H_

#include <cstdint>
#include <string>

#include "platform/base/document.h"
#include "platform/base/key_rules.h"
#include "platform/blocks/blocks_accessor_base.h"
#include "platform/blocks/shared_accessor.h"

// One TOS profile ("telephony/tos.cfg"): the IP type-of-service bytes
// marked on signalling and on media packets. Lines name the profile.
struct TosBlock {
  unsigned long id = 0;
  std::string name;  // the profile name
  uint8_t signalingTos = 0;
  uint8_t mediaTos = 0;

  void Read(const cfg::Section& section);
  void Write(cfg::Document& doc, cfg::Section& section) const;
  // The keys Read takes and how, for checkers.
  static cfg::KeyRules KeyRules();
};

// The TOS profiles, looked up with GetBlockByName. Shared instance and
// thread rule as GatewayAccessor.
class TosParamsAccessor : public BlocksAccessorBase<TosBlock>,
                          public SharedAccessor<TosParamsAccessor> {
 public:
  static constexpr const char* kFileName = "tos.cfg";

 private:
  explicit TosParamsAccessor(std::string path) : BlocksAccessorBase(std::move(path)) {}
  ~TosParamsAccessor() override = default;
  friend class SharedAccessor<TosParamsAccessor>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_TOS_PARAMS_ACCESSOR_H_
