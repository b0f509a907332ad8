#ifndef CMCFG_PLATFORM_BLOCKS_ACCESSOR_INSTANCE_H_
#define CMCFG_PLATFORM_BLOCKS_ACCESSOR_INSTANCE_H_

#include <memory>

#include "platform/base/config_root.h"
#include "platform/blocks/shared_accessor.h"

// The definitions of SharedAccessor. Include only from an accessor's own
// .cc file, which then instantiates them once:
//   template class SharedAccessor<GatewayAccessor>;

template <typename Accessor>
Accessor* SharedAccessor<Accessor>::Make(bool createIfMissing) {
  try {
    std::unique_ptr<Accessor, void (*)(Accessor*)> accessor(
        new Accessor(cfg::TelephonyPath(Accessor::kFileName)), &Destroy);
    if (accessor->LoadStatus().ok() || createIfMissing) return accessor.release();
  } catch (...) {  // out of memory: no instance
  }
  return nullptr;
}

template <typename Accessor>
void SharedAccessor<Accessor>::Destroy(Accessor* accessor) {
  delete accessor;
}

template <typename Accessor>
SharedInstance<Accessor>& SharedAccessor<Accessor>::Shared() {
  static SharedInstance<Accessor> shared(&Make, &Destroy);
  return shared;
}

template <typename Accessor>
ThreadMutex& SharedAccessor<Accessor>::InstanceMutex() {
  return Shared().values_mutex();
}

template <typename Accessor>
Accessor* SharedAccessor<Accessor>::GetInstance(bool createIfMissing) {
  return Shared().Acquire(createIfMissing);
}

template <typename Accessor>
void SharedAccessor<Accessor>::CloseInstance() {
  Shared().Release();
}

#endif  // CMCFG_PLATFORM_BLOCKS_ACCESSOR_INSTANCE_H_
