#include "platform/blocks/sys_message_accessor.h"

#include <climits>

#include "platform/base/config_root.h"
#include "platform/base/file_system.h"
#include "platform/blocks/block_sections.h"
#include "platform/blocks/shared_instance.h"

struct SysMessageAccessorInstance {
  // Sections named by a number up to INT_MAX with a "name" key are the
  // messages; a repeated number keeps its first section.
  static void ReadNames(const cfg::Document& doc, std::map<SysMessageID, std::string>* names) {
    for (const cfg::Section& section : doc.sections()) {
      unsigned long id = 0;
      const cfg::Entry* name = section.Find("name");
      if (name == nullptr || !blocks::ParseBlockId(section.name, &id) || id > INT_MAX) continue;
      names->emplace(static_cast<SysMessageID>(id), std::string(name->value));
    }
  }
  static SysMessageAccessor* Make(bool /*createIfMissing*/) {
    try {
      cfg::Document doc;
      if (!cfg::LoadDocument(cfg::TelephonyPath("sysmessages.cfg"), &doc).ok()) return nullptr;
      std::map<SysMessageID, std::string> names;
      ReadNames(doc, &names);
      SysMessageAccessor* messages = new SysMessageAccessor();
      messages->names_.swap(names);
      return messages;
    } catch (...) {  // out of memory: no instance
      return nullptr;
    }
  }
  static void Destroy(SysMessageAccessor* messages) { delete messages; }
  static SharedInstance<SysMessageAccessor>& Shared() {
    static SharedInstance<SysMessageAccessor> shared(&Make, &Destroy);
    return shared;
  }
};

SysMessageAccessor* SysMessageAccessor::GetInstance() {
  return SysMessageAccessorInstance::Shared().Acquire(false);
}

void SysMessageAccessor::CloseInstance() { SysMessageAccessorInstance::Shared().Release(); }

bool SysMessageAccessor::GetSysMessageName(SysMessageID id, std::string& name) const {
  auto it = names_.find(id);
  if (it == names_.end()) return false;
  name = it->second;
  return true;
}
