#include "platform/blocks/tos_params_accessor.h"

#include "platform/blocks/accessor_instance.h"

void TosBlock::Read(const cfg::Section& section) {
  blocks::ReadKey(section, "name", &name);
  blocks::ReadKey(section, "signaling_tos", &signalingTos);
  blocks::ReadKey(section, "media_tos", &mediaTos);
}

void TosBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  blocks::WriteKey(doc, section, "name", name);
  // TOS bytes are read and quoted in hex (0xB8 is expedited forwarding).
  doc.Set(section, "signaling_tos", cfg::FormatHexByte(signalingTos));
  doc.Set(section, "media_tos", cfg::FormatHexByte(mediaTos));
}

template class SharedAccessor<TosParamsAccessor>;
