#include "platform/base/document_lexer.h"

#include <gtest/gtest.h>

#include <string>

namespace cfg {
namespace {

// The word-at-a-time test must agree with the byte-by-byte definition for
// every byte value, at every offset, in texts shorter and longer than a word.
TEST(NameControlTest, WordTestAgreesWithTheDefinitionEverywhere) {
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
  // Bytes around the limits next to each other, where a borrow could spill.
  EXPECT_FALSE(HasNameControl("\x20\x20\x20\x20\x20\x20\x20\x20\x20\x80\xff\x7e\t"));
  EXPECT_TRUE(HasNameControl("\t\t\t\t\t\t\t\t\x1f"));
  EXPECT_FALSE(HasNameControl(""));
}

TEST(NameControlTest, KeysAndNamesThatReadBack) {
  const Markers markers{Syntax()};
  EXPECT_TRUE(KeyReadsBack("a\tb", markers));
  EXPECT_FALSE(KeyReadsBack("a\x1f", markers));
  EXPECT_FALSE(KeyReadsBack("section\tx", markers));
  EXPECT_TRUE(NameReadsBack(""));
  EXPECT_TRUE(NameReadsBack("Alice\tSmith"));
  EXPECT_FALSE(NameReadsBack("x\x7f"));
  EXPECT_FALSE(NameReadsBack("\tx"));
}

}  // namespace
}  // namespace cfg
