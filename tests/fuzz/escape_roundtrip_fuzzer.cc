// Value escaping: whatever a caller saves reads back identical, and no
// value, key or section name accepted for saving can end its section or
// start another when the document is written and read again.
#include <string>
#include <string_view>

#include "platform/base/document.h"
#include "platform/base/escaping.h"
#include "tests/fuzz/fuzz_support.h"

namespace {

// Escaping alone: quoted and unquoted again gives the value back.
void CheckQuoting(std::string_view value) {
  std::string quoted;
  cfg::AppendQuoted(value, &quoted);
  FUZZ_CHECK(cfg::IsQuoted(quoted));
  // The quoted form is one line of printable bytes (bytes >= 0x80 aside).
  for (unsigned char c : quoted) FUZZ_CHECK(c >= 0x20 && c != 0x7F);
  std::string back;
  size_t bad = 0;
  FUZZ_CHECK(cfg::Unescape(std::string_view(quoted).substr(1, quoted.size() - 2), &back, &bad));
  FUZZ_CHECK(back == value);
  // A value that needs no quoting is one the parser reads back as written.
  if (!cfg::NeedsQuoting(value)) {
    FUZZ_CHECK(!cfg::IsQuoted(value) || value.size() < 2);
  }
}

// Unescape over any text: a failure points at a backslash, and a success
// decodes to something that escapes back to an equivalent text.
void CheckUnescape(std::string_view inner) {
  std::string out;
  size_t bad = inner.size() + 1;
  if (cfg::Unescape(inner, &out, &bad)) {
    FUZZ_CHECK(out.size() <= inner.size());
    std::string quoted;
    cfg::AppendQuoted(out, &quoted);
    std::string back;
    size_t bad2 = 0;
    FUZZ_CHECK(cfg::Unescape(std::string_view(quoted).substr(1, quoted.size() - 2), &back, &bad2));
    FUZZ_CHECK(back == out);
  } else {
    FUZZ_CHECK(bad < inner.size());
    FUZZ_CHECK(inner[bad] == '\\');
  }
}

// The value, and the text as key and as section name where the store
// accepts it, saved between two fixed sections and read back equal.
void CheckInDocument(std::string_view text) {
  const std::string key = cfg::IsValidKey(text) ? std::string(text) : "key";
  const std::string name = cfg::IsValidSectionName(text) ? std::string(text) : "middle";
  const std::string after = key == "after" ? "later" : "after";  // must not share the key
  cfg::Document doc;
  doc.Set(doc.Add("first"), "a", "1");
  cfg::Section& middle = doc.Add(name);
  doc.Set(middle, key, text);
  doc.Set(middle, after, "2");
  doc.Set(doc.Add("last"), "b", "3");
  FUZZ_CHECK(doc.size() == 3 && doc[1].name == name && doc[1].entries.size() == 2);
  FUZZ_CHECK(doc[1].entries[0].value == text);

  const std::string saved = doc.Serialize();
  cfg::Document back = cfg::Document::Parse(saved);
  FUZZ_CHECK(back.diagnostics().empty());
  FUZZ_CHECK(back == doc);  // every section, key and value, in order
  FUZZ_CHECK(back[1].name == name && back[1].entries[0].key == key && back[1].entries[0].value == text);
  FUZZ_CHECK(back.Serialize() == saved);  // saving what was read changes nothing
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text = fuzz_support::AsText(data, size);
  CheckQuoting(text);
  CheckUnescape(text);
  CheckInDocument(text);
  return 0;
}
