#include "tools/document.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "cmcfg/cm_agent.h"

namespace cmcfg_tool {
namespace {

std::string Dumped(const Tree& value, int indent) {
  return value.dump(indent, ' ', false, Tree::error_handler_t::replace);
}

// Appends `text`, a value dumped at the outermost level, as it reads
// `depth` blanks deep: every line after its first moves right. A dumped
// string holds its newlines escaped, so each raw one is the dump's own.
void AppendIndented(std::string* out, const std::string& text, size_t depth) {
  size_t from = 0;
  for (size_t nl = text.find('\n'); nl != std::string::npos; nl = text.find('\n', from)) {
    out->append(text, from, nl + 1 - from);
    out->append(depth, ' ');
    from = nl + 1;
  }
  out->append(text, from, std::string::npos);
}

// Writes the document as JsonText would print it whole.
class JsonWriter : public DocumentSink {
 public:
  explicit JsonWriter(std::ostream& out) : out_(out) { out_ << "{"; }
  void Member(const std::string& key, Tree value) override {
    Key(Separator(&members_), key);
    AppendIndented(&buffer_, Dumped(value, 2), 2);
    Flush();
  }
  void BeginArray(const std::string& key) override {
    Key(Separator(&members_), key);
    buffer_ += '[';
    elements_ = 0;
  }
  void Record(Tree record) override {
    buffer_.append(Separator(&elements_)).append(4, ' ');
    AppendIndented(&buffer_, Dumped(record, 2), 4);
    Flush();
  }
  void EndArray() override {
    if (elements_ != 0) buffer_ += "\n  ";
    buffer_ += ']';
    Flush();
  }
  void Finish() { out_ << "\n}\n"; }

 private:
  static const char* Separator(size_t* count) { return (*count)++ == 0 ? "\n" : ",\n"; }
  void Key(const char* separator, const std::string& key) {
    buffer_.append(separator).append("  ") += Dumped(Tree(key), -1) + ": ";
  }
  void Flush() {
    out_ << buffer_;
    buffer_.clear();
  }

  std::ostream& out_;
  std::string buffer_;  // the piece being written, reused
  size_t members_ = 0;
  size_t elements_ = 0;
};

}  // namespace

void ProduceDocument(const CMAgent& agent, const std::string& root, Detail detail,
                     DocumentSink& sink) {
  const auto shape = [detail](Tree record) {
    return detail == Detail::kFull ? record : SummaryOf(record);
  };
  const Attendant* system = agent.generalData.sysAttendant;
  Tree table = Tree::object();
  table["slots"] = agent.extensionBase.size();
  table["empty_slots"] =
      std::count(agent.extensionBase.begin(), agent.extensionBase.end(), nullptr);
  sink.Member("extension_table", std::move(table));
  sink.BeginArray("extensions");
  for (const ExtensionData* e : agent.extensionBase)
    if (e != nullptr) sink.Record(ExtensionTree(*e, detail));
  sink.EndArray();
  sink.BeginArray("attendants");
  for (const Attendant* a : agent.attendants)
    if (a != nullptr)
      sink.Record(shape(AttendantTree(*a, system != nullptr && system->name == a->name)));
  sink.EndArray();
  // In full: it may be a record of its own, not one of the attendants.
  sink.Member("system_attendant", system ? shape(AttendantTree(*system, true)) : Tree(nullptr));
  Tree rest = SystemTree(agent, root);
  for (auto it = rest.begin(); it != rest.end(); ++it) sink.Member(it.key(), std::move(it.value()));
}

void WriteDocumentJson(const CMAgent& agent, const std::string& root, Detail detail,
                       std::ostream& out) {
  JsonWriter writer(out);
  ProduceDocument(agent, root, detail, writer);
  writer.Finish();
}

std::string JsonText(const Tree& value) { return Dumped(value, 2) + "\n"; }

}  // namespace cmcfg_tool
