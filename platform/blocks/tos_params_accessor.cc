#include "platform/blocks/tos_params_accessor.h"

#include "platform/blocks/blocks_instance.h"

void TosBlock::Read(const cfg::Section& section) {
  blocks::ReadKey(section, "name", &name);
  blocks::ReadKey(section, "signaling_tos", &signalingTos);
  blocks::ReadKey(section, "media_tos", &mediaTos);
}

void TosBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  blocks::WriteKey(doc, section, "name", name);
  // TOS bytes are read and quoted in hex (0xB8 is expedited forwarding).
  doc.Set(section, "signaling_tos", blocks::FormatHexByte(signalingTos));
  doc.Set(section, "media_tos", blocks::FormatHexByte(mediaTos));
}

ThreadMutex& TosParamsAccessor::InstanceMutex() {
  return BlocksAccessorInstance<TosParamsAccessor>::Shared().values_mutex();
}

TosParamsAccessor* TosParamsAccessor::GetInstance(bool createIfMissing) {
  return BlocksAccessorInstance<TosParamsAccessor>::Shared().Acquire(createIfMissing);
}

void TosParamsAccessor::CloseInstance() {
  BlocksAccessorInstance<TosParamsAccessor>::Shared().Release();
}
