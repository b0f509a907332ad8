#ifndef CMCFG_PLATFORM_BLOCKS_RING_PATTERN_PARAMS_H_
#define CMCFG_PLATFORM_BLOCKS_RING_PATTERN_PARAMS_H_

#include <string>

#include "platform/base/key_rules.h"
#include <vector>

#include "platform/base/document.h"
#include "platform/blocks/blocks_accessor_base.h"
#include "platform/blocks/shared_accessor.h"

// One named ring pattern ("telephony/ringpatterns.cfg"), chosen by name for
// distinctive ringing.
struct RingPatternBlock {
  unsigned long id = 0;
  std::string name;
  std::vector<unsigned long> cadence;  // ms, ring and pause alternately

  void Read(const cfg::Section& section);
  void Write(cfg::Document& doc, cfg::Section& section) const;
  // The keys Read takes and how, for checkers.
  static cfg::KeyRules KeyRules();
};

// The named ring patterns. Shared instance and thread rule as
// GatewayAccessor.
class RingPatternParams : public BlocksAccessorBase<RingPatternBlock>,
                          public SharedAccessor<RingPatternParams> {
 public:
  static constexpr const char* kFileName = "ringpatterns.cfg";

 private:
  explicit RingPatternParams(std::string path) : BlocksAccessorBase(std::move(path)) {}
  ~RingPatternParams() override = default;
  friend class SharedAccessor<RingPatternParams>;
};

#endif  // CMCFG_PLATFORM_BLOCKS_RING_PATTERN_PARAMS_H_
