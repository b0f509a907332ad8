#include "tools/check_linedb.h"

#include <map>
#include <set>
#include <string>
#include <utility>

#include "platform/blocks/block_sections.h"
#include "platform/line/line_manager.h"

namespace cmcfg_tool {
namespace {

std::string Endpoint(uint32_t gateway, uint32_t line) {
  return std::to_string(gateway) + "/" + std::to_string(line);
}

// The gateway ids the gateway accessor reads: sections named by an id.
std::set<unsigned long> GatewayIds(const std::vector<CheckedFile>& files) {
  std::set<unsigned long> ids;
  if (const CheckedFile* file = FindFile(files, "telephony/gateways.cfg")) {
    for (const cfg::Section& section : file->doc.sections()) {
      unsigned long id = 0;
      if (blocks::ParseBlockId(section.name, &id)) ids.insert(id);
    }
  }
  return ids;
}

}  // namespace

void CheckLineDatabase(const std::vector<CheckedFile>& files, Findings* findings) {
  const CheckedFile* file = FindFile(files, "telephony/linedb");
  if (file == nullptr) return;
  const std::set<unsigned long> gateways = GatewayIds(files);
  // The first section of each kind and endpoint, by kind and endpoint.
  std::map<std::pair<std::string_view, uint64_t>, const cfg::Section*> first;
  std::vector<std::pair<const cfg::Section*, std::pair<uint32_t, uint32_t>>> bindings;
  for (const cfg::Section& section : file->doc.sections()) {
    int type = 0;
    uint32_t gateway = 0, line = 0;
    if (!ParseLineSection(section.name, &type, &gateway, &line)) {
      findings->push_back(SectionFinding(*file, section, false, "unknown-section",
                                         "section \"" + std::string(section.name) +
                                             "\" is no line-database entry (binding, fxs or fxo "
                                             "G/L); it is ignored"));
      continue;
    }
    const std::string_view kind = LineSectionKind(type);
    const uint64_t key = (uint64_t{gateway} << 32) | line;
    auto inserted = first.emplace(std::make_pair(kind, key), &section);
    if (inserted.second) {
      if (type == LineManagerBase::kLineDb) bindings.push_back({&section, {gateway, line}});
      continue;
    }
    // The same name is a duplicate section, reported with the syntax.
    if (inserted.first->second->name == section.name || type != LineManagerBase::kLineDb) continue;
    findings->push_back(SectionFinding(
        *file, section, false, "port-bound-twice",
        "FXS port " + Endpoint(gateway, line) + " is bound twice; the binding at line " +
            std::to_string(inserted.first->second->line) + " is read"));
  }
  for (const auto& binding : bindings) {
    const cfg::Section& section = *binding.first;
    const uint32_t gateway = binding.second.first, line = binding.second.second;
    const std::string name = "\"" + std::string(section.name) + "\"";
    if (gateways.count(gateway) == 0) {
      findings->push_back(SectionFinding(*file, section, false, "unknown-gateway",
                                         "gateway " + std::to_string(gateway) + " of " + name +
                                             " is not in telephony/gateways.cfg; the extension "
                                             "is not bound"));
    } else if (first.count({LineSectionKind(LineManagerBase::kFxsLines),
                            (uint64_t{gateway} << 32) | line}) == 0) {
      findings->push_back(SectionFinding(*file, section, false, "missing-fxs",
                                         "no section \"fxs " + Endpoint(gateway, line) +
                                             "\" for " + name + "; the extension is not bound"));
    }
  }
}

}  // namespace cmcfg_tool
