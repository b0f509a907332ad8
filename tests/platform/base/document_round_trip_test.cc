// A save must write back what was read: Parse(Serialize(d)) == d for every
// document the parser produces or a writer builds through Set and Add, and
// a second save writes the same text as the first.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/document_render.h"
#include "platform/base/escaping.h"
#include "platform/base/document_store.h"
#include "tests/support/temp_root.h"

namespace cfg {
namespace {

template <size_t N>
std::string Bytes(const char (&text)[N]) {
  return std::string(text, N - 1);
}

// The text with control and non-ASCII bytes shown as \xHH, for messages.
std::string Shown(const std::string& text, size_t limit = 2000) {
  std::string out;
  for (size_t i = 0; i < text.size() && i < limit; ++i) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (c == '\n') {
      out += "\\n\n";
    } else if (c < 0x20 || c >= 0x7F) {
      char hex[8];
      std::snprintf(hex, sizeof(hex), "\\x%02X", c);
      out += hex;
    } else {
      out.push_back(static_cast<char>(c));
    }
  }
  if (text.size() > limit) out += "...";
  return out;
}

// Checks the two properties for `text` and returns the first save.
std::string ExpectSavesWriteBackWhatWasRead(const std::string& text,
                                            const Syntax& syntax = Syntax()) {
  Document read = Document::Parse(text, syntax);
  std::string once = read.Serialize(syntax);
  Document again = Document::Parse(once, syntax);
  EXPECT_TRUE(again == read) << "read:\n" << Shown(text) << "\nsaved:\n" << Shown(once);
  EXPECT_EQ(once, again.Serialize(syntax)) << "read:\n" << Shown(text);
  return once;
}

// The section, header to closer, that starts with `header` in `text`.
std::string Block(const std::string& text, const std::string& header) {
  size_t begin = text.find(header);
  if (begin == std::string::npos) return "<missing>";
  size_t end = text.find("\n}\n", begin);
  return end == std::string::npos ? text.substr(begin) : text.substr(begin, end + 3 - begin);
}

// Each line that once came back as something else after a save.
class SaveRegressionTest : public ::testing::Test {};

TEST_F(SaveRegressionTest, KeyNamedLikeTheKeywordDoesNotBecomeASection) {
  const std::string text = "section a\n{\nsection=x\nk = 1\n}\n";
  Document doc = Document::Parse(text);
  ASSERT_EQ(1u, doc.size());
  EXPECT_EQ("1", doc[0].Get("k"));
  EXPECT_FALSE(doc[0].Has("section"));
  std::string saved = ExpectSavesWriteBackWhatWasRead(text);
  EXPECT_EQ(text, saved);
  Document back = Document::Parse(saved);
  ASSERT_EQ(1u, back.size());
  EXPECT_EQ("1", back.Find("a")->Get("k"));
}

TEST_F(SaveRegressionTest, VerticalTabBeforeKeyDoesNotBecomeASectionLine) {
  const std::string text = "section a\n{\n\vsection b = 1\nk = 2\n}\n";
  std::string saved = ExpectSavesWriteBackWhatWasRead(text);
  EXPECT_EQ(text, saved);
  Document back = Document::Parse(saved);
  ASSERT_EQ(1u, back.size());
  EXPECT_EQ("2", back[0].Get("k"));
}

TEST_F(SaveRegressionTest, ControlByteBeforeCommentMarkerDoesNotTurnTheLineIntoAComment) {
  const std::string text = "section a\n{\n\x01# = 1\nk = 2\n}\n";
  std::string saved = ExpectSavesWriteBackWhatWasRead(text);
  EXPECT_EQ(text, saved);  // the line is still there, byte for byte
  ASSERT_EQ(1u, Document::Parse(saved)[0].verbatim().size());
}

TEST_F(SaveRegressionTest, ControlByteAfterSectionNameDoesNotMakeItALiveSection) {
  const std::string text = "section contact 9\x01\n{\nname = 0900*\n}\n";
  Document doc = Document::Parse(text);
  EXPECT_EQ(nullptr, doc.Find("contact 9"));
  std::string saved = ExpectSavesWriteBackWhatWasRead(text);
  EXPECT_EQ(text, saved);
  EXPECT_EQ(nullptr, Document::Parse(saved).Find("contact 9"));
}

TEST_F(SaveRegressionTest, CarriageReturnsAtLineEndsDoNotChangeAKeptLine) {
  const std::string text = "section a\n{\njunk\r\r\n\x01 = v\r \r\r\nk = v\r\r\n}\r\n";
  std::string saved = ExpectSavesWriteBackWhatWasRead(text);
  EXPECT_EQ("section a\n{\njunk\n\x01 = v\r \nk = v\n}\n", saved);
}

// The store an address-book writer makes (re-read under the lock, replace
// the entries of one service section, save) on a real file.
TEST_F(SaveRegressionTest, StoringOneContactsClirLeavesAnotherContactByteIdentical) {
  testing_support::TempRoot root;
  const std::string file = "telephony/extensiondb/user/101.cfg";
  const std::string contact2 =
      "section contact 2\n{\nname = 0900*\ncall_type = 2\n}\n";
  const std::string blocking =
      "section contact 2 incoming_blocking\n{\nactive = 1\nblock_anonymous = 0\n"
      "section=legacy\nblock_international = 1\n\x01# = 1\nblock_mode = 2\n}\n";
  root.Write(file,
             "section extension\n{\ndescription = Alice\n}\n\n"
             "section contact 1\n{\nname = *\ncall_type = 0\n}\n\n"
             // A damaged copy of contact 2, ahead of the real one: saved as
             // "contact 2" it would shadow it and empty its pattern.
             "section contact 2\x01\n{\nname =\n}\n\n" +
                 contact2 + "\n" + blocking);
  const std::string before = root.Read(file);

  Status s = UpdateDocument(root.Path(file), [](Document& doc) {
    Section* clir = doc.Find("contact 1 clir");
    if (clir == nullptr) clir = &doc.Add("contact 1 clir");
    clir->entries.clear();
    return doc.Set(*clir, "active", "1");
  });
  ASSERT_TRUE(s.ok()) << s.ToString();

  const std::string after = root.Read(file);
  EXPECT_EQ(Block(before, "section contact 2\n"), Block(after, "section contact 2\n"));
  EXPECT_EQ(Block(before, "section contact 2 incoming"), Block(after, "section contact 2 incoming"));
  EXPECT_EQ(contact2, Block(after, "section contact 2\n"));
  EXPECT_NE(std::string::npos, after.find("section contact 2\x01\n{\nname =\n}\n"));
  Document doc;
  ASSERT_TRUE(LoadDocument(root.Path(file), &doc).ok());
  EXPECT_EQ("0900*", doc.Find("contact 2")->Get("name"));
  EXPECT_EQ("2", doc.Find("contact 2 incoming_blocking")->Get("block_mode"));
  EXPECT_EQ("1", doc.Find("contact 1 clir")->Get("active"));
  EXPECT_EQ(after, RenderEdited(doc));  // and the next save changes nothing
}

// What writers hand to Set and Add.
class WriteApiTest : public ::testing::Test {
 protected:
  // A document of three sections with `value` stored in the middle one;
  // after a save it must read back equal, with the same three sections.
  static void ExpectValueStaysInItsEntry(const std::string& value) {
    Document doc = Document::Parse("section before\n{\nk = 1\n}\nsection after\n{\nk = 3\n}\n");
    Section* victim = doc.TryAdd("victim");
    ASSERT_NE(nullptr, victim);
    ASSERT_TRUE(doc.Set(*victim, "note", value));
    ASSERT_TRUE(doc.Set(*victim, "after_note", "still here"));
    std::string saved = doc.Serialize();
    Document back = Document::Parse(saved);
    EXPECT_TRUE(back.diagnostics().empty()) << Shown(value, 200);
    ASSERT_EQ(3u, back.size()) << Shown(value, 200);
    EXPECT_TRUE(back == doc) << Shown(value, 200);
    EXPECT_EQ(value, back.Find("victim")->Get("note"));
    EXPECT_EQ("still here", back.Find("victim")->Get("after_note"));
    EXPECT_EQ(saved, back.Serialize());
  }
};

TEST_F(WriteApiTest, NoValueCanCreateEndOrRenameASection) {
  const std::string values[] = {
      "x\n}\nsection injected\n{\nevil = 1",
      "}",
      "{",
      "section injected",
      "section",
      "\nsection injected",
      "\r\n}\r\n",
      Bytes("nul\0\n}\0section x"),
      std::string(1, '\0'),
      "# comment",
      "\x01# = 1",
      "\vsection x",
      "\"",
      "\"\"",
      "\"quoted\"",
      "\\",
      "\\x41",
      "\\\"",
      " ",
      "\t",
      "trailing\\",
      "= =",
      "\x7f\xff\xfe",
  };
  for (const std::string& value : values) ExpectValueStaysInItsEntry(value);

  std::string every_byte;
  for (int c = 0; c < 256; ++c) every_byte.push_back(static_cast<char>(c));
  ExpectValueStaysInItsEntry(every_byte);

  // A mebibyte of lines that look like the format itself.
  std::string big;
  while (big.size() < (1u << 20)) big += "}\nsection big\n{\nk = \"v\\x00\"\n\r\n";
  ExpectValueStaysInItsEntry(big);
}

TEST_F(WriteApiTest, EveryValueSurvivesTheEscapingRoundTrip) {
  std::mt19937 rng(7);
  for (int i = 0; i < 2000; ++i) {
    std::string value;
    size_t length = rng() % 24;
    for (size_t j = 0; j < length; ++j) {
      // Bias towards the bytes the escaping treats specially.
      static const char kSpecial[] = "\\\"\n\r\t \x01\x7f\xffx0";
      value.push_back(rng() % 2 ? kSpecial[rng() % (sizeof(kSpecial) - 1)]
                                : static_cast<char>(rng() % 256));
    }
    std::string written;
    std::string decoded;
    size_t bad = 0;
    if (NeedsQuoting(value)) {
      AppendQuoted(value, &written);
      ASSERT_TRUE(IsQuoted(written));
      ASSERT_TRUE(Unescape(std::string_view(written).substr(1, written.size() - 2), &decoded, &bad));
      EXPECT_EQ(value, decoded) << Shown(value);
      EXPECT_EQ(std::string::npos, written.find('\n'));
      EXPECT_EQ(std::string::npos, written.find('\r'));
    } else {
      EXPECT_FALSE(IsQuoted(value)) << Shown(value);
      EXPECT_EQ(std::string::npos, value.find_first_of(Bytes("\n\r\0")));
    }
  }
}

TEST_F(WriteApiTest, KeysAndNamesAreRefusedOrReadBackExactly) {
  // Whatever a writer passes, the document either refuses it or reads back
  // equal after a save.
  const std::string pieces[] = {"k",  "section", " ",  "\t", "=",    "#",      "{",  "}",
                                "\v", "\x01",    "\n", "\r", "\x7f", "contact", "9", "\xff",
                                "\"", "\\",      "x"};
  std::mt19937 rng(11);
  int accepted_keys = 0;
  int accepted_names = 0;
  for (int i = 0; i < 3000; ++i) {
    std::string key;
    std::string name;
    for (size_t n = rng() % 4; n > 0; --n) key += pieces[rng() % (sizeof(pieces) / sizeof(pieces[0]))];
    for (size_t n = rng() % 4; n > 0; --n) name += pieces[rng() % (sizeof(pieces) / sizeof(pieces[0]))];
    Document doc = Document::Parse("section s\n{\nk = 1\n}\n");
    const std::string unchanged = doc.Serialize();
    Section* section = doc.TryAdd(name);
    EXPECT_EQ(IsValidSectionName(name), section != nullptr) << Shown(name);
    if (section == nullptr) {
      EXPECT_EQ(unchanged, doc.Serialize());
      section = &doc[0];
    } else {
      ++accepted_names;
    }
    const std::string with_section = doc.Serialize();
    bool set = doc.Set(*section, key, "v");
    EXPECT_EQ(IsValidKey(key), set) << Shown(key);
    if (set) {
      ++accepted_keys;
    } else {
      EXPECT_EQ(with_section, doc.Serialize()) << Shown(key);
    }
    Document back = Document::Parse(doc.Serialize());
    ASSERT_TRUE(back == doc) << "key " << Shown(key) << " name " << Shown(name);
    EXPECT_TRUE(back.diagnostics().empty()) << Shown(doc.Serialize());
  }
  // The generator must exercise both outcomes.
  EXPECT_GT(accepted_keys, 300);
  EXPECT_GT(accepted_names, 300);
  EXPECT_LT(accepted_keys, 2700);
  EXPECT_LT(accepted_names, 2700);
}

TEST_F(WriteApiTest, EntriesPutIntoTheTablesDirectlyAreLeftOutRatherThanWrittenAsOthers) {
  Document doc = Document::Parse("section a\n{\nk = 1\n}\nsection b\n{\nk = 2\n}\n");
  doc[0].entries.push_back(Entry{"section x", "1", 0});
  doc[0].entries.push_back(Entry{"\x01#", "2", 0});
  doc[1].name = "b\n}\nsection c";
  EXPECT_EQ("section a\n{\nk = 1\n}\n\n", doc.Serialize());
}

TEST_F(WriteApiTest, RemoveAndEraseKeepVerbatimLinesInPlace) {
  const std::string text =
      "junk before a\nsection a\n{\nk = 1\nbad line\nj = 2\nk = 3\n}\n"
      "orphan = 1\nsection b\n{\n}\n";
  Document doc = Document::Parse(text);
  doc.Remove(doc[0], "k");
  ASSERT_EQ(1u, doc[0].verbatim().size());
  EXPECT_EQ(0u, doc[0].verbatim()[0].position);
  EXPECT_EQ("junk before a\nsection a\n{\nbad line\nj = 2\n}\n\norphan = 1\nsection b\n{\n}\n",
            doc.Serialize());
  doc.Erase(0);
  EXPECT_EQ("junk before a\norphan = 1\nsection b\n{\n}\n", doc.Serialize());
  doc.Erase(0);
  EXPECT_EQ("junk before a\norphan = 1\n", doc.Serialize());
  EXPECT_TRUE(Document::Parse(doc.Serialize()) == doc);
}

TEST_F(WriteApiTest, EqualityComparesWhatASaveWrites) {
  const std::string text = "section a\n{\nk = 1\njunk\n}\n";
  Document a = Document::Parse(text);
  EXPECT_TRUE(a == Document::Parse(text));
  EXPECT_TRUE(a == Document::Parse("\n# other comments\nsection a\r\n{\n  k=1 \njunk\n}"));
  EXPECT_TRUE(a != Document::Parse("section a\n{\nk = 1\n}\n"));
  EXPECT_TRUE(a != Document::Parse("section a\n{\njunk\nk = 1\n}\n"));
  EXPECT_TRUE(a != Document::Parse("section a\n{\nk = 2\njunk\n}\n"));
  EXPECT_TRUE(a != Document::Parse("section A\n{\nk = 1\njunk\n}\n"));
  EXPECT_TRUE(a != Document::Parse("junk\nsection a\n{\nk = 1\n}\n"));
  EXPECT_TRUE(a != Document::Parse(text + "junk\n"));
}

TEST_F(WriteApiTest, UnusableMarkersFallBackToTheDefaults) {
  const std::string text = "# c\nsection s\n{\nk = v\n}\n";
  Syntax blank_inside;
  blank_inside.separator = ": =";  // "k: = v" would split at the wrong place
  Syntax comment_prefix;
  comment_prefix.comment = "s";  // every section line would be a comment
  Syntax same_markers;
  same_markers.closer = "{";
  for (const Syntax& syntax : {blank_inside, comment_prefix, same_markers}) {
    Document doc = Document::Parse(text, syntax);
    ASSERT_EQ(1u, doc.size());
    EXPECT_EQ("v", doc[0].Get("k"));
    EXPECT_EQ("section s\n{\nk = v\n}\n", doc.Serialize(syntax));
  }
}

// Lines made of the pieces that have caused trouble: markers of the
// syntax in use and of the default one, control bytes, separators, blanks,
// quotes, backslashes and escapes, and now and then a long run.
class NastyLines {
 public:
  NastyLines(uint32_t seed, const Syntax& syntax) : rng_(seed) {
    // Opener and closer may be given with their line break.
    const std::string opener = syntax.opener.substr(0, syntax.opener.find('\n'));
    const std::string closer = syntax.closer.substr(0, syntax.closer.find('\n'));
    pieces_ = {syntax.keyword, syntax.keyword + " ", opener, closer,
               syntax.separator, syntax.comment, "section", "section ", "{", "}", "=", "#",
               " ", "\t", "  ", "\v", "\f", "\r", "\x01", std::string(1, '\0'), "\x7f",
               "\xff", "\xc3\xa9", "\"", "\\", "\\n", "\\x4", "\\x41", "\\q", "\\\"", "k",
               "key", "contact 9", "name", "0900*", "sectionx", ",", "a"};
  }

