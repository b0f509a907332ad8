#include "platform/blocks/ring_pattern_params.h"

#include "platform/blocks/accessor_instance.h"

void RingPatternBlock::Read(const cfg::Section& section) {
  blocks::ReadKey(section, "name", &name);
  blocks::ReadKey(section, "cadence", &cadence);
}

void RingPatternBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  blocks::WriteKey(doc, section, "name", name);
  blocks::WriteKey(doc, section, "cadence", cadence);
}

template class SharedAccessor<RingPatternParams>;
