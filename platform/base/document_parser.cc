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
    last_line_ = token.line;
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
        OnJunk(token);
        break;
    }
  }
  if (state_ == kBeforeOpener || state_ == kInside) {
    Report(open_section_, open_section_.text.substr(open_section_.text.size()),
           "section is not closed with '" + markers_.closer + "'");
    EndSection(last_line_);
  }
  doc_->verbatim_after_ = std::move(outside_);
}

void Parser::OnSection(const Token& token) {
  if (state_ == kBeforeOpener || state_ == kInside) {
    Report(token, TrimBlanks(token.text),
           "expected '" + markers_.closer + "' before the next section");
    EndSection(token.line - 1);
  }
  size_t bad = FindNameControl(token.name);
  if (bad != std::string_view::npos) {
    // Written back under any other name it would be another section (a
    // "contact 9" with a control character after it would become contact 9).
    Report(token, token.name.substr(bad),
           "control character in section name; the section is kept as written, not read");
    state_ = kRefused;
    KeepOutside(token);
    return;
  }
  StartSection(token);
}

void Parser::OnOpener(const Token& token) {
  switch (state_) {
    case kBeforeOpener:
      state_ = kInside;
      return;
    case kRefused:
      KeepOutside(token);
      return;
    case kOutside:
      Report(token, TrimBlanks(token.text), "unexpected '" + markers_.opener + "'");
      KeepOutside(token);
      return;
    case kInside:
      Report(token, TrimBlanks(token.text), "unexpected '" + markers_.opener + "'");
      KeepInBody(token);
      return;
  }
}

void Parser::OnCloser(const Token& token) {
  switch (state_) {
    case kRefused:
      KeepOutside(token);
      state_ = kOutside;
      return;
    case kOutside:
      Report(token, TrimBlanks(token.text), "unexpected '" + markers_.closer + "'");
      KeepOutside(token);
      return;
    case kBeforeOpener:
      Report(token, TrimBlanks(token.text), "expected '" + markers_.opener + "'");
      EndSection(token.line);
      return;
    case kInside:
      EndSection(token.line);
      return;
  }
}

void Parser::OnEntry(const Token& token) {
  if (state_ == kRefused) {
    KeepOutside(token);
    return;
  }
  if (state_ == kOutside) {
    Report(token, TrimBlanks(token.text), "entry outside a section");
    KeepOutside(token);
    return;
  }
  if (state_ == kBeforeOpener) {
    // Keep the entries of a section whose opener was forgotten.
    Report(token, TrimBlanks(token.text), "expected '" + markers_.opener + "'");
    state_ = kInside;
  }
  const std::string_view key = token.name;
  if (key.empty()) {
    Report(token, token.separator, "missing key before '" + markers_.separator + "'");
    KeepInBody(token);
    return;
  }
  // The key starts the trimmed line and ends before the first separator,
  // so it cannot be blank-padded, hold the separator or start with the
  // comment marker or the keyword and a blank. What is left of KeyReadsBack:
  if (HasNameControl(key)) {
    // Written back, "\v section x = 1" or "\x01# = 1" would be a section
    // line or a comment.
    Report(token, key.substr(FindNameControl(key)),
           "control character in key; the line is kept as written, not read");
    KeepInBody(token);
    return;
  }
  if (key == markers_.keyword) {
    // "section=x": written back as "section = x" it would be a section line.
    Report(token, key,
           "key '" + markers_.keyword + "' would be written as a section line; the line is "
           "kept as written, not read");
    KeepInBody(token);
    return;
  }
  entries_.push_back(Entry{key, DecodeValue(token), token.line});
}

void Parser::OnJunk(const Token& token) {
  if (state_ == kRefused) {
    KeepOutside(token);
    return;
  }
  Report(token, TrimBlanks(token.text), "expected 'key " + markers_.separator + " value'");
  if (state_ == kOutside) {
    KeepOutside(token);
  } else {
    KeepInBody(token);
  }
}

void Parser::StartSection(const Token& token) {
  if (token.name.empty()) Report(token, token.name, "section has no name");
  open_section_ = token;
  state_ = kBeforeOpener;
  entries_.clear();
  body_.clear();
  before_.swap(outside_);
  outside_.clear();
}

void Parser::EndSection(uint32_t end_line) {
  Section section(doc_->arena_.get());
  section.name = open_section_.name;
  section.line = open_section_.line;
  section.end_line = end_line;
  // An exact-size copy: one allocation per section instead of a growing
  // vector's several.
  section.entries.assign(entries_.begin(), entries_.end());
  if (!before_.empty() || !body_.empty()) {
    doc_->verbatim_.push_back(SectionVerbatim{std::move(before_), std::move(body_)});
    section.verbatim_ = &doc_->verbatim_.back();
    before_.clear();
    body_.clear();
  }
  doc_->sections_.push_back(std::move(section));
  entries_.clear();
  state_ = kOutside;
}

void Parser::KeepInBody(const Token& token) {
  body_.push_back(VerbatimLine{token.text, token.line, static_cast<uint32_t>(entries_.size())});
}

void Parser::KeepOutside(const Token& token) {
  outside_.push_back(VerbatimLine{token.text, token.line, 0});
}

std::string_view Parser::DecodeValue(const Token& token) {
  std::string_view raw = token.value;
  if (!IsQuoted(raw)) return raw;
  size_t bad = 0;
  if (!Unescape(raw.substr(1, raw.size() - 2), &scratch_, &bad))
    Report(token, raw.substr(1 + bad), "invalid escape sequence");
  doc_->interned_.push_back(scratch_);
  return doc_->interned_.back();
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
