#ifndef CMCFG_PLATFORM_BLOCKS_GATEWAY_ACCESSOR_H_
#define CMCFG_PLATFORM_BLOCKS_GATEWAY_ACCESSOR_H_

#include <cstdint>
#include <string>

#include "platform/base/document.h"
#include "platform/blocks/blocks_accessor_base.h"

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
};

// The media gateways. One shared, reference-counted instance per process:
// with createIfMissing a missing or unreadable file gives an instance
// without gateways (never nullptr), without it nullptr. Every non-null
// GetInstance is paired with one CloseInstance.
class GatewayAccessor : public BlocksAccessorBase<GatewayBlock> {
 public:
  static constexpr const char* kFileName = "gateways.cfg";

  static GatewayAccessor* GetInstance(bool createIfMissing);
  static void CloseInstance();

 private:
  explicit GatewayAccessor(std::string path) : BlocksAccessorBase(std::move(path)) {}
  ~GatewayAccessor() override = default;
  friend struct BlocksAccessorInstance<GatewayAccessor>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_GATEWAY_ACCESSOR_H_
