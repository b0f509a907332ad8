#include "platform/base/document_lexer.h"

#include <cstring>

namespace cfg {

namespace {

std::string Normalized(std::string marker, const std::string& fallback) {
  while (!marker.empty() && (marker.back() == '\n' || marker.back() == '\r'))
    marker.pop_back();
  std::string_view trimmed = TrimBlanks(marker);
  return trimmed.empty() ? fallback : std::string(trimmed);
}

// The first bytes are compared inline: most lines differ from every marker
// right there, and a call to compare costs more than the test.
bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && (prefix.empty() || text[0] == prefix[0]) &&
         text.compare(0, prefix.size(), prefix) == 0;
}

size_t FindSeparator(std::string_view text, const std::string& separator) {
  if (separator.size() == 1) {
    const void* hit = std::memchr(text.data(), separator[0], text.size());
    return hit ? static_cast<const char*>(hit) - text.data() : std::string_view::npos;
  }
  return text.find(separator);
}

}  // namespace

Markers::Markers(const Syntax& syntax) {
  const Syntax defaults;
  keyword = Normalized(syntax.keyword, defaults.keyword);
  opener = Normalized(syntax.opener, defaults.opener);
  closer = Normalized(syntax.closer, defaults.closer);
  separator = Normalized(syntax.separator, defaults.separator);
  comment = Normalized(syntax.comment, defaults.comment);
}

Lexer::Lexer(std::string_view input, const Markers& markers)
    : pos_(input.data()), end_(input.data() + input.size()), markers_(markers) {}

bool Lexer::Next(Token* token) {
  if (pos_ >= end_) return false;
  const char* nl = static_cast<const char*>(std::memchr(pos_, '\n', end_ - pos_));
  const char* line_end = nl ? nl : end_;
  std::string_view text(pos_, line_end - pos_);
  pos_ = nl ? nl + 1 : end_;
  if (!text.empty() && text.back() == '\r') text.remove_suffix(1);

  if (line_ != UINT32_MAX) ++line_;
  token->line = line_;
  token->text = text;
  token->name = token->value = token->separator = std::string_view();
  Classify(TrimBlanks(text), token);
  return true;
}

void Lexer::Classify(std::string_view trimmed, Token* token) const {
  if (trimmed.empty()) {
    token->kind = Token::kBlank;
  } else if (StartsWith(trimmed, markers_.comment)) {
    token->kind = Token::kComment;
  } else if (IsSectionLine(trimmed)) {
    token->kind = Token::kSection;
    token->name = TrimBlanks(trimmed.substr(markers_.keyword.size()));
  } else if (trimmed == markers_.opener) {
    token->kind = Token::kOpener;
  } else if (trimmed == markers_.closer) {
    token->kind = Token::kCloser;
  } else {
    SplitEntry(trimmed, token);
  }
}

// The keyword followed by a blank, or alone. A key equal to the keyword is
// therefore never an entry; IsValidKey refuses such keys.
bool Lexer::IsSectionLine(std::string_view trimmed) const {
  const std::string& keyword = markers_.keyword;
  if (!StartsWith(trimmed, keyword)) return false;
  return trimmed.size() == keyword.size() || IsBlank(trimmed[keyword.size()]);
}

void Lexer::SplitEntry(std::string_view trimmed, Token* token) const {
  size_t sep = FindSeparator(trimmed, markers_.separator);
  if (sep == std::string_view::npos) {
    token->kind = Token::kJunk;
    return;
  }
  token->kind = Token::kEntry;
  token->name = TrimBlanks(trimmed.substr(0, sep));
  token->separator = trimmed.substr(sep, markers_.separator.size());
  token->value = TrimBlanks(trimmed.substr(sep + markers_.separator.size()));
}

}  // namespace cfg
