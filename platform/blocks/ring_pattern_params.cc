#include "platform/blocks/ring_pattern_params.h"

#include "platform/base/field_table.h"
#include "platform/blocks/accessor_instance.h"

namespace {

// The keys of a block's section: read, written and published from here.
const cfg::Field<RingPatternBlock> kRingPatternBlockFields[] = {
    {"name", &RingPatternBlock::name},
    {"cadence", &RingPatternBlock::cadence},
};

}  // namespace

void RingPatternBlock::Read(const cfg::Section& section) {
  cfg::ReadFields(section, kRingPatternBlockFields, this);
}

void RingPatternBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  cfg::WriteFields(*this, kRingPatternBlockFields, &doc, &section);
}

cfg::KeyRules RingPatternBlock::KeyRules() { return cfg::FieldRules(kRingPatternBlockFields); }

template class SharedAccessor<RingPatternParams>;
