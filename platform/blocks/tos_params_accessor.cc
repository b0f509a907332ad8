#include "platform/blocks/tos_params_accessor.h"

#include "platform/base/field_table.h"
#include "platform/blocks/accessor_instance.h"

namespace {

// The keys of a block's section: read, written and published from here.
const cfg::Field<TosBlock> kTosBlockFields[] = {
    {"name", &TosBlock::name},
    // TOS bytes are quoted in hex (0xB8 is expedited forwarding).
    {"signaling_tos", &TosBlock::signalingTos, nullptr, true},
    {"media_tos", &TosBlock::mediaTos, nullptr, true},
};

}  // namespace

void TosBlock::Read(const cfg::Section& section) {
  cfg::ReadFields(section, kTosBlockFields, this);
}

void TosBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  cfg::WriteFields(*this, kTosBlockFields, &doc, &section);
}

cfg::KeyRules TosBlock::KeyRules() { return cfg::FieldRules(kTosBlockFields); }

template class SharedAccessor<TosParamsAccessor>;
