#include "platform/blocks/sys_message_accessor.h"

#include <climits>

#include "platform/base/document_store.h"
#include "platform/blocks/accessor_instance.h"
#include "platform/blocks/block_sections.h"

cfg::Status SysMessageAccessor::LoadStatus() {
  cfg::Document doc;
  cfg::Status status = cfg::LoadDocument(path_, &doc);
  if (!status.ok()) return status;
  // Sections named by a number up to INT_MAX with a "name" key are the
  // messages; a repeated number keeps its first section.
  for (const cfg::Section& section : doc.sections()) {
    unsigned long id = 0;
    const cfg::Entry* name = section.Find("name");
    if (name == nullptr || !blocks::ParseBlockId(section.name, &id) || id > INT_MAX) continue;
    names_.emplace(static_cast<SysMessageID>(id), std::string(name->value));
  }
  return status;
}

bool SysMessageAccessor::GetSysMessageName(SysMessageID id, std::string& name) const {
  auto it = names_.find(id);
  if (it == names_.end()) return false;
  name = it->second;
  return true;
}

template class SharedAccessor<SysMessageAccessor>;
