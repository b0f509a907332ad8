#ifndef CMCFG_PLATFORM_BASE_DOCUMENT_PARSER_H_
#define CMCFG_PLATFORM_BASE_DOCUMENT_PARSER_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/document_lexer.h"

namespace cfg {

// The grammar of the multi-section format: which line may follow which.
// It fills a Document from the text the document already owns, keeping
// every well-formed section and entry and reporting the rest as
// diagnostics. The document must outlive the parser.
class Parser {
 public:
  // At most this many diagnostics are kept; a file of garbage would
  // otherwise produce one per line.
  static constexpr size_t kMaxDiagnostics = 100;

  Parser(Document* doc, const Syntax& syntax);
  void Run();

 private:
  enum State { kOutside, kBeforeOpener, kInside };

  void OnSection(const Token& token);
  void OnOpener(const Token& token);
  void OnCloser(const Token& token);
  void OnEntry(const Token& token);
  void StartSection(const Token& token);
  void EndSection();
  std::string_view DecodeValue(const Token& token);
  void Report(const Token& token, std::string_view spot, std::string message);

  Document* const doc_;
  const Markers markers_;
  State state_ = kOutside;
  Token open_section_;          // header line of the section being filled
  std::vector<Entry> entries_;  // entries of that section, moved in at its end
  std::string scratch_;
};

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_DOCUMENT_PARSER_H_
