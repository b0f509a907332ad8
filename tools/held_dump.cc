#include "tools/held_dump.h"

#include <functional>
#include <utility>

namespace cmcfg_tool {

HeldDump::HeldDump() {
  if (!dir_.path().empty())
    file_.open(dir_.path() + "records",
               std::ios::in | std::ios::out | std::ios::trunc | std::ios::binary);
}

void HeldDump::Member(const std::string& key, Tree value) { rest_[key] = std::move(value); }

void HeldDump::BeginArray(const std::string& key) {
  key_ = key;
  rest_[key] = Tree::array();
}

void HeldDump::Record(Tree record) {
  const std::string text = record.dump(-1, ' ', false, Tree::error_handler_t::replace);
  Stored held;
  const Tree& name = record.value("name", Tree());
  held.name = name.is_string() ? name.get<std::string>() : name.dump();
  held.offset = end_;
  held.length = text.size();
  held.hash = std::hash<std::string>()(text);
  file_.seekp(static_cast<std::streamoff>(end_));
  file_.write(text.data(), static_cast<std::streamsize>(text.size()));
  end_ += text.size();
  records_[key_].push_back(std::move(held));
}

const std::vector<HeldDump::Stored>& HeldDump::records(const std::string& array) const {
  static const std::vector<Stored> kNone;
  const auto it = records_.find(array);
  return it == records_.end() ? kNone : it->second;
}

std::string HeldDump::Text(const Stored& record) const {
  std::string text(record.length, '\0');
  file_.seekg(static_cast<std::streamoff>(record.offset));
  file_.read(&text[0], static_cast<std::streamsize>(record.length));
  return text;
}

bool HeldDump::Same(const Stored& mine, const HeldDump& other, const Stored& theirs) const {
  if (mine.length != theirs.length || mine.hash != theirs.hash) return false;
  return Text(mine) == other.Text(theirs);
}

}  // namespace cmcfg_tool