  // Sections whose lines are now and then replaced by nasty ones, with
  // nasty lines between them.
  std::string Text() {
    std::string text;
    for (size_t n = Pick(6); n > 0; --n) {
      for (size_t stray = Pick(3) == 0 ? Pick(3) : 0; stray > 0; --stray) AddLine(Line(), &text);
      AddLine(Mutated(pieces_[0] + " s" + std::to_string(Pick(4))), &text);
      AddLine(Mutated(pieces_[2]), &text);
      for (size_t e = Pick(5); e > 0; --e)
        AddLine(Mutated("key" + std::to_string(Pick(4)) + " " + pieces_[4] + " " + Pieces(2)),
                &text);
      AddLine(Mutated(pieces_[3]), &text);
    }
    for (size_t stray = Pick(4); stray > 0; --stray) AddLine(Line(), &text);
    if (Pick(4) == 0) text += Line();  // no line break at the end
    return text;
  }

 private:
  size_t Pick(size_t n) { return rng_() % n; }
  const std::string& Piece() { return pieces_[Pick(pieces_.size())]; }
  std::string Pieces(size_t most) {
    std::string out;
    for (size_t n = Pick(most + 1); n > 0; --n) out += Piece();
    return out;
  }
  std::string Pad() { return Pick(3) == 0 ? Pieces(1) : std::string(); }
  std::string Mutated(const std::string& line) { return Pick(5) == 0 ? Line() : line; }
  void AddLine(const std::string& line, std::string* text) {
    *text += line;
    switch (Pick(10)) {
      case 0: *text += "\r\n"; break;
      case 1: *text += "\r\r\n"; break;
      default: *text += "\n";
    }
  }

