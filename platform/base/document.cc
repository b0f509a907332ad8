#include "platform/base/document.h"

#include <utility>

#include "platform/base/document_lexer.h"
#include "platform/base/document_parser.h"
#include "platform/base/escaping.h"

namespace cfg {

namespace {

bool HasControl(std::string_view text) {
  for (unsigned char c : text) {
    if (c < 0x20 || c == 0x7F) return true;
  }
  return false;
}

// A name as it can stand on its line: control characters, which could end
// the line early, become blanks. Names that pass IsValidKey or
// IsValidSectionName come out unchanged.
std::string OneLine(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    unsigned char u = static_cast<unsigned char>(c);
    if (u < 0x20 || u == 0x7F) c = ' ';
  }
  return out;
}

// OneLine without a copy for the usual name that needs no change.
void AppendOneLine(std::string_view text, std::string* out) {
  if (HasControl(text)) {
    out->append(OneLine(text));
  } else {
    out->append(text);
  }
}

void AppendValue(std::string_view value, std::string* out) {
  if (NeedsQuoting(value)) {
    AppendQuoted(value, out);
  } else {
    out->append(value);
  }
}

void AppendSection(const Section& section, const Markers& m, std::string* out) {
  out->append(m.keyword).push_back(' ');
  AppendOneLine(section.name, out);
  out->push_back('\n');
  out->append(m.opener).push_back('\n');
  for (const Entry& e : section.entries) {
    AppendOneLine(e.key, out);
    out->push_back(' ');
    out->append(m.separator);
    if (!e.value.empty()) {
      out->push_back(' ');
      AppendValue(e.value, out);
    }
    out->push_back('\n');
  }
  out->append(m.closer).push_back('\n');
}

bool IsOneTrimmedLine(std::string_view text) {
  return !text.empty() && !HasControl(text) && TrimBlanks(text).size() == text.size();
}

}  // namespace

const Entry* Section::Find(std::string_view key) const {
  for (const Entry& e : entries) {
    if (e.key == key) return &e;
  }
  return nullptr;
}

Entry* Section::Find(std::string_view key) {
  return const_cast<Entry*>(static_cast<const Section*>(this)->Find(key));
}

std::string_view Section::Get(std::string_view key) const {
  const Entry* e = Find(key);
  return e ? e->value : std::string_view();
}

std::string Diagnostic::Format(std::string_view file) const {
  std::string out(file);
  out += ":" + std::to_string(line) + ": " + message;
  if (!text.empty()) {
    out += "\n" + text + "\n";
    out.append(column, ' ');
    out += "^";
  }
  return out;
}

Document::Document()
    : buffer_(new std::string()),
      memory_(new Arena()),
      sections_(ArenaAllocator<Section>(memory_.get())) {}
Document::~Document() = default;
Document::Document(Document&&) noexcept = default;
Document& Document::operator=(Document&& other) noexcept {
  if (this == &other) return *this;
  // Our old tables must go while the arena they live in still exists.
  sections_ = std::move(other.sections_);
  memory_ = std::move(other.memory_);
  buffer_ = std::move(other.buffer_);
  text_ = other.text_;
  arena_ = std::move(other.arena_);
  diagnostics_ = std::move(other.diagnostics_);
  return *this;
}

Document Document::Parse(std::string text, const Syntax& syntax) {
  Document doc;
  doc.memory_.reset(new Arena(text.size() + text.size() / 2));
  doc.sections_ = SectionList(ArenaAllocator<Section>(doc.memory_.get()));
  *doc.buffer_ = std::move(text);
  doc.text_ = *doc.buffer_;
  Parser(&doc, syntax).Run();
  return doc;
}

Document Document::Parse(std::unique_ptr<Arena> arena, std::string_view text,
                         const Syntax& syntax) {
  Document doc;
  doc.memory_ = std::move(arena);
  doc.sections_ = SectionList(ArenaAllocator<Section>(doc.memory_.get()));
  doc.text_ = text;
  Parser(&doc, syntax).Run();
  return doc;
}

std::string Document::Serialize(const Syntax& syntax) const {
  const Markers markers(syntax);
  std::string out;
  size_t estimate = 0;
  for (const Section& s : sections_) {
    estimate += s.name.size() + 32;
    for (const Entry& e : s.entries) estimate += e.key.size() + e.value.size() + 8;
  }
  out.reserve(estimate);
  for (size_t i = 0; i < sections_.size(); ++i) {
    if (i > 0) out.push_back('\n');
    AppendSection(sections_[i], markers, &out);
  }
  return out;
}

Section* Document::Find(std::string_view name) {
  for (Section& s : sections_) {
    if (s.name == name) return &s;
  }
  return nullptr;
}

const Section* Document::Find(std::string_view name) const {
  return const_cast<Document*>(this)->Find(name);
}

Section& Document::Add(std::string_view name) {
  Section section(memory_.get());
  section.name = Intern(TrimBlanks(OneLine(name)));
  sections_.push_back(std::move(section));
  return sections_.back();
}

void Document::Erase(size_t index) {
  if (index < sections_.size()) sections_.erase(sections_.begin() + static_cast<long>(index));
}

void Document::Set(Section& section, std::string_view key, std::string_view value) {
  if (!IsValidKey(key)) return;
  if (Entry* e = section.Find(key)) {
    if (e->value != value) e->value = Intern(value);
    return;
  }
  section.entries.push_back(Entry{Intern(key), Intern(value), 0});
}

void Document::Remove(Section& section, std::string_view key) {
  EntryList& entries = section.entries;
  size_t kept = 0;
  for (size_t i = 0; i < entries.size(); ++i) {
    if (entries[i].key != key) entries[kept++] = entries[i];
  }
  entries.resize(kept);
}

std::string_view Document::Intern(std::string_view text) {
  arena_.emplace_back(text);
  return arena_.back();
}

bool IsValidKey(std::string_view key, const Syntax& syntax) {
  const Markers m(syntax);
  if (!IsOneTrimmedLine(key)) return false;
  if (key.find(m.separator) != std::string_view::npos) return false;
  if (key.compare(0, m.comment.size(), m.comment) == 0) return false;
  // A key that reads as a section line: the keyword alone or followed by a blank.
  if (key.compare(0, m.keyword.size(), m.keyword) == 0 &&
      (key.size() == m.keyword.size() || IsBlank(key[m.keyword.size()])))
    return false;
  return key != m.opener && key != m.closer;
}

bool IsValidSectionName(std::string_view name, const Syntax& syntax) {
  (void)syntax;  // the rest of a section line is its name, whatever it holds
  return IsOneTrimmedLine(name);
}

}  // namespace cfg
