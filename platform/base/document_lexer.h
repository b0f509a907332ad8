#ifndef CMCFG_PLATFORM_BASE_DOCUMENT_LEXER_H_
#define CMCFG_PLATFORM_BASE_DOCUMENT_LEXER_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/base/document.h"

namespace cfg {

// The markers of a Syntax made ready for scanning. Opener and closer are
// always whole lines, so a trailing line break given with a marker ("{\n")
// is dropped. A marker that is empty or holds a blank or a control
// character falls back to the default one, and a set of markers in which
// one line the writer produces would read as another (a keyword, opener or
// closer that starts with the comment marker, an opener equal to the closer
// or to the keyword, ...) falls back to the default set: with either, what
// is saved could not be read back.
struct Markers {
  explicit Markers(const Syntax& syntax);

  std::string keyword;
  std::string opener;
  std::string closer;
  std::string separator;
  std::string comment;
};

// One line of the text, classified. The views point into the scanned text.
struct Token {
  enum Kind { kBlank, kComment, kSection, kOpener, kCloser, kEntry, kJunk };

  Kind kind = kBlank;
  uint32_t line = 0;       // 1-based
  std::string_view text;   // the line without its line break and trailing '\r's
  std::string_view name;   // kSection: the name; kEntry: the key (both trimmed)
  std::string_view value;  // kEntry: the value as written, trimmed
  std::string_view separator;  // kEntry: the separator within text
};

// Cuts a text into classified lines in one pass; it knows nothing of the
// grammar (which line may follow which). The text and the markers must
// outlive the lexer.
class Lexer {
 public:
  Lexer(std::string_view input, const Markers& markers);

  // Reads the next line into *token; false at the end of the input.
  bool Next(Token* token);

 private:
  void Classify(std::string_view trimmed, Token* token) const;
  void SplitEntry(std::string_view trimmed, Token* token) const;

  const char* pos_;
  const char* end_;
  uint32_t line_ = 0;
  const Markers& markers_;
  // The markers' first bytes: most lines differ from every marker there,
  // and a test of one byte per marker sorts them without a call.
  char comment0_;
  char keyword0_;
  char opener0_;
  char closer0_;
};

// Blank characters around keys, values, names and markers.
inline bool IsBlank(char c) { return c == ' ' || c == '\t'; }

inline std::string_view TrimBlanks(std::string_view text) {
  size_t begin = 0;
  size_t end = text.size();
  while (begin < end && IsBlank(text[begin])) ++begin;
  while (end > begin && IsBlank(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

// A control character that a key or section name may not hold: any but
// the tab, which reads back as written inside a name (blanks are trimmed
// only at its ends). Any other one would be written as itself (a line
// break, a '\r' that ends a line, a NUL) or was read as something the
// writer cannot reproduce.
inline bool IsNameControl(char c) {
  unsigned char u = static_cast<unsigned char>(c);
  return (u < 0x20 && c != '\t') || u == 0x7F;
}

// Offset of the first name control character of `text`, or npos.
size_t FindNameControl(std::string_view text);

// The high bit of each byte of `w` that is below 0x20 or equal to 0x7F
// (and perhaps of bytes above such a one; only zero versus non-zero counts).
inline uint64_t NameControlBits(const char* p) {
  constexpr uint64_t kOnes = 0x0101010101010101u;
  uint64_t w;
  std::memcpy(&w, p, 8);
  const uint64_t del = w ^ (kOnes * 0x7F);
  return (((w - kOnes * 0x20) & ~w) | ((del - kOnes) & ~del)) & (kOnes * 0x80);
}

// True when `text` holds a name control character. The parser asks this of
// every key, so texts of eight bytes or more are tested a word at a time
// (the last word overlapping the one before), and only on a hit (a tab,
// usually) byte by byte.
inline bool HasNameControl(std::string_view text) {
  const char* p = text.data();
  const size_t n = text.size();
  if (n < 8) {
    bool found = false;
    for (char c : text) found |= IsNameControl(c);
    return found;
  }
  uint64_t hit = NameControlBits(p + n - 8);
  for (size_t i = 0; i + 8 < n; i += 8) hit |= NameControlBits(p + i);
  return hit != 0 && FindNameControl(text) != std::string_view::npos;
}

// True when a trimmed line starting with `text` reads as a section line:
// the keyword alone or followed by a blank.
bool StartsSectionLine(std::string_view text, const Markers& markers);

// True when `key = value` written by the serializer reads back as an entry
// with exactly this key, whatever the value: not empty, no name control
// character, no blank at either end, no separator, not starting with the
// comment marker, not reading as a section line.
bool KeyReadsBack(std::string_view key, const Markers& markers);

// True when a section line written with `name` reads back with exactly
// this name: no name control character and no blank at either end. The empty
// name qualifies (the keyword alone).
bool NameReadsBack(std::string_view name);

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_DOCUMENT_LEXER_H_
