#ifndef CMCFG_PLATFORM_BLOCKS_BLOCKS_INSTANCE_H_
#define CMCFG_PLATFORM_BLOCKS_BLOCKS_INSTANCE_H_

#include "platform/base/config_root.h"
#include "platform/blocks/shared_instance.h"

// The shared instance of a block accessor over root + "telephony/" +
// Accessor::kFileName. With createIfMissing a missing or unreadable file
// gives an accessor without blocks; without it, nullptr. Out of memory gives
// nullptr either way. Accessor befriends this struct for its private
// constructor and destructor; use it only from the accessor's own .cc file
// so that there is one instance per process.
template <typename Accessor>
struct BlocksAccessorInstance {
  static Accessor* Make(bool createIfMissing) {
    Accessor* accessor = nullptr;
    try {
      accessor = new Accessor(cfg::TelephonyPath(Accessor::kFileName));
      if (accessor->LoadStatus().ok() || createIfMissing) return accessor;
    } catch (...) {  // out of memory: no instance
    }
    delete accessor;
    return nullptr;
  }
  static void Destroy(Accessor* accessor) { delete accessor; }
  static SharedInstance<Accessor>& Shared() {
    static SharedInstance<Accessor> shared(&Make, &Destroy);
    return shared;
  }
};

#endif  // CMCFG_PLATFORM_BLOCKS_BLOCKS_INSTANCE_H_
