// What writers do to a document (Set, Add, Remove, Erase) and what a save
// then writes: nothing a writer passes may come back as something else.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/document_lexer.h"
#include "platform/base/document_parser.h"
#include "platform/base/document_render.h"
#include "tests/support/platform_fixture.h"

namespace cfg {
namespace {

using testing_support::Bytes;
using testing_support::Shown;

const std::string kTables = "platform/base/tables/";  // below tests/

// Saved and read again, `doc` must come back equal, with no complaint, and
// a second save must write the same text.
void ExpectReadsBack(const Document& doc, const Syntax& syntax = Syntax()) {
  const std::string saved = doc.Serialize(syntax);
  Document back = Document::Parse(saved, syntax);
  EXPECT_TRUE(back == doc) << Shown(saved.substr(0, 2000));
  EXPECT_TRUE(back.diagnostics().empty()) << Shown(saved.substr(0, 2000));
  EXPECT_EQ(saved, back.Serialize(syntax));
}

TEST(DocumentApiTest, NoValueCanCreateEndOrRenameASection) {
  std::vector<std::string> values = {
      "x\n}\nsection injected\n{\nevil = 1", "}", "{", "section injected", "\nsection x",
      "\r\n}\r\n", Bytes("nul\0\n}\0section x"), "# comment", "\x01# = 1", "\vsection x", "\"",
      "\"\"", "\"quoted\"", "\\", "\\x41", "\\\"", " ", "\t", " lead", "trail\t", "trailing\\",
      "= =", "\x7f\xff\xfe", "", "plain", "end\\"};
  std::string every_byte;
  for (int c = 0; c < 256; ++c) every_byte.push_back(static_cast<char>(c));
  values.push_back(every_byte);
  std::string big;  // a mebibyte of lines that look like the format itself
  while (big.size() < (1u << 20)) big += "}\nsection big\n{\nk = \"v\\x00\"\n\r\n";
  values.push_back(big);
  for (const std::string& value : values) {
    Document doc = Document::Parse("section before\n{\nk = 1\n}\nsection after\n{\nk = 3\n}\n");
    Section* victim = doc.TryAdd("victim");
    ASSERT_NE(nullptr, victim);
    ASSERT_TRUE(doc.Set(*victim, "note", value));
    ASSERT_TRUE(doc.Set(*victim, "after_note", "still here"));
    ExpectReadsBack(doc);
    Document back = Document::Parse(RenderEdited(doc));
    ASSERT_EQ(3u, back.size()) << Shown(value.substr(0, 200));
    EXPECT_EQ(value, back[2].Get("note"));
    EXPECT_EQ("still here", back[2].Get("after_note"));
  }
}

// Whatever key or name a writer passes, the document refuses it (and stays
// as it was) or reads it back exactly. Which are refused is data:
// tables/keys_and_names.in, answered in .out, also for other markers.
TEST(DocumentApiTest, KeysAndNamesAreRefusedOrReadBackExactly) {
  Syntax other;
  other.keyword = "block";
  other.separator = ":=";
  other.comment = "//";
  testing_support::ExpectGoldenTable(kTables + "keys_and_names", [&](const std::string& text) {
    SCOPED_TRACE(Shown(text));
    const bool key = IsValidKey(text), name = IsValidSectionName(text);
    Document doc = Document::Parse("section s\n{\nk = 1\n}\n");
    const std::string unchanged = doc.Serialize();
    EXPECT_EQ(key, doc.Set(doc[0], text, "v"));
    EXPECT_EQ(name, doc.TryAdd(text) != nullptr);
    if (!key && !name) {
      EXPECT_EQ(unchanged, doc.Serialize());
    }
    doc.Set(doc.Add(text), "k2", "v");  // a refused name gives a scratch section
    EXPECT_EQ(name ? 3u : 1u, doc.size());
    ExpectReadsBack(doc);
    return std::string(key ? "key" : "no key") + (name ? ", name" : ", no name") +
           (IsValidKey(text, other) ? "; block markers: key" : "; block markers: no key");
  });
}

TEST(DocumentApiTest, SetRemoveAndEraseKeepEverythingElseInPlace) {
  Document doc = Document::Parse(
      "junk before a\nsection a\n{\nk = 1\nbad line\nj = 2\nk = 3\n}\norphan = 1\nsection b\n{\n}\n");
  doc.Set(doc[0], "j", "new");  // the first of its key
  doc.Set(doc[0], "added", "v");
  EXPECT_EQ("junk before a\nsection a\n{\nk = 1\nbad line\nj = new\nk = 3\nadded = v\n}\n\n"
            "orphan = 1\nsection b\n{\n}\n",
            doc.Serialize());
  doc.Remove(doc[0], "k");  // every one of its key; the kept line stays where it stood
  EXPECT_EQ("junk before a\nsection a\n{\nbad line\nj = new\nadded = v\n}\n\norphan = 1\n"
            "section b\n{\n}\n",
            doc.Serialize());
  doc.Erase(5);  // out of range: ignored
  doc.Erase(0);
  EXPECT_EQ("junk before a\norphan = 1\nsection b\n{\n}\n", doc.Serialize());
  doc.Erase(0);
  EXPECT_EQ("junk before a\norphan = 1\n", doc.Serialize());
  EXPECT_TRUE(Document::Parse(doc.Serialize()) == doc);
  // What is put into the tables directly, past Set and Add, is left out.
  doc = Document::Parse("section a\n{\nk = 1\n}\nsection b\n{\nk = 2\n}\n");
  doc[0].entries.push_back(Entry{"section x", "1", 0});
  doc[0].entries.push_back(Entry{"\x01#", "2", 0});
  doc[1].name = "b\n}\nsection c";
  EXPECT_EQ("section a\n{\nk = 1\n}\n\n", doc.Serialize());
}

TEST(DocumentApiTest, EqualityComparesWhatASaveWrites) {
  const std::string text = "section a\n{\nk = 1\njunk\n}\n";
  const Document a = Document::Parse(text);
  EXPECT_TRUE(a == Document::Parse("\n# other comments\nsection a\r\n{\n  k=1 \njunk\n}"));
  for (const std::string& other :
       {std::string("section a\n{\nk = 1\n}\n"), std::string("section a\n{\njunk\nk = 1\n}\n"),
        std::string("section a\n{\nk = 2\njunk\n}\n"), std::string("section A\n{\nk = 1\njunk\n}\n"),
        std::string("section a\n{\nK = 1\njunk\n}\n"), std::string("junk\nsection a\n{\nk = 1\n}\n"),
        text + "junk\n", text + "section b\n{\n}\n"})
    EXPECT_TRUE(a != Document::Parse(other)) << other;
}

TEST(DocumentApiTest, UnusableMarkersFallBackToTheDefaults) {
  Syntax blank_inside, comment_prefix, same_markers;
  blank_inside.separator = ": =";  // "k: = v" would split at the wrong place
  comment_prefix.comment = "s";    // every section line would be a comment
  same_markers.closer = "{";
  for (const Syntax& syntax : {blank_inside, comment_prefix, same_markers}) {
    Document doc = Document::Parse("# c\nsection s\n{\nk = v\n}\n", syntax);
    ASSERT_EQ(1u, doc.size());
    EXPECT_EQ("section s\n{\nk = v\n}\n", doc.Serialize(syntax));
  }
}

// Large enough to be indexed: Find agrees with a scan for the first of each
// name through adds, erases and moves.
TEST(DocumentApiTest, FindReturnsTheFirstOfEachName) {
  std::string text;
  for (int i = 0; i < 40; ++i) text += "section s" + std::to_string(i % 30) + "\n{\n}\n";
  Document doc = Document::Parse(text);
  auto expect_first = [](const Document& d) {
    for (int i = 0; i < 45; ++i) {
      const std::string name = "s" + std::to_string(i);
      const Section* first = nullptr;
      for (const Section& section : d.sections())
        if (section.name == name && first == nullptr) first = &section;
      EXPECT_EQ(first, d.Find(name)) << name;
    }
  };
  expect_first(doc);
  for (size_t at : {0u, 5u, 29u, 0u}) doc.Erase(at);
  expect_first(doc);
  for (const char* name : {"s40", "s41", "s3", "s42", "s43", "s44"}) doc.Add(name);
  doc.AddBeside("s7 x");
  expect_first(doc);
  doc.Set(doc[0], "k", "\"decoded\\t\"");
  Document moved(std::move(doc));
  Document assigned;
  assigned = std::move(moved);
  expect_first(assigned);
  EXPECT_EQ("\"decoded\\t\"", assigned[0].Get("k"));
}

TEST(DocumentApiTest, DamagedTextKeepsWhatWasComplete) {
  const std::string full = "section a\n{\nk = 1\n}\nsection b\n{\nlong_key = long value\n}\n";
  for (size_t cut = 0; cut <= full.size(); ++cut) {
    Document doc = Document::Parse(full.substr(0, cut));
    if (cut >= 18) {
      EXPECT_EQ("1", doc.Find("a")->Get("k")) << cut;
    }
    for (const Section& s : doc.sections()) EXPECT_LE(s.entries.size(), 1u);
  }
  std::string garbage(10, '\0');
  unsigned state = 12345;
  for (int i = 0; i < 200000; ++i) garbage.push_back(static_cast<char>((state = state * 1103515245u + 12345u) >> 16));
  Document doc = Document::Parse(garbage + "\nsection ok\n{\nk = v\n}\n");
  EXPECT_EQ("v", doc.Find("ok")->Get("k"));
  EXPECT_EQ(Parser::kMaxDiagnostics + 1, doc.diagnostics().size());
  for (const Diagnostic& d : doc.diagnostics()) EXPECT_LE(d.text.size(), 200u);
  const std::string line(size_t{1} << 20, 'v');  // kept whole, quoted short
  doc = Document::Parse("section s\n{\nk = " + line + "\njunk " + line + "\n}\n");
  EXPECT_EQ(line, doc[0].Get("k"));
  EXPECT_EQ("junk " + line, doc[0].verbatim()[0].text);
  EXPECT_LT(doc.diagnostics()[0].Format("f").size(), 500u);
}

// The word-at-a-time test must agree with the byte-by-byte definition for
// every byte value, at every offset, in texts shorter and longer than a word.
TEST(DocumentApiTest, NameControlTestAgreesWithItsDefinition) {
  for (size_t length = 1; length <= 19; ++length) {
    for (size_t at = 0; at < length; ++at) {
      for (int byte = 0; byte < 256; ++byte) {
        std::string text(length, 'k');
        text[at] = static_cast<char>(byte);
        const bool expected = (byte < 0x20 && byte != '\t') || byte == 0x7F;
        ASSERT_EQ(expected, HasNameControl(text)) << length << " " << at << " " << byte;
        ASSERT_EQ(expected ? at : std::string::npos, FindNameControl(text));
      }
    }
  }
  EXPECT_FALSE(HasNameControl("\x20\x20\x20\x20\x20\x20\x20\x20\x20\x80\xff\x7e\t"));
  EXPECT_TRUE(HasNameControl("\t\t\t\t\t\t\t\t\x1f"));
}

// Texts made of the pieces that have caused trouble (markers of the syntax
// in use and of the default one, control bytes, separators, blanks, quotes,
// escapes, now and then a long run), in section-like shapes: every one must
// read back equal after a save, with only keys and names a save writes back.
class NastyText {
 public:
  NastyText(uint32_t seed, const Syntax& syntax) : rng_(seed) {
    opener_ = syntax.opener.substr(0, syntax.opener.find('\n'));
    closer_ = syntax.closer.substr(0, syntax.closer.find('\n'));
    keyword_ = syntax.keyword;
    separator_ = syntax.separator;
    pieces_ = {keyword_, keyword_ + " ", opener_, closer_, separator_, syntax.comment, "section",
               "{", "}", "=", "#", " ", "\t", "\v", "\f", "\r", "\x01", std::string(1, '\0'),
               "\x7f", "\xff", "\"", "\\", "\\n", "\\x4", "\\x41", "\\q", "k", "contact 9", ",", "a"};
  }
  std::string Text() {
    std::string text;
    for (size_t n = Pick(6); n > 0; --n) {
      if (Pick(3) == 0) Add(Line(), &text);
      Add(Maybe(keyword_ + " s" + std::to_string(Pick(4))), &text);
      Add(Maybe(opener_), &text);
      for (size_t e = Pick(5); e > 0; --e)
        Add(Maybe("key" + std::to_string(Pick(4)) + " " + separator_ + " " + Pieces(2)), &text);
      Add(Maybe(closer_), &text);
    }
    for (size_t n = Pick(4); n > 0; --n) Add(Line(), &text);
    if (Pick(4) == 0) text += Line();  // no line break at the end
    return text;
  }

