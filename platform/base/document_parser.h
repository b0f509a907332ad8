#ifndef CMCFG_PLATFORM_BASE_DOCUMENT_PARSER_H_
#define CMCFG_PLATFORM_BASE_DOCUMENT_PARSER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/document_lexer.h"

namespace cfg {

// The grammar of the multi-section format: which line may follow which.
// It fills a Document from the text the document already owns, keeping
// every well-formed section and entry, and every other line that is not a
// comment or blank as a verbatim line, reporting them as diagnostics. An
// entry or section is taken only when the serializer writes it back as
// read. The document must outlive the parser.
class Parser {
 public:
  // At most this many diagnostics are kept; a file of garbage would
  // otherwise produce one per line.
  static constexpr size_t kMaxDiagnostics = 100;

  Parser(Document* doc, const Syntax& syntax);
  void Run();

 private:
  // kRefused: inside a section whose name was refused; its lines are kept
  // verbatim outside any section until its closer or the next section line.
  enum State { kOutside, kBeforeOpener, kInside, kRefused };

  void OnSection(const Token& token);
  void OnOpener(const Token& token);
  void OnCloser(const Token& token);
  void OnEntry(const Token& token);
  void OnJunk(const Token& token);
  void StartSection(const Token& token);
  // Ends the open section; `end_line` is its closer's line, or its last
  // line when it has no closer.
  void EndSection(uint32_t end_line);
  // Keeps the line verbatim where it stands: in the open section's body, or
  // outside before the next section.
  void KeepInBody(const Token& token);
  void KeepOutside(const Token& token);
  std::string_view DecodeValue(const Token& token);
  void Report(const Token& token, std::string_view spot, std::string message);

  Document* const doc_;
  const Markers markers_;
  State state_ = kOutside;
  Token open_section_;          // header line of the section being filled
  std::vector<Entry> entries_;  // entries of that section, moved in at its end
  VerbatimLines body_;          // verbatim lines of that section's body
  VerbatimLines before_;        // verbatim lines before its header
  VerbatimLines outside_;       // verbatim lines since the last section line
  std::string scratch_;
  uint32_t last_line_ = 0;      // line of the token being handled
};

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_DOCUMENT_PARSER_H_
