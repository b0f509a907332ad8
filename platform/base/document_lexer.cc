#include "platform/base/document_lexer.h"

#include <cstring>

namespace cfg {

namespace {

// The first bytes are compared inline: most lines differ from every marker
// right there, and a call to compare costs more than the test.
inline bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && (prefix.empty() || text[0] == prefix[0]) &&
         text.compare(0, prefix.size(), prefix) == 0;
}

inline size_t FindSeparator(std::string_view text, const std::string& separator) {
  if (separator.size() == 1) {
    const void* hit = std::memchr(text.data(), separator[0], text.size());
    return hit ? static_cast<const char*>(hit) - text.data() : std::string_view::npos;
  }
  return text.find(separator);
}

// The marker as it is matched, or the fallback when it cannot be used.
// Written lines put a blank between a key and the separator and between
// the keyword and the name; a blank inside a marker would let those blanks
// complete it.
std::string Normalized(std::string marker, const std::string& fallback) {
  while (!marker.empty() && (marker.back() == '\n' || marker.back() == '\r'))
    marker.pop_back();
  std::string_view trimmed = TrimBlanks(marker);
  if (trimmed.empty()) return fallback;
  for (char c : trimmed) {
    unsigned char u = static_cast<unsigned char>(c);
    if (IsBlank(c) || u < 0x20 || u == 0x7F) return fallback;
  }
  return std::string(trimmed);
}

// True when every line the serializer writes reads back as the kind it was
// written as. Lines are classified in the order comment, section, opener,
// closer, entry; entry lines are covered by KeyReadsBack, and none of the
// markers holds a blank, so a section line matters only as the bare keyword.
bool Consistent(const Markers& m) {
  for (const std::string* line : {&m.keyword, &m.opener, &m.closer}) {
    if (StartsWith(*line, m.comment)) return false;
  }
  return m.opener != m.keyword && m.closer != m.keyword && m.opener != m.closer;
}

}  // namespace

Markers::Markers(const Syntax& syntax) {
  const Syntax defaults;
  keyword = Normalized(syntax.keyword, defaults.keyword);
  opener = Normalized(syntax.opener, defaults.opener);
  closer = Normalized(syntax.closer, defaults.closer);
  separator = Normalized(syntax.separator, defaults.separator);
  comment = Normalized(syntax.comment, defaults.comment);
  if (!Consistent(*this)) {
    keyword = defaults.keyword;
    opener = defaults.opener;
    closer = defaults.closer;
    separator = defaults.separator;
    comment = defaults.comment;
  }
}

size_t FindNameControl(std::string_view text) {
  for (size_t i = 0; i < text.size(); ++i) {
    if (IsNameControl(text[i])) return i;
  }
  return std::string_view::npos;
}

bool StartsSectionLine(std::string_view text, const Markers& markers) {
  const std::string& keyword = markers.keyword;
  if (!StartsWith(text, keyword)) return false;
  return text.size() == keyword.size() || IsBlank(text[keyword.size()]);
}

bool KeyReadsBack(std::string_view key, const Markers& markers) {
  if (key.empty() || IsBlank(key.front()) || IsBlank(key.back()) || HasNameControl(key)) return false;
  if (FindSeparator(key, markers.separator) != std::string_view::npos) return false;
  return !StartsWith(key, markers.comment) && !StartsSectionLine(key, markers);
}

bool NameReadsBack(std::string_view name) {
  return name.empty() || (!IsBlank(name.front()) && !IsBlank(name.back()) && !HasNameControl(name));
}

Lexer::Lexer(std::string_view input, const Markers& markers)
    : pos_(input.data()),
      end_(input.data() + input.size()),
      markers_(markers),
      comment0_(markers.comment[0]),
      keyword0_(markers.keyword[0]),
      opener0_(markers.opener[0]),
      closer0_(markers.closer[0]) {}

bool Lexer::Next(Token* token) {
  if (pos_ >= end_) return false;
  const char* nl = static_cast<const char*>(std::memchr(pos_, '\n', end_ - pos_));
  const char* line_end = nl ? nl : end_;
  std::string_view text(pos_, line_end - pos_);
  pos_ = nl ? nl + 1 : end_;
  // Every '\r' at the end goes, not just one: a line kept as written must
  // not end with one, or writing it back with "\n" would change it.
  while (!text.empty() && text.back() == '\r') text.remove_suffix(1);

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
    return;
  }
  // Markers are never empty (Markers falls back to the defaults), so a
  // line that differs from one in its first byte is not that line.
  const char first = trimmed[0];
  if (first == comment0_ && StartsWith(trimmed, markers_.comment)) {
    token->kind = Token::kComment;
  } else if (first == keyword0_ && StartsSectionLine(trimmed, markers_)) {
    token->kind = Token::kSection;
    token->name = TrimBlanks(trimmed.substr(markers_.keyword.size()));
  } else if (first == opener0_ && trimmed == markers_.opener) {
    token->kind = Token::kOpener;
  } else if (first == closer0_ && trimmed == markers_.closer) {
    token->kind = Token::kCloser;
  } else {
    SplitEntry(trimmed, token);
  }
}

void Lexer::SplitEntry(std::string_view trimmed, Token* token) const {
  size_t sep = FindSeparator(trimmed, markers_.separator);
  if (sep == std::string_view::npos) {
    token->kind = Token::kJunk;
    return;
  }
  token->kind = Token::kEntry;
  // `trimmed` starts and ends with no blank: the key can only end with
  // blanks, the value only start with them.
  const char* key_end = trimmed.data() + sep;
  while (key_end > trimmed.data() && IsBlank(key_end[-1])) --key_end;
  token->name = std::string_view(trimmed.data(), static_cast<size_t>(key_end - trimmed.data()));
  token->separator = trimmed.substr(sep, markers_.separator.size());
  const char* value = trimmed.data() + sep + markers_.separator.size();
  const char* end = trimmed.data() + trimmed.size();
  while (value < end && IsBlank(*value)) ++value;
  token->value = std::string_view(value, static_cast<size_t>(end - value));
}

}  // namespace cfg
