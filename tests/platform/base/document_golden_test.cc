// The parser, the serializer and the editing renderer over the files in
// golden/: each NAME.cfg is read and NAME.out holds, byte for byte, what
// was read (sections, entries, kept lines, diagnostics), what a save writes
// and what the renderer writes after two fixed edits. Files named
// "markers-*" are read with other markers. CMCFG_REGEN_GOLDEN=1 rewrites
// the .out files.
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/document_render.h"
#include "tests/support/platform_fixture.h"

namespace cfg {
namespace {

using testing_support::Shown;

const std::string kDir = "platform/base/golden/";  // below tests/

std::string Quoted(std::string_view text) { return "\"" + Shown(text) + "\""; }

void DumpKept(const char* where, const VerbatimLines& lines, std::string* out) {
  for (const VerbatimLine& v : lines)
    *out += std::string("  kept ") + where + " line " + std::to_string(v.line) + " at " +
            std::to_string(v.position) + ": " + Quoted(v.text) + "\n";
}

std::string Dump(const Document& doc) {
  std::string out;
  for (const Section& s : doc.sections()) {
    DumpKept("before", s.verbatim_before(), &out);
    out += "section " + Quoted(s.name) + " lines " + std::to_string(s.line) + "-" +
           std::to_string(s.end_line) + "\n";
    for (const Entry& e : s.entries)
      out += "  " + std::to_string(e.line) + ": " + Quoted(e.key) + " = " + Quoted(e.value) + "\n";
    DumpKept("inside", s.verbatim(), &out);
  }
  DumpKept("after", doc.verbatim_after(), &out);
  for (const Diagnostic& d : doc.diagnostics()) out += Shown(d.Format("f.cfg")) + "\n";
  return out;
}

// A writer's edits: a section beside the first one takes its place, the
// last section loses its first entry, changes its last and gains one.
void Edit(Document* doc) {
  if (doc->empty()) return;
  doc->Set(doc->AddBeside(std::string((*doc)[0].name) + " beside"), "k", "new");
  doc->Erase(0);
  if (doc->empty()) return;
  Section& last = (*doc)[doc->size() - 1];
  if (last.entries.size() > 1) doc->Remove(last, std::string(last.entries[0].key));
  if (!last.entries.empty()) doc->Set(last, std::string(last.entries.back().key), "changed");
  doc->Set(last, "added", "two\nlines");
}

TEST(DocumentGoldenTest, EachFileReadsSavesAndEditsAsRecorded) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(CMCFG_SOURCE_DIR "/tests/" + kDir))
    if (entry.path().extension() == ".cfg") names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  ASSERT_GE(names.size(), 10u);
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    Syntax syntax;
    if (name.rfind("markers-", 0) == 0) {
      syntax.keyword = "block";
      syntax.opener = "[\n";
      syntax.closer = "]\n";
      syntax.separator = ":=";
      syntax.comment = ";";
    }
    const std::string text = testing_support::ReadSource(kDir + name + ".cfg");
    Document doc = Document::Parse(text, syntax);
    const std::string saved = doc.Serialize(syntax);
    // A save writes back what was read, and saving that again changes nothing.
    EXPECT_TRUE(Document::Parse(saved, syntax) == doc);
    EXPECT_EQ(saved, Document::Parse(saved, syntax).Serialize(syntax));
    // Unedited, the renderer gives the file back as it was.
    EXPECT_EQ(text, RenderEdited(doc, syntax));

    std::string out = Dump(doc) + "== saved\n" + Shown(saved);
    Edit(&doc);
    const std::string edited = RenderEdited(doc, syntax);
    EXPECT_TRUE(Document::Parse(edited, syntax) == doc);
    out += "== edited\n" + Shown(edited);
    while (!doc.empty()) doc.Erase(0);
    doc.Set(doc.Add("fresh"), "k", "v");
    out += "== replaced\n" + Shown(RenderEdited(doc, syntax));
    testing_support::ExpectGolden(kDir + name + ".out", out);
  }
}

}  // namespace
}  // namespace cfg
