// The multi-section parser over arbitrary bytes, in memory and through
// LoadDocument from a file, and its serializer over whatever was parsed.
#include <string>
#include <string_view>

#include "platform/base/document.h"
#include "platform/base/document_lexer.h"
#include "platform/base/document_parser.h"
#include "platform/base/document_render.h"
#include "platform/base/document_store.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

bool HasLineBreak(std::string_view text) {
  return text.find('\n') != std::string_view::npos;
}

// What the parser promises of every document, whatever the input.
void CheckShape(const cfg::Document& doc) {
  FUZZ_CHECK(doc.diagnostics().size() <= cfg::Parser::kMaxDiagnostics + 1);
  for (const cfg::Section& s : doc.sections()) {
    FUZZ_CHECK(s.name == cfg::TrimBlanks(s.name));
    FUZZ_CHECK(!HasLineBreak(s.name));
    FUZZ_CHECK(s.line >= 1);
    for (const cfg::Entry& e : s.entries) {
      FUZZ_CHECK(!e.key.empty());
      FUZZ_CHECK(e.key == cfg::TrimBlanks(e.key));
      FUZZ_CHECK(!HasLineBreak(e.key));
      FUZZ_CHECK(e.line > s.line);
    }
  }
  for (const cfg::Diagnostic& d : doc.diagnostics()) {
    FUZZ_CHECK(d.column <= d.text.size());
    FUZZ_CHECK(!HasLineBreak(d.text));
  }
}

// The same text parsed twice must give the same document, lines included.
void CheckIdentical(const cfg::Document& a, const cfg::Document& b) {
  FUZZ_CHECK(a.size() == b.size());
  for (size_t i = 0; i < a.size(); ++i) {
    FUZZ_CHECK(a[i].name == b[i].name);
    FUZZ_CHECK(a[i].line == b[i].line);
    FUZZ_CHECK(a[i].entries.size() == b[i].entries.size());
    for (size_t j = 0; j < a[i].entries.size(); ++j) {
      FUZZ_CHECK(a[i].entries[j].key == b[i].entries[j].key);
      FUZZ_CHECK(a[i].entries[j].value == b[i].entries[j].value);
      FUZZ_CHECK(a[i].entries[j].line == b[i].entries[j].line);
    }
  }
  FUZZ_CHECK(a.diagnostics().size() == b.diagnostics().size());
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz_support::Root();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(fuzz_support::AsText(data, size));

  cfg::Document doc = cfg::Document::Parse(text);
  CheckShape(doc);

  // The file path: the text read into an arena and parsed where it lies.
  fuzz_support::Root().Write("doc.cfg", text);
  cfg::Document loaded;
  FUZZ_CHECK(cfg::LoadDocument(fuzz_support::Root().Path("doc.cfg"), &loaded).ok());
  CheckShape(loaded);
  CheckIdentical(doc, loaded);

  // A save writes back what was read, and saving that again changes nothing.
  const std::string saved = doc.Serialize();
  cfg::Document again = cfg::Document::Parse(saved);
  CheckShape(again);
  FUZZ_CHECK(doc == again);
  FUZZ_CHECK(again.Serialize() == saved);

  // Saved unchanged, a document is its text, byte for byte; edited, what is
  // saved over the text reads back as the edit.
  FUZZ_CHECK(cfg::RenderEdited(doc) == text);
  if (!doc.empty()) {
    cfg::Section& first = doc[0];
    if (!first.entries.empty()) doc.Remove(first, std::string(first.entries[0].key));
    doc.Set(doc[doc.size() - 1], "fuzz_key", "v\n");
    doc.AddBeside(std::string(doc[0].name) + " fuzz");
    FUZZ_CHECK(cfg::Document::Parse(cfg::RenderEdited(doc)) == doc);
  }
  return 0;
}
