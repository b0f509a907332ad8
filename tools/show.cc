#include "tools/show.h"

#include <iomanip>
#include <ostream>
#include <sstream>

#include "tools/document.h"
#include "tools/format.h"
#include "tools/session.h"
#include "tools/text_render.h"

namespace cmcfg_tool {
namespace {

std::string Counts(const Tree& media) {
  return CodecCounts(media["voice"].size(), media["fax_relay"].size(), media["fax_in_band"].size(),
                     media["modem"].size());
}

// One record of the summary on one line.
std::string RecordRow(const Tree& r) {
  std::ostringstream row;
  const Tree& sip = r["sip"];
  row << "  " << std::left << std::setw(8) << r["name"].get<std::string>() << " " << std::setw(9)
      << r["type"].get<std::string>() << " sip "
      << SipText(sip["user"].get<std::string>(), sip["host"].get<std::string>(),
                 sip["port"].get<std::string>());
  if (r.contains("line"))
    row << "  local " << ValueText(r["line"]["local"]) << "  remote "
        << ValueText(r["line"]["remote"]);
  row << "  codecs " << Counts(r["media"]);
  if (r.contains("pstn"))
    for (auto it = r["pstn"].begin(); it != r["pstn"].end(); ++it)
      if (!it.value().get_ref<const std::string&>().empty())
        row << "  " << Label(it.key()) << " " << it.value().get<std::string>();
  if (r.value("system_attendant", false)) row << "  system attendant";
  for (const char* text : {"description", "display_name"})
    if (r.contains(text) && !r[text].get_ref<const std::string&>().empty())
      row << "  \"" << r[text].get<std::string>() << "\"";
  return row.str();
}

class TextSink : public DocumentSink {
 public:
  explicit TextSink(std::ostream& out) : out_(out) {}
  void Member(const std::string& key, Tree value) override {
    if (value.is_object() && value.contains("sip")) {  // the system attendant
      out_ << Label(key) << "\n" << RecordRow(value) << "\n";
      return;
    }
    Tree member = Tree::object();
    member[key] = std::move(value);
    RenderText(member, out_);
  }
  void BeginArray(const std::string& key) override { out_ << Label(key) << "\n"; }
  void Record(Tree record) override { out_ << RecordRow(record) << "\n"; }
  void EndArray() override {}

 private:
  std::ostream& out_;
};

}  // namespace

void PrintSummary(const CMAgent& agent, const std::string& root, std::ostream& out) {
  TextSink sink(out);
  ProduceDocument(agent, root, Detail::kSummary, sink);
}

int RunShow(const Invocation& invocation, std::ostream& out, std::ostream& err) {
  const std::string root = ResolveRoot(invocation.root);
  if (!RootIsUsable(root, err)) return kUsage;
  AgentSession session(root, invocation.logDir, Access::kInspect, &err);
  if (invocation.json)
    WriteDocumentJson(session.agent(), root, Detail::kSummary, out);
  else
    PrintSummary(session.agent(), root, out);
  return kOk;
}

}  // namespace cmcfg_tool
