#include "platform/base/document_render.h"

#include <string_view>
#include <vector>

#include "platform/base/document_lexer.h"
#include "platform/base/escaping.h"

namespace cfg {

namespace {

void AppendValue(std::string_view value, std::string* out) {
  if (NeedsQuoting(value)) {
    AppendQuoted(value, out);
  } else {
    out->append(value);
  }
}

// How a file writes its entries: what stands before the key, and between
// the key and the value.
struct EntryStyle {
  std::string indent;
  std::string between = " = ";
};

// Rewrites the original text line by line: each original line is kept,
// replaced or dropped, and new text goes before or after it.
class Renderer {
 public:
  Renderer(const Document& doc, const Syntax& syntax)
      : doc_(doc), markers_(syntax), source_(doc.source()),
        original_(Document::Parse(std::string(source_), syntax)) {}

  // False when an edit has no place in the original text.
  bool Run(std::string* out);

 private:
  struct Line {
    Token token;
    std::string_view raw;  // with its line break
    bool drop = false;
    bool replaced = false;
    std::string replacement;
    std::string before;  // new text before the line
    std::string after;   // and after it
    size_t owner = 0;    // for a section's last line: the section's header line
  };

  void Split();
  bool Place(const Section& section, size_t* anchor);
  void Rewrite(Line* line, std::string_view value);
  EntryStyle StyleOf(const Section* near) const;
  std::string NewEntry(const Entry& e, const EntryStyle& style) const;
  std::string NewSection(const Section& section, const Section* near) const;
  void Emit(std::string_view text, std::string* out) const;

