#include "platform/blocks/gateway_accessor.h"

#include "platform/base/field_table.h"
#include "platform/blocks/accessor_instance.h"

namespace {

// The keys of a block's section: read, written and published from here.
const cfg::Field<GatewayBlock> kGatewayBlockFields[] = {
    {"name", &GatewayBlock::name},
    {"type", &GatewayBlock::type},
    {"address", &GatewayBlock::address},
};

}  // namespace

void GatewayBlock::Read(const cfg::Section& section) {
  cfg::ReadFields(section, kGatewayBlockFields, this);
}

void GatewayBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  cfg::WriteFields(*this, kGatewayBlockFields, &doc, &section);
}

cfg::KeyRules GatewayBlock::KeyRules() { return cfg::FieldRules(kGatewayBlockFields); }

template class SharedAccessor<GatewayAccessor>;
