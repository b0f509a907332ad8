#ifndef CMCFG_TOOLS_HELD_DUMP_H_
#define CMCFG_TOOLS_HELD_DUMP_H_

#include <cstdint>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "tools/document.h"
#include "tools/session.h"

namespace cmcfg_tool {

// One root's document as diff holds it: the records of "extensions" and
// "attendants" as one-line texts in a scratch file (so that comparing two
// roots of 100,000 users needs the memory of one load, not of two
// documents), the rest of the document in memory. Receives the document
// as a DocumentSink.
class HeldDump : public DocumentSink {
 public:
  // Where one record's text lies in the scratch file.
  struct Stored {
    std::string name;  // its identity, as DiffDumps names it
    uint64_t offset = 0;
    uint64_t length = 0;
    size_t hash = 0;
  };

  // With its scratch file in a ScratchDir, removed with the object.
  HeldDump();
  HeldDump(const HeldDump&) = delete;
  HeldDump& operator=(const HeldDump&) = delete;

  // DocumentSink: members are kept, the arrays' records written out.
  void Member(const std::string& key, Tree value) override;
  void BeginArray(const std::string& key) override;
  void Record(Tree record) override;
  void EndArray() override {}

  // The document without the two arrays' records (they are empty in it).
  const Tree& rest() const { return rest_; }
  // The records of one array, in document order (empty for another name).
  const std::vector<Stored>& records(const std::string& array) const;
  // The text of a record of this dump.
  std::string Text(const Stored& record) const;
  // True when the two records hold the same text.
  bool Same(const Stored& mine, const HeldDump& other, const Stored& theirs) const;

 private:
  ScratchDir dir_;
  mutable std::fstream file_;
  uint64_t end_ = 0;
  Tree rest_ = Tree::object();
  std::string key_;
  std::map<std::string, std::vector<Stored>> records_;
};

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_HELD_DUMP_H_
