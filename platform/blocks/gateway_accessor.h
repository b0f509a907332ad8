#ifndef CMCFG_PLATFORM_BLOCKS_GATEWAY_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_GATEWAY_ACCESSOR_H_

#include <cstdint>
#include <string>

#include "platform/base/document.h"
#include "platform/base/key_rules.h"
#include "platform/blocks/blocks_accessor_base.h"
#include "platform/blocks/shared_accessor.h"

// One media gateway ("telephony/gateways.cfg"); its id is the gateway id
// that line bindings refer to.
struct GatewayBlock {
  static constexpr int32_t kRemoteMediaGateway = 2;

  unsigned long id = 0;
  std::string name;
  int32_t type = 0;     // kRemoteMediaGateway: FXS ports reached over IP; else local
  std::string address;  // host or IP address of a remote gateway

  bool IsRemote() const { return type == kRemoteMediaGateway; }
  void Read(const cfg::Section& section);
  void Write(cfg::Document& doc, cfg::Section& section) const;
  // The keys Read takes and how, for checkers.
  static cfg::KeyRules KeyRules();
};

// The media gateways. One shared, reference-counted instance per process
// (SharedAccessor): with createIfMissing a missing or unreadable file gives
// an instance without gateways (never nullptr), without it nullptr.
//
// Threads: every holder sees the same object. The rule is that of
// SharedAccessor: a Load, a write (InsertBlock, SaveBlock,
// DeleteBlock, a block changed in place) and any use of blocks that another
// thread may reload or change meanwhile run under Lock, held for as long as
// the block pointers are used (a Load deletes the blocks it replaces).
// Without other threads (the agent's start-up) no lock is needed.
class GatewayAccessor : public BlocksAccessorBase<GatewayBlock>,
                        public SharedAccessor<GatewayAccessor> {
 public:
  static constexpr const char* kFileName = "gateways.cfg";

 private:
  explicit GatewayAccessor(std::string path) : BlocksAccessorBase(std::move(path)) {}
  ~GatewayAccessor() override = default;
  friend class SharedAccessor<GatewayAccessor>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_GATEWAY_ACCESSOR_H_
