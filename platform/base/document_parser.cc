#include "platform/base/document_parser.h"

#include <utility>

#include "platform/base/escaping.h"

namespace cfg {

namespace {

// Diagnostics quote at most this much of the offending line.
constexpr size_t kMaxQuotedLine = 160;

// The quoted line, printable so that the caret below it lines up.
std::string PrintableLine(std::string_view text) {
  std::string out(text.substr(0, kMaxQuotedLine));
  for (char& c : out) {
    unsigned char u = static_cast<unsigned char>(c);
    if (c == '\t') c = ' ';
    else if (u < 0x20 || u == 0x7F) c = '?';
  }
  return out;
}

}  // namespace

Parser::Parser(Document* doc, const Syntax& syntax) : doc_(doc), markers_(syntax) {}

void Parser::Run() {
  // Sections are rarely shorter than 64 bytes. Reserving address space
  // costs nothing until it is touched, while growing by doubling would copy
  // and page in the table again and again on large files.
  doc_->sections_.reserve(doc_->text_.size() / 64 + 4);
  Lexer lexer(doc_->text_, markers_);
  Token token;
  while (lexer.Next(&token)) {
    switch (token.kind) {
      case Token::kBlank:
      case Token::kComment:
        break;
      case Token::kSection:
        OnSection(token);
        break;
      case Token::kOpener:
        OnOpener(token);
        break;
      case Token::kCloser:
        OnCloser(token);
        break;
      case Token::kEntry:
        OnEntry(token);
        break;
      case Token::kJunk:
        Report(token, TrimBlanks(token.text),
               "expected 'key " + markers_.separator + " value'");
        break;
    }
  }
  if (state_ != kOutside) {
    Report(open_section_, open_section_.text.substr(open_section_.text.size()),
           "section is not closed with '" + markers_.closer + "'");
    EndSection();
  }
}

void Parser::OnSection(const Token& token) {
  if (state_ != kOutside) {
    Report(token, TrimBlanks(token.text),
           "expected '" + markers_.closer + "' before the next section");
    EndSection();
  }
  StartSection(token);
}

void Parser::OnOpener(const Token& token) {
  if (state_ == kBeforeOpener) {
    state_ = kInside;
    return;
  }
  Report(token, TrimBlanks(token.text), "unexpected '" + markers_.opener + "'");
}

void Parser::OnCloser(const Token& token) {
  if (state_ == kOutside) {
    Report(token, TrimBlanks(token.text), "unexpected '" + markers_.closer + "'");
    return;
  }
  if (state_ == kBeforeOpener)
    Report(token, TrimBlanks(token.text), "expected '" + markers_.opener + "'");
  EndSection();
}

void Parser::OnEntry(const Token& token) {
  if (state_ == kOutside) {
    Report(token, TrimBlanks(token.text), "entry outside a section");
    return;
  }
  if (state_ == kBeforeOpener) {
    // Keep the entries of a section whose opener was forgotten.
    Report(token, TrimBlanks(token.text), "expected '" + markers_.opener + "'");
    state_ = kInside;
  }
  if (token.name.empty()) {
    Report(token, token.separator, "missing key before '" + markers_.separator + "'");
    return;
  }
  entries_.push_back(Entry{token.name, DecodeValue(token), token.line});
}

void Parser::StartSection(const Token& token) {
  if (token.name.empty()) Report(token, token.name, "section has no name");
  open_section_ = token;
  state_ = kBeforeOpener;
  entries_.clear();
}

void Parser::EndSection() {
  Section section(doc_->memory_.get());
  section.name = open_section_.name;
  section.line = open_section_.line;
  // An exact-size copy: one allocation per section instead of a growing
  // vector's several.
  section.entries.assign(entries_.begin(), entries_.end());
  doc_->sections_.push_back(std::move(section));
  entries_.clear();
  state_ = kOutside;
}

std::string_view Parser::DecodeValue(const Token& token) {
  std::string_view raw = token.value;
  if (!IsQuoted(raw)) return raw;
  size_t bad = 0;
  if (!Unescape(raw.substr(1, raw.size() - 2), &scratch_, &bad))
    Report(token, raw.substr(1 + bad), "invalid escape sequence");
  doc_->arena_.push_back(scratch_);
  return doc_->arena_.back();
}

void Parser::Report(const Token& token, std::string_view spot, std::string message) {
  std::vector<Diagnostic>& diagnostics = doc_->diagnostics_;
  if (diagnostics.size() > kMaxDiagnostics) return;
  Diagnostic d;
  d.line = token.line;
  if (diagnostics.size() == kMaxDiagnostics) {
    d.message = "too many problems; the rest are not reported";
  } else {
    d.message = std::move(message);
    d.text = PrintableLine(token.text);
    size_t column = static_cast<size_t>(spot.data() - token.text.data());
    d.column = static_cast<uint32_t>(column < d.text.size() ? column : d.text.size());
  }
  diagnostics.push_back(std::move(d));
}

}  // namespace cfg
