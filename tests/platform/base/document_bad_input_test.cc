#include <gtest/gtest.h>

#include <string>

#include "platform/base/document.h"

namespace cfg {
namespace {

// A literal with the NUL bytes it holds.
template <size_t N>
std::string Bytes(const char (&text)[N]) {
  return std::string(text, N - 1);
}

class BadInputTest : public ::testing::Test {
 protected:
  static std::string Formatted(const Document& doc, size_t i) {
    return i < doc.diagnostics().size() ? doc.diagnostics()[i].Format("users.cfg") : "<none>";
  }
};

TEST_F(BadInputTest, EntryWithoutSeparatorIsReportedWithCaretAndKeptVerbatim) {
  Document doc = Document::Parse("section s\n{\n  just words\nk = v\n}\n");
  ASSERT_EQ(1u, doc.diagnostics().size());
  EXPECT_EQ("users.cfg:3: expected 'key = value'\n  just words\n  ^", Formatted(doc, 0));
  EXPECT_EQ("v", doc[0].Get("k"));
  ASSERT_EQ(1u, doc[0].verbatim().size());
  EXPECT_EQ("  just words", doc[0].verbatim()[0].text);
  EXPECT_EQ(0u, doc[0].verbatim()[0].position);
  EXPECT_EQ(3u, doc[0].verbatim()[0].line);
  EXPECT_EQ("section s\n{\n  just words\nk = v\n}\n", doc.Serialize());
}

TEST_F(BadInputTest, MissingCloserEndsSectionAtNextSectionAndAtEnd) {
  Document doc = Document::Parse("section a\n{\nx = 1\nsection b\n{\ny = 2\n");
  ASSERT_EQ(2u, doc.size());
  EXPECT_EQ("1", doc.Find("a")->Get("x"));
  EXPECT_FALSE(doc.Find("a")->Has("y"));
  EXPECT_EQ("2", doc.Find("b")->Get("y"));
  ASSERT_EQ(2u, doc.diagnostics().size());
  EXPECT_EQ("users.cfg:4: expected '}' before the next section\nsection b\n^", Formatted(doc, 0));
  EXPECT_EQ("users.cfg:4: section is not closed with '}'\nsection b\n         ^",
            Formatted(doc, 1));
}

TEST_F(BadInputTest, StrayLinesAreReportedAndKeptWhereTheyStood) {
  Document doc = Document::Parse(
      "orphan = 1\n"   // 1: outside any section
      "}\n"            // 2
      "section s\n"    // 3
      "early = 2\n"    // 4: opener forgotten; kept
      "{\n"            // 5: now unexpected
      " = nokey\n"     // 6
      "k = \"a\\qb\"\n"  // 7: unknown escape kept literally
      "}\n"
      "{\n");          // 9: after the section
  ASSERT_EQ(1u, doc.size());
  EXPECT_EQ("2", doc[0].Get("early"));
  EXPECT_EQ("a\\qb", doc[0].Get("k"));
  EXPECT_EQ(2u, doc[0].entries.size());
  const auto& d = doc.diagnostics();
  ASSERT_EQ(7u, d.size());
  EXPECT_EQ("entry outside a section", d[0].message);
  EXPECT_EQ("unexpected '}'", d[1].message);
  EXPECT_EQ("expected '{'", d[2].message);
  EXPECT_EQ("unexpected '{'", d[3].message);
  EXPECT_EQ("users.cfg:6: missing key before '='\n = nokey\n ^", Formatted(doc, 4));
  EXPECT_EQ("users.cfg:7: invalid escape sequence\nk = \"a\\qb\"\n      ^", Formatted(doc, 5));
  EXPECT_EQ("users.cfg:9: unexpected '{'\n{\n^", Formatted(doc, 6));

  // Every line is written back; none of the kept ones is read on the way.
  EXPECT_EQ(
      "orphan = 1\n}\nsection s\n{\nearly = 2\n{\n = nokey\nk = a\\qb\n}\n\n{\n",
      doc.Serialize());
  Document back = Document::Parse(doc.Serialize());
  EXPECT_TRUE(back == doc);
  EXPECT_EQ(doc.Serialize(), back.Serialize());
}

TEST_F(BadInputTest, KeysThatWouldBeWrittenAsSomethingElseAreKeptVerbatim) {
  Document doc = Document::Parse(Bytes(
      "section s\n{\n"
      "section=x\n"          // 3: would be written "section = x", a section line
      "\vsection y = 1\n"   // 4: would be written " section y = 1"
      "\x01# = 2\n"         // 5: would be written " # = 2", a comment
      "nul\0 = 3\n"         // 6
      "a\tb = 4\n"          // a tab inside a key reads back as written
      "}\n"));
  ASSERT_EQ(1u, doc.size());
  ASSERT_EQ(1u, doc[0].entries.size());
  EXPECT_EQ("4", doc[0].Get("a\tb"));
  ASSERT_EQ(4u, doc[0].verbatim().size());
  EXPECT_EQ("section=x", doc[0].verbatim()[0].text);
  EXPECT_EQ(Bytes("nul\0 = 3"), doc[0].verbatim()[3].text);
  ASSERT_EQ(4u, doc.diagnostics().size());
  EXPECT_EQ(
      "users.cfg:3: key 'section' would be written as a section line; the line is kept as "
      "written, not read\nsection=x\n^",
      Formatted(doc, 0));
  EXPECT_EQ(
      "users.cfg:4: control character in key; the line is kept as written, not read\n"
      "?section y = 1\n^",
      Formatted(doc, 1));
  EXPECT_EQ(6u, doc.diagnostics()[3].line);
  EXPECT_EQ(3u, doc.diagnostics()[3].column);
  EXPECT_NE(std::string::npos, doc.Serialize().find(Bytes("\n\x01# = 2\nnul\0 = 3\n")));
}

TEST_F(BadInputTest, SectionWithControlCharacterInItsNameIsKeptWholeAndNotRead) {
  Document doc = Document::Parse(
      "section a\n{\n}\n"
      "section contact 9\x01\n{\nname = 9\n{\n}\n"  // 4-8: kept, header to closer
      "}\n"                                          // 9: an ordinary stray closer
      "section b\n{\n"
      "k = 1\n"
      "section c\x7f\n"                             // 13: ends b, kept to the end
      "d = 1\n");
  ASSERT_EQ(2u, doc.size());
  EXPECT_EQ(nullptr, doc.Find("contact 9"));
  EXPECT_EQ("1", doc.Find("b")->Get("k"));
  EXPECT_TRUE(doc[0].verbatim_before().empty());
  ASSERT_EQ(6u, doc[1].verbatim_before().size());
  EXPECT_EQ("section contact 9\x01", doc[1].verbatim_before()[0].text);
  EXPECT_EQ("}", doc[1].verbatim_before()[5].text);
  ASSERT_EQ(2u, doc.verbatim_after().size());
  EXPECT_EQ("d = 1", doc.verbatim_after()[1].text);
  const auto& d = doc.diagnostics();
  ASSERT_EQ(4u, d.size());
  EXPECT_EQ(
      "users.cfg:4: control character in section name; the section is kept as written, not "
      "read\nsection contact 9?\n                 ^",
      Formatted(doc, 0));
  EXPECT_EQ("unexpected '}'", d[1].message);
  EXPECT_EQ("expected '}' before the next section", d[2].message);
  EXPECT_EQ(13u, d[3].line);

  Document back = Document::Parse(doc.Serialize());
  EXPECT_TRUE(back == doc) << doc.Serialize();
  EXPECT_EQ(nullptr, back.Find("contact 9"));
}

TEST_F(BadInputTest, SectionWithoutNameStillHoldsItsEntries) {
  Document doc = Document::Parse("section a\n{\n}\nsection\n{\nk = v\n}\n");
  ASSERT_EQ(2u, doc.size());
  EXPECT_EQ("", doc[1].name);
  EXPECT_EQ("v", doc[1].Get("k"));
  ASSERT_EQ(1u, doc.diagnostics().size());
  EXPECT_EQ("users.cfg:4: section has no name\nsection\n       ^", Formatted(doc, 0));
}

TEST_F(BadInputTest, TruncatedFileKeepsWhatWasComplete) {
  const std::string full = "section a\n{\nk = 1\n}\nsection b\n{\nlong_key = long value\n}\n";
  for (size_t cut = 0; cut <= full.size(); ++cut) {
    Document doc = Document::Parse(full.substr(0, cut));
    if (cut >= 18) {
      ASSERT_GE(doc.size(), 1u) << cut;
      EXPECT_EQ("1", doc[0].Get("k")) << cut;
    }
    for (const Section& s : doc.sections()) EXPECT_LE(s.entries.size(), 1u);
  }
}

TEST_F(BadInputTest, BinaryGarbageNeitherCrashesNorFloodsDiagnostics) {
  std::string garbage;
  unsigned state = 12345;
  for (int i = 0; i < 200000; ++i) {
    state = state * 1103515245u + 12345u;
    garbage.push_back(static_cast<char>(state >> 16));
  }
  garbage += std::string("\nsection ok\n{\nk = v\n}\n", 21);
  garbage.insert(0, std::string(10, '\0'));
  Document doc = Document::Parse(garbage);
  ASSERT_NE(nullptr, doc.Find("ok"));
  EXPECT_EQ("v", doc.Find("ok")->Get("k"));
  EXPECT_LE(doc.diagnostics().size(), 101u);
  for (const Diagnostic& d : doc.diagnostics()) {
    EXPECT_LE(d.text.size(), 200u);
    EXPECT_EQ(std::string::npos, d.text.find('\0'));
  }
}

TEST_F(BadInputTest, HugeLineIsReadAndQuotedShort) {
  std::string big(1 << 20, 'x');
  Document doc = Document::Parse("section s\n{\nbig = " + big + "\n" + big + "\n}\n");
  EXPECT_EQ(big.size(), doc[0].Get("big").size());
  ASSERT_EQ(1u, doc.diagnostics().size());
  EXPECT_LT(doc.diagnostics()[0].Format("f").size(), 500u);
}

}  // namespace
}  // namespace cfg