  std::string Line() {
    const std::string& keyword = pieces_[0];
    switch (Pick(12)) {
      case 0: return Pad() + keyword + " " + Pieces(3) + Pad();
      case 1: return Pad() + pieces_[2] + Pad();  // opener
      case 2: return Pad() + pieces_[3] + Pad();  // closer
      case 3:
      case 4:
      case 5: return Pad() + Pieces(2) + Pad() + pieces_[4] + Pad() + Pieces(3);
      case 6: return Pad() + Pieces(2) + pieces_[4] + " \"" + Pieces(3) + "\"";
      case 7: return Pieces(6);
      case 8: return Pick(2) ? std::string() : Pad();
      case 9: return Pad() + pieces_[5] + Pieces(3);  // comment
      case 10:
        if (Pick(50) == 0) return Pieces(2) + pieces_[4] + std::string(20000 + Pick(50000), 'x');
        return std::string(Pick(300), "xy {}=#\\\""[Pick(9)]);
      default: return "key" + std::to_string(Pick(5)) + " " + pieces_[4] + " v";
    }
  }

  std::mt19937 rng_;
  std::vector<std::string> pieces_;
};

class RandomRoundTripTest : public ::testing::Test {
 protected:
  // Generates `count` texts and checks, for each, the two save properties
  // and that the parser took only keys and names a save writes back.
  static void Check(uint32_t seed, int count, const Syntax& syntax) {
    NastyLines lines(seed, syntax);
    size_t sections = 0;
    size_t entries = 0;
    size_t verbatim = 0;
    for (int i = 0; i < count; ++i) {
      const std::string text = lines.Text();
      Document read = Document::Parse(text, syntax);
      const std::string once = read.Serialize(syntax);
      Document again = Document::Parse(once, syntax);
      ASSERT_TRUE(again == read) << "#" << i << " read:\n" << Shown(text) << "\nsaved:\n"
                                 << Shown(once);
      ASSERT_EQ(once, again.Serialize(syntax)) << "#" << i << " read:\n" << Shown(text);
      for (const Section& s : read.sections()) {
        ASSERT_TRUE(s.name.empty() || IsValidSectionName(s.name, syntax)) << Shown(text);
        for (const Entry& e : s.entries) ASSERT_TRUE(IsValidKey(e.key, syntax)) << Shown(text);
        sections += 1;
        entries += s.entries.size();
        verbatim += s.verbatim().size() + s.verbatim_before().size();
      }
      verbatim += read.verbatim_after().size();
    }
    // The generator must reach every kind of line, or the test proves little.
    EXPECT_GT(sections, static_cast<size_t>(count));
    EXPECT_GT(entries, static_cast<size_t>(count));
    EXPECT_GT(verbatim, static_cast<size_t>(count));
  }
};

TEST_F(RandomRoundTripTest, DefaultMarkers) { Check(1, 5000, Syntax()); }

TEST_F(RandomRoundTripTest, OtherMarkers) {
  Syntax brackets;
  brackets.keyword = "block";
  brackets.opener = "[\n";
  brackets.closer = "]\n";
  brackets.separator = ":";
  brackets.comment = ";";
  Check(2, 1000, brackets);
  Syntax long_markers;
  long_markers.keyword = "SECTION";
  long_markers.opener = "BEGIN";
  long_markers.closer = "END";
  long_markers.separator = ":=";
  long_markers.comment = "//";
  Check(3, 1000, long_markers);
}

}  // namespace
}  // namespace cfg
