#include "platform/blocks/gateway_accessor.h"

#include "platform/blocks/accessor_instance.h"

void GatewayBlock::Read(const cfg::Section& section) {
  blocks::ReadKey(section, "name", &name);
  blocks::ReadKey(section, "type", &type);
  blocks::ReadKey(section, "address", &address);
}

void GatewayBlock::Write(cfg::Document& doc, cfg::Section& section) const {
  blocks::WriteKey(doc, section, "name", name);
  blocks::WriteKey(doc, section, "type", type);
  blocks::WriteKey(doc, section, "address", address);
}

template class SharedAccessor<GatewayAccessor>;