 private:
  size_t Pick(size_t n) { return rng_() % n; }
  std::string Pieces(size_t most) {
    std::string out;
    for (size_t n = Pick(most + 1); n > 0; --n) out += pieces_[Pick(pieces_.size())];
    return out;
  }
  std::string Maybe(const std::string& line) { return Pick(5) == 0 ? Line() : line; }
  void Add(const std::string& line, std::string* text) {
    const size_t end = Pick(10);
    *text += line + (end == 0 ? "\r\n" : end == 1 ? "\r\r\n" : "\n");
  }
  std::string Line() {
    const std::string pad = Pick(3) == 0 ? Pieces(1) : std::string();
    switch (Pick(9)) {
      case 0: return pad + keyword_ + " " + Pieces(3) + pad;
      case 1: return pad + (Pick(2) ? opener_ : closer_) + pad;
      case 2:
      case 3: return pad + Pieces(2) + pad + separator_ + pad + Pieces(3);
      case 4: return Pieces(2) + separator_ + " \"" + Pieces(3) + "\"";
      case 5: return Pieces(6);
      case 6: return pad;
      case 7: return Pick(50) == 0 ? "k" + separator_ + std::string(20000, 'x')
                                   : std::string(Pick(300), "xy {}=#\\\""[Pick(9)]);
      default: return "key" + std::to_string(Pick(5)) + " " + separator_ + " v";
    }
  }
  std::mt19937 rng_;
  std::string keyword_, opener_, closer_, separator_;
  std::vector<std::string> pieces_;
};

TEST(DocumentApiTest, RandomTextsReadBackAfterASave) {
  const Syntax brackets{"block", "[\n", "]\n", ":", ";"};
  const Syntax long_markers{"SECTION", "BEGIN", "END", ":=", "//"};
  const std::pair<Syntax, int> runs[] = {{Syntax(), 5000}, {brackets, 1000}, {long_markers, 1000}};
  uint32_t seed = 1;
  for (const auto& [syntax, count] : runs) {
    NastyText texts(seed++, syntax);
    size_t entries = 0, kept = 0;
    for (int i = 0; i < count; ++i) {
      const std::string text = texts.Text();
      Document read = Document::Parse(text, syntax);
      const std::string once = read.Serialize(syntax);
      Document again = Document::Parse(once, syntax);
      ASSERT_TRUE(again == read) << "read:\n" << Shown(text) << "\nsaved:\n" << Shown(once);
      ASSERT_EQ(once, again.Serialize(syntax)) << Shown(text);
      for (const Section& s : read.sections()) {
        ASSERT_TRUE(s.name.empty() || IsValidSectionName(s.name, syntax)) << Shown(text);
        for (const Entry& e : s.entries) ASSERT_TRUE(IsValidKey(e.key, syntax)) << Shown(text);
        entries += s.entries.size();
        kept += s.verbatim().size() + s.verbatim_before().size();
      }
    }
    // The generator must reach both kinds of line, or the test proves little.
    EXPECT_GT(entries, static_cast<size_t>(count));
    EXPECT_GT(kept, static_cast<size_t>(count) / 2);
  }
}

}  // namespace
}  // namespace cfg