  const Document& doc_;
  const Markers markers_;
  const std::string_view source_;
  const Document original_;
  std::string eol_ = "\n";
  std::vector<Line> lines_;                        // by line number; [0] unused
  std::vector<const Section*> section_at_;         // original sections by header line
  std::vector<const Entry*> entry_at_;             // original entries by line
  std::vector<bool> kept_;                         // header or entry lines still in doc_
};

void Renderer::Split() {
  Lexer lexer(source_, markers_);
  lines_.emplace_back();
  Token token;
  while (lexer.Next(&token)) {
    lines_.emplace_back();
    lines_.back().token = token;
  }
  for (size_t i = 1; i < lines_.size(); ++i) {
    const char* begin = lines_[i].token.text.data();
    const char* end = i + 1 < lines_.size() ? lines_[i + 1].token.text.data()
                                            : source_.data() + source_.size();
    lines_[i].raw = std::string_view(begin, static_cast<size_t>(end - begin));
  }
  for (size_t i = 1; i < lines_.size(); ++i) {
    std::string_view raw = lines_[i].raw;
    if (!raw.empty() && raw.back() == '\n') {
      eol_ = raw.size() >= 2 && raw[raw.size() - 2] == '\r' ? "\r\n" : "\n";
      break;
    }
  }
  section_at_.assign(lines_.size(), nullptr);
  entry_at_.assign(lines_.size(), nullptr);
  kept_.assign(lines_.size(), false);
  for (const Section& s : original_.sections()) {
    if (s.line < lines_.size()) section_at_[s.line] = &s;
    for (const Entry& e : s.entries)
      if (e.line < lines_.size()) entry_at_[e.line] = &e;
  }
}

bool Renderer::Run(std::string* out) {
  Split();
  const size_t n = lines_.size() - 1;
  size_t anchor = 0;      // end line of the last original section seen
  size_t first_kept = 0;  // header line of the first original section kept
  std::string top;        // new sections before any original one
  for (const Section& section : doc_.sections()) {
    if (section.line == 0) {
      // Written in the style of the section it follows.
      const Section* near = anchor != 0 ? section_at_[lines_[anchor].owner] : nullptr;
      if (anchor != 0) {
        lines_[anchor].after += eol_ + NewSection(section, near);
      } else {
        top += NewSection(section, near) + eol_;
      }
      continue;
    }
    if (!Place(section, &anchor)) return false;
    lines_[anchor].owner = section.line;
    if (first_kept == 0) first_kept = section.line;
  }
  for (const Section& s : original_.sections()) {
    if (s.line == 0 || s.line > n) continue;
    if (!kept_[s.line]) {
      for (size_t l = s.line; l <= s.end_line && l <= n; ++l) lines_[l].drop = true;
      continue;
    }
    for (const Entry& e : s.entries)
      if (!kept_[e.line]) lines_[e.line].drop = true;
  }
  if (first_kept != 0) lines_[first_kept].before.insert(0, top);

  out->clear();
  out->reserve(source_.size() + 256);
  for (size_t l = 1; l <= n; ++l) {
    const Line& line = lines_[l];
    Emit(line.before, out);
    if (!line.drop) out->append(line.replaced ? std::string_view(line.replacement) : line.raw);
    Emit(line.after, out);
  }
  if (first_kept == 0 && !top.empty()) {
    if (!out->empty()) Emit(eol_, out);
    Emit(top, out);
  }
  return true;
}

// Marks the lines of an original section that is still in the document and
// places its changed and added entries. False when it does not match the
// original text.
bool Renderer::Place(const Section& section, size_t* anchor) {
  const size_t n = lines_.size() - 1;
  if (section.line > n || section_at_[section.line] == nullptr || kept_[section.line]) return false;
  const Section& original = *section_at_[section.line];
  if (original.name != section.name) return false;
  kept_[section.line] = true;
  const EntryStyle style = StyleOf(&original);
  size_t previous = 0;  // line of the last original entry kept
  std::string head;     // added entries before any original one
  for (const Entry& e : section.entries) {
    if (e.line == 0) {
      if (previous != 0) {
        lines_[previous].after += NewEntry(e, style);
      } else {
        head += NewEntry(e, style);
      }
      continue;
    }
    if (e.line > n || entry_at_[e.line] == nullptr || kept_[e.line] || e.line <= previous ||
        e.line < original.line || e.line > original.end_line || entry_at_[e.line]->key != e.key)
      return false;
    kept_[e.line] = true;
    if (entry_at_[e.line]->value != e.value) Rewrite(&lines_[e.line], e.value);
    if (!head.empty()) {
      lines_[e.line].before += head;
      head.clear();
    }
    previous = e.line;
  }
  if (!head.empty()) {
    Line& last = lines_[original.end_line];
    if (last.token.kind == Token::kCloser) {
      last.before += head;
    } else {
      last.after += head;
    }
  }
  *anchor = original.end_line;
  return true;
}

void Renderer::Rewrite(Line* line, std::string_view value) {
  const Token& t = line->token;
  const size_t begin = static_cast<size_t>(t.value.data() - t.text.data());
  std::string& out = line->replacement;
  out.assign(t.text.substr(0, begin));
  AppendValue(value, &out);
  out.append(t.text.substr(begin + t.value.size()));
  out.append(line->raw.substr(t.text.size()));  // the line's own break
  line->replaced = true;
}

EntryStyle Renderer::StyleOf(const Section* near) const {
  const Token* sample = nullptr;
  if (near != nullptr && !near->entries.empty()) sample = &lines_[near->entries.back().line].token;
  for (size_t l = 1; sample == nullptr && l < lines_.size(); ++l)
    if (entry_at_[l] != nullptr) sample = &lines_[l].token;
  EntryStyle style;
  style.between = " " + markers_.separator + " ";
  if (sample == nullptr) return style;
  const size_t key = static_cast<size_t>(sample->name.data() - sample->text.data());
  const size_t value = static_cast<size_t>(sample->value.data() - sample->text.data());
  style.indent.assign(sample->text.substr(0, key));
  style.between.assign(sample->text.substr(key + sample->name.size(),
                                           value - key - sample->name.size()));
  return style;
}

std::string Renderer::NewEntry(const Entry& e, const EntryStyle& style) const {
  std::string out = style.indent;
  out.append(e.key).append(style.between);
  AppendValue(e.value, &out);
  while (!out.empty() && IsBlank(out.back())) out.pop_back();
  return out + eol_;
}

std::string Renderer::NewSection(const Section& section, const Section* near) const {
  std::string out = markers_.keyword;
  if (!section.name.empty()) out.append(" ").append(section.name);
  out += eol_ + markers_.opener + eol_;
  const EntryStyle style = StyleOf(near);
  for (const Entry& e : section.entries) out += NewEntry(e, style);
  return out + markers_.closer + eol_;
}

// New text starts on a line of its own, even after a last line that had
// no line break.
void Renderer::Emit(std::string_view text, std::string* out) const {
  if (text.empty()) return;
  if (!out->empty() && out->back() != '\n') out->append(eol_);
  out->append(text);
}

}  // namespace

std::string RenderEdited(const Document& doc, const Syntax& syntax) {
  if (doc.source().empty()) return doc.Serialize(syntax);
  std::string out;
  if (!Renderer(doc, syntax).Run(&out) || Document::Parse(out, syntax) != doc)
    return doc.Serialize(syntax);
  return out;
}

}  // namespace cfg
