#include "platform/base/document.h"

#include <gtest/gtest.h>

#include <string>

namespace cfg {
namespace {

class DocumentTest : public ::testing::Test {
 protected:
  static Document RoundTrip(const Document& doc) { return Document::Parse(doc.Serialize()); }

  static std::string Messages(const Document& doc) {
    std::string out;
    for (const Diagnostic& d : doc.diagnostics())
      out += std::to_string(d.line) + ":" + d.message + "\n";
    return out;
  }
};

TEST_F(DocumentTest, ParsesSectionsEntriesBlanksCommentsAndCrlf) {
  Document doc = Document::Parse(
      "# users\r\n"
      "section Alice Smith \r\n"
      "{\r\n"
      "  name =  alice  \r\n"
      "\r\n"
      "   # not an entry = x\r\n"
      "pattern = \\?1?#trailing\r\n"
      "empty =\r\n"
      "}\r\n"
      "section b\n{\nk=v=w\n}\n");
  EXPECT_TRUE(doc.diagnostics().empty()) << Messages(doc);
  ASSERT_EQ(2u, doc.size());
  const Section& a = doc[0];
  EXPECT_EQ("Alice Smith", a.name);
  EXPECT_EQ(2u, a.line);
  ASSERT_EQ(3u, a.entries.size());
  EXPECT_EQ("alice", a.Get("name"));
  EXPECT_EQ(4u, a.Find("name")->line);
  EXPECT_EQ("\\?1?#trailing", a.Get("pattern"));
  EXPECT_TRUE(a.Has("empty"));
  EXPECT_EQ("", a.Get("empty"));
  EXPECT_FALSE(a.Has("# not an entry"));
  EXPECT_EQ("v=w", doc.Find("b")->Get("k"));
}

TEST_F(DocumentTest, DuplicatesAreKeptAndLookupsReturnTheFirst) {
  Document doc = Document::Parse("section s\n{\nk = 1\nk = 2\n}\nsection s\n{\nk = 3\n}\n");
  ASSERT_EQ(2u, doc.size());
  EXPECT_EQ(&doc[0], doc.Find("s"));
  EXPECT_EQ("1", doc.Find("s")->Get("k"));
  EXPECT_EQ(2u, doc[0].entries.size());
}

// Large enough to be indexed: Find agrees with a scan for the first of
// each name through adds and erases, and a moved document keeps finding.
TEST_F(DocumentTest, FindReturnsTheFirstOfEachNameThroughAddsAndErases) {
  std::string text;
  for (int i = 0; i < 40; ++i) text += "section s" + std::to_string(i % 30) + "\n{\n}\n";
  Document doc = Document::Parse(text);
  auto expect_first = [&](const Document& d) {
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
  expect_first(doc);
  Document moved = std::move(doc);
  expect_first(moved);
}

TEST_F(DocumentTest, HonoursCustomMarkersGivenAsWholeLines) {
  Syntax syntax;
  syntax.keyword = "block";
  syntax.opener = "[\n";
  syntax.closer = "]\n";
  syntax.separator = ":";
  syntax.comment = ";";
  Document doc = Document::Parse("; c\nblock x\n[\nurl: sip:a@b:5060\n]\n", syntax);
  EXPECT_TRUE(doc.diagnostics().empty()) << Messages(doc);
  ASSERT_NE(nullptr, doc.Find("x"));
  EXPECT_EQ("sip:a@b:5060", doc.Find("x")->Get("url"));
  EXPECT_EQ("block x\n[\nurl : sip:a@b:5060\n]\n", doc.Serialize(syntax));
}

TEST_F(DocumentTest, QuotedValuesDecodeEscapesAndOtherValuesStayLiteral) {
  Document doc = Document::Parse(
      "section s\n{\n"
      "q = \"a\\\\b\\\"c\\n\\r\\t\\x41\\x7e\"\n"
      "lit = a\\nb\n"
      "half = \"open\n"
      "one = \"\n"
      "}\n");
  EXPECT_TRUE(doc.diagnostics().empty()) << Messages(doc);
  const Section& s = doc[0];
  EXPECT_EQ(std::string("a\\b\"c\n\r\tA~"), s.Get("q"));
  EXPECT_EQ("a\\nb", s.Get("lit"));
  EXPECT_EQ("\"open", s.Get("half"));
  EXPECT_EQ("\"", s.Get("one"));
}

TEST_F(DocumentTest, RoundTripKeepsEveryValueIdentical) {
  const std::string values[] = {
      "plain",         "\\?1?",        " lead",   "trail\t",       "\"quoted\"",
      "\"half",        "line\nbreak",  "cr\r",    std::string("nul\0x", 5),
      "\x01\x7f\xff",  "# not comment", "{",      "}",             "a = b",
      "\\",            "",             "ünïcode", "end\\",
  };
  Document doc;
  Section& s = doc.Add("values");
  for (size_t i = 0; i < sizeof(values) / sizeof(values[0]); ++i)
    doc.Set(s, "k" + std::to_string(i), values[i]);

  Document back = RoundTrip(doc);
  EXPECT_TRUE(back.diagnostics().empty()) << Messages(back);
  ASSERT_EQ(1u, back.size());
  ASSERT_EQ(doc[0].entries.size(), back[0].entries.size());
  for (size_t i = 0; i < doc[0].entries.size(); ++i)
    EXPECT_EQ(doc[0].entries[i].value, back[0].entries[i].value) << "value " << i;
}

TEST_F(DocumentTest, ValueCannotCloseItsSectionOrOpenAnother) {
  Document doc;
  doc.Set(doc.Add("victim"), "note", "x\n}\nsection injected\n{\nevil = 1");
  std::string text = doc.Serialize();
  EXPECT_EQ(std::string::npos, text.find("\nsection injected"));
  Document back = Document::Parse(text);
  ASSERT_EQ(1u, back.size());
  EXPECT_EQ(nullptr, back.Find("injected"));
  EXPECT_EQ(doc[0].Get("note"), back[0].Get("note"));
}

TEST_F(DocumentTest, SetRefusesKeysThatWouldNotReadBackAndKeepsTheRest) {
  Document doc;
  Section& s = doc.Add("s");
  const std::string refused[] = {"",          " k",        "k ",        "a=b",  "line\nbreak",
                                 "#k",        "section",   "section x", "section\tx",
                                 "v\vtab",    std::string("nul\0", 4), "\x01#",
                                 "del\x7f",  "cr\r"};
  for (const std::string& bad : refused) {
    EXPECT_FALSE(IsValidKey(bad)) << bad;
    EXPECT_FALSE(doc.Set(s, bad, "v")) << bad;
  }
  EXPECT_TRUE(s.entries.empty());
  // Keys that merely look like markers read back as themselves.
  for (const char* good : {"section_count", "sectionx", "user name", "{", "}", "k#", "tab\tin", "\xff\xfe"}) {
    EXPECT_TRUE(IsValidKey(good)) << good;
    EXPECT_TRUE(doc.Set(s, good, "v")) << good;
  }
  Document back = RoundTrip(doc);
  EXPECT_TRUE(back == doc) << doc.Serialize();
  EXPECT_TRUE(back.diagnostics().empty()) << Messages(back);
}

TEST_F(DocumentTest, KeyValidityFollowsTheMarkers) {
  Syntax syntax;
  syntax.keyword = "block";
  syntax.separator = ":=";
  syntax.comment = "//";
  EXPECT_TRUE(IsValidKey("a=b", syntax));
  EXPECT_TRUE(IsValidKey("section", syntax));
  EXPECT_TRUE(IsValidKey("/x", syntax));
  EXPECT_TRUE(IsValidKey("a:", syntax));  // written "a: := v", the separator comes after the blank
  EXPECT_FALSE(IsValidKey("a:=b", syntax));
  EXPECT_FALSE(IsValidKey("//x", syntax));
  EXPECT_FALSE(IsValidKey("block", syntax));
  EXPECT_FALSE(IsValidKey("block 1", syntax));
}

TEST_F(DocumentTest, SetReplacesTheFirstEntryAndRemoveDropsAll) {
  Document doc = Document::Parse("section s\n{\nk = 1\nother = x\nk = 2\n}\n");
  Section& s = doc[0];
  doc.Set(s, "k", "new");
  doc.Set(s, "added", "v");
  EXPECT_EQ("new", s.Get("k"));
  EXPECT_EQ("2", s.entries[2].value);
  EXPECT_EQ("added", s.entries.back().key);
  doc.Remove(s, "k");
  ASSERT_EQ(2u, s.entries.size());
  EXPECT_EQ("other", s.entries[0].key);
}

TEST_F(DocumentTest, AddRefusesNamesThatWouldNotReadBack) {
  Document doc;
  for (const std::string& bad : {std::string(""), std::string(" lead"), std::string("trail\t"),
                                 std::string("two\nlines"), std::string("contact 9\x01"),
                                 std::string("v\vtab"), std::string("nul\0", 4)}) {
    EXPECT_FALSE(IsValidSectionName(bad)) << bad;
    EXPECT_EQ(nullptr, doc.TryAdd(bad)) << bad;
    // Add hands out a scratch section that is never saved.
    Section& scratch = doc.Add(bad);
    EXPECT_TRUE(doc.Set(scratch, "k", "v"));
  }
  EXPECT_TRUE(doc.empty());
  EXPECT_EQ("", doc.Serialize());

  for (const char* good : {"DeviceTone_Busy 2 = x", "{", "}", "# not a comment", "Alice\tSmith",
                           "section x"}) {
    EXPECT_TRUE(IsValidSectionName(good)) << good;
    ASSERT_NE(nullptr, doc.TryAdd(good)) << good;
  }
  Document back = RoundTrip(doc);
  EXPECT_TRUE(back == doc) << doc.Serialize();
  ASSERT_EQ(6u, back.size());
  EXPECT_EQ("Alice\tSmith", back[4].name);
  EXPECT_EQ("section x", back[5].name);
}

TEST_F(DocumentTest, ViewsSurviveMovesOfTheDocument) {
  Document doc = Document::Parse("section s\n{\nk = \"decoded\\tvalue\"\nplain = p\n}\n");
  doc.Set(doc[0], "later", "set later");
  Document moved(std::move(doc));
  Document assigned;
  assigned = std::move(moved);
  EXPECT_EQ("decoded\tvalue", assigned[0].Get("k"));
  EXPECT_EQ("p", assigned[0].Get("plain"));
  EXPECT_EQ("set later", assigned[0].Get("later"));
}

TEST_F(DocumentTest, ReplacingALargeDocumentKeepsTheNewOneIntact) {
  // Large enough for the index to live in mapped chunks of its own.
  std::string big;
  for (int i = 0; i < 60000; ++i)
    big += "section s" + std::to_string(i) + "\n{\nkey = value " + std::to_string(i) +
           "\nother = \"q\\tq\"\n}\n";
  Document doc = Document::Parse(big);
  doc.Set(doc[59999], "grown", "after parse");
  doc = Document::Parse(big);  // the old tables go first, then their memory
  ASSERT_EQ(60000u, doc.size());
  EXPECT_EQ("value 59999", doc[59999].Get("key"));
  EXPECT_EQ("q\tq", doc[12345].Get("other"));
  EXPECT_FALSE(doc[59999].Has("grown"));
  doc = Document::Parse("section small\n{\n}\n");
  EXPECT_EQ("small", doc[0].name);
}

TEST_F(DocumentTest, EraseIgnoresIndexesOutOfRange) {
  Document doc = Document::Parse("section a\n{\n}\nsection b\n{\n}\n");
  doc.Erase(5);
  doc.Erase(0);
  ASSERT_EQ(1u, doc.size());
  EXPECT_EQ("b", doc[0].name);
}

}  // namespace
}  // namespace cfg
