#ifndef CMCFG_TOOLS_CHECK_FIELDS_H_
#define CMCFG_TOOLS_CHECK_FIELDS_H_

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/document.h"
#include "tools/check_findings.h"
#include "tools/check_syntax.h"

namespace cmcfg_tool {

// What a block type of the store reads from its section, learnt from the
// block itself rather than from a list of our own: the keys are those its
// Write puts into an empty section, and a value is taken when reading it
// over two different earlier values gives the same block. So the check
// follows the store when a field is added, renamed or retyped.
class FieldProbe {
 public:
  // Block needs default construction, Read(const cfg::Section&) (a value
  // that does not parse keeps the field) and Write(cfg::Document&,
  // cfg::Section&) const.
  template <typename Block>
  static FieldProbe Of() {
    return FieldProbe(&WrittenAfter<Block>);
  }

  // The keys the block reads.
  const std::set<std::string>& keys() const { return keys_; }
  bool Knows(std::string_view key) const { return keys_.count(std::string(key)) != 0; }
  // False when reading `value` for `key` leaves the field as it was (the
  // store keeps its default); true for an unknown key.
  bool Takes(std::string_view key, std::string_view value) const;

 private:
  // The text Write gives for `key` (all keys when `key` is empty, one per
  // line) after reading {key = first}, then {key = second}, into a fresh
  // block.
  using Probe = std::string (*)(std::string_view key, std::string_view first,
                                std::string_view second);

  explicit FieldProbe(Probe probe);

  template <typename Block>
  static std::string WrittenAfter(std::string_view key, std::string_view first,
                                  std::string_view second) {
    Block block;
    if (!key.empty()) {
      for (std::string_view value : {first, second}) {
        cfg::Document in;
        cfg::Section& section = in.Add("1");
        in.Set(section, key, value);
        block.Read(section);
      }
    }
    cfg::Document out;
    cfg::Section& section = out.Add("1");
    block.Write(out, section);
    if (!key.empty()) return std::string(section.Get(key));
    std::string keys;
    for (const cfg::Entry& entry : section.entries) keys.append(entry.key).append("\n");
    return keys;
  }

  Probe probe_;
  std::set<std::string> keys_;
};

// Checks the block files of the root (gateways.cfg, tos.cfg,
// authorized_phones.cfg, ringpatterns.cfg): sections whose name is no
// block id (ignored by the store), keys the block does not read, and values
// it does not take. Adds warnings to `findings`.
void CheckBlockFiles(const std::vector<CheckedFile>& files, Findings* findings);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_CHECK_FIELDS_H_
