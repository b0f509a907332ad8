#ifndef CMCFG_PLATFORM_BASE_DOCUMENT_LEXER_H_
#define CMCFG_PLATFORM_BASE_DOCUMENT_LEXER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/base/document.h"

namespace cfg {

// The markers of a Syntax made ready for scanning. Opener and closer are
// always whole lines, so a trailing line break given with a marker ("{\n")
// is dropped; an empty marker falls back to the default one.
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
  std::string_view text;   // the line without its line break
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
  bool IsSectionLine(std::string_view trimmed) const;
  void SplitEntry(std::string_view trimmed, Token* token) const;

  const char* pos_;
  const char* end_;
  uint32_t line_ = 0;
  const Markers& markers_;
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

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_DOCUMENT_LEXER_H_
