#include "platform/base/document.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "platform/base/document_lexer.h"
#include "platform/base/document_parser.h"
#include "platform/base/escaping.h"

namespace cfg {

namespace {

const VerbatimLines kNoLines;

void AppendLines(const VerbatimLines& lines, std::string* out) {
  for (const VerbatimLine& v : lines) out->append(v.text).push_back('\n');
}

// The first entry line, "key = value" with the separator between blanks,
// is the form the lexer reads back as exactly this key and value whatever
// the key (once KeyReadsBack) and value (once escaped) hold.
void AppendEntry(const Entry& e, const Markers& m, std::string* out) {
  out->append(e.key).push_back(' ');
  out->append(m.separator);
  if (!e.value.empty()) {
    out->push_back(' ');
    if (NeedsQuoting(e.value)) {
      AppendQuoted(e.value, out);
    } else {
      out->append(e.value);
    }
  }
  out->push_back('\n');
}

void AppendSection(const Section& section, const Markers& m, std::string* out) {
  out->append(m.keyword);
  if (!section.name.empty()) out->push_back(' ');
  out->append(section.name).push_back('\n');
  out->append(m.opener).push_back('\n');
  const VerbatimLines& body = section.verbatim();
  size_t next = 0;
  for (size_t i = 0; i < section.entries.size(); ++i) {
    for (; next < body.size() && body[next].position <= i; ++next)
      out->append(body[next].text).push_back('\n');
    const Entry& e = section.entries[i];
    if (KeyReadsBack(e.key, m)) AppendEntry(e, m, out);
  }
  for (; next < body.size(); ++next) out->append(body[next].text).push_back('\n');
  out->append(m.closer).push_back('\n');
}

bool SameLines(const VerbatimLines& a, const VerbatimLines& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i].text != b[i].text || a[i].position != b[i].position) return false;
  }
  return true;
}

bool SameSection(const Section& a, const Section& b) {
  if (a.name != b.name || a.entries.size() != b.entries.size()) return false;
  for (size_t i = 0; i < a.entries.size(); ++i) {
    if (a.entries[i].key != b.entries[i].key || a.entries[i].value != b.entries[i].value)
      return false;
  }
  return SameLines(a.verbatim_before(), b.verbatim_before()) &&
         SameLines(a.verbatim(), b.verbatim());
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

const VerbatimLines& Section::verbatim() const {
  return verbatim_ ? verbatim_->body : kNoLines;
}

const VerbatimLines& Section::verbatim_before() const {
  return verbatim_ ? verbatim_->before : kNoLines;
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

Document::Document() = default;
Document::~Document() = default;
Document::Document(Document&& other) noexcept
    : buffer_(std::move(other.buffer_)),
      text_(other.text_),
      interned_(std::move(other.interned_)),
      arena_(std::move(other.arena_)),
      sections_(std::move(other.sections_)),
      verbatim_(std::move(other.verbatim_)),
      verbatim_after_(std::move(other.verbatim_after_)),
      diagnostics_(std::move(other.diagnostics_)),
      index_(std::move(other.index_)),
      indexedData_(other.indexedData_),
      indexedSize_(other.indexedSize_) {
  other.indexedData_ = nullptr;
  other.indexedSize_ = 0;
}
Document& Document::operator=(Document&& other) noexcept {
  if (this == &other) return *this;
  // Our old tables must go while the arena they live in still exists.
  sections_ = std::move(other.sections_);
  arena_ = std::move(other.arena_);
  buffer_ = std::move(other.buffer_);
  text_ = other.text_;
  interned_ = std::move(other.interned_);
  verbatim_ = std::move(other.verbatim_);
  verbatim_after_ = std::move(other.verbatim_after_);
  diagnostics_ = std::move(other.diagnostics_);
  scratch_ = Section();
  index_ = std::move(other.index_);
  indexedData_ = other.indexedData_;
  indexedSize_ = other.indexedSize_;
  other.indexedData_ = nullptr;
  other.indexedSize_ = 0;
  return *this;
}

Document Document::Parse(std::string text, const Syntax& syntax) {
  Document doc;
  doc.arena_ = Arena::ForTables(text.size());
  doc.sections_ = SectionList(ArenaAllocator<Section>(doc.arena_.get()));
  doc.buffer_.reset(new std::string(std::move(text)));
  doc.text_ = *doc.buffer_;
  Parser(&doc, syntax).Run();
  doc.IndexSections();
  return doc;
}

Document Document::Parse(std::unique_ptr<Arena> arena, std::string_view text,
                         const Syntax& syntax) {
  Document doc;
  doc.arena_ = std::move(arena);
  doc.sections_ = SectionList(ArenaAllocator<Section>(doc.arena_.get()));
  doc.text_ = text;
  Parser(&doc, syntax).Run();
  doc.IndexSections();
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
    const Section& section = sections_[i];
    if (i > 0) out.push_back('\n');
    // The lines before a header follow a closer or start the text: they are
    // read outside any section again, where they are refused again.
    AppendLines(section.verbatim_before(), &out);
    if (NameReadsBack(section.name)) AppendSection(section, markers, &out);
  }
  if (!verbatim_after_.empty()) {
    if (!sections_.empty()) out.push_back('\n');
    AppendLines(verbatim_after_, &out);
  }
  return out;
}

namespace {

// Below this many sections a scan is as quick as a hash; above the upper
// bound a document is data to be walked (a line database, a user cache),
// and indexing it would only slow its parse.
constexpr size_t kMinIndexed = 9;
constexpr size_t kMaxIndexed = 8192;

size_t NameHash(std::string_view name) { return std::hash<std::string_view>()(name); }

}  // namespace

bool Document::Indexed() const {
  return !index_.empty() && indexedData_ == sections_.data() && indexedSize_ == sections_.size();
}

void Document::IndexSections() {
  const size_t n = sections_.size();
  if (n < kMinIndexed || n > kMaxIndexed) {
    index_.clear();
    indexedData_ = nullptr;
    indexedSize_ = 0;
    return;
  }
  size_t slots = 16;
  while (slots < 2 * n + 2) slots *= 2;
  if (index_.size() >= slots && index_.size() <= 4 * slots) {
    // Rebuilt in place (after an Erase): memory given to an arena is not
    // handed back, so a new table per Erase would pile up.
    std::fill(index_.begin(), index_.end(), 0u);
  } else {
    index_ = std::vector<uint32_t, ArenaAllocator<uint32_t>>(
        slots, 0, ArenaAllocator<uint32_t>(arena_.get()));
  }
  indexedData_ = sections_.data();
  indexedSize_ = 0;
  for (size_t i = 0; i < n; ++i) IndexSection(i);
}

void Document::IndexSection(size_t position) {
  const size_t mask = index_.size() - 1;
  const std::string_view name = sections_[position].name;
  for (size_t slot = NameHash(name) & mask;; slot = (slot + 1) & mask) {
    if (index_[slot] == 0) {
      index_[slot] = static_cast<uint32_t>(position + 1);
      break;
    }
    if (sections_[index_[slot] - 1].name == name) break;  // the first one stays
  }
  indexedSize_ = position + 1;
}

Section* Document::Find(std::string_view name) {
  if (Indexed()) {
    const size_t mask = index_.size() - 1;
    for (size_t slot = NameHash(name) & mask;; slot = (slot + 1) & mask) {
      const uint32_t at = index_[slot];
      if (at == 0) return nullptr;
      if (sections_[at - 1].name == name) return &sections_[at - 1];
    }
  }
  for (Section& s : sections_) {
    if (s.name == name) return &s;
  }
  return nullptr;
}

const Section* Document::Find(std::string_view name) const {
  return const_cast<Document*>(this)->Find(name);
}

Section* Document::TryAdd(std::string_view name) {
  if (!IsValidSectionName(name)) return nullptr;
  Section section(arena_.get());
  section.name = Intern(name);
  const bool indexed = Indexed();
  sections_.push_back(std::move(section));
  if (indexed && 2 * sections_.size() + 2 <= index_.size()) {
    indexedData_ = sections_.data();
    IndexSection(sections_.size() - 1);
  } else if (indexed || sections_.size() == kMinIndexed) {
    IndexSections();
  }
  return &sections_.back();
}

Section& Document::Add(std::string_view name) {
  if (Section* added = TryAdd(name)) return *added;
  scratch_ = Section();
  return scratch_;
}

namespace {

// Leading words `a` and `b` have in common.
size_t SharedWords(std::string_view a, std::string_view b) {
  size_t words = 0;
  for (size_t i = 0;; ++i) {
    const bool a_end = i == a.size() || a[i] == ' ';
    const bool b_end = i == b.size() || b[i] == ' ';
    if (a_end || b_end) {
      if (!(a_end && b_end)) return words;
      ++words;
      if (i == a.size() || i == b.size()) return words;
    } else if (a[i] != b[i]) {
      return words;
    }
  }
}

}  // namespace

Section& Document::AddBeside(std::string_view name) {
  size_t best = 0;
  size_t after = sections_.size();
  for (size_t i = 0; i < sections_.size(); ++i) {
    const size_t shared = SharedWords(sections_[i].name, name);
    if (shared > 0 && shared >= best) {
      best = shared;
      after = i + 1;
    }
  }
  Section& added = Add(name);
  if (&added == &scratch_ || after >= sections_.size() - 1) return added;
  const bool indexed = Indexed();
  std::rotate(sections_.begin() + static_cast<long>(after), sections_.end() - 1, sections_.end());
  if (indexed) IndexSections();  // positions after it moved
  return sections_[after];
}

void Document::Erase(size_t index) {
  if (index >= sections_.size()) return;
  const VerbatimLines& before = sections_[index].verbatim_before();
  if (!before.empty()) {
    VerbatimLines* into = index + 1 < sections_.size()
                              ? &VerbatimOf(sections_[index + 1]).before
                              : &verbatim_after_;
    into->insert(into->begin(), before.begin(), before.end());
  }
  const bool indexed = Indexed();
  sections_.erase(sections_.begin() + static_cast<long>(index));
  if (indexed) IndexSections();  // positions after it moved
}

bool Document::Set(Section& section, std::string_view key, std::string_view value) {
  if (!IsValidKey(key)) return false;
  if (Entry* e = section.Find(key)) {
    if (e->value != value) e->value = Intern(value);
    return true;
  }
  section.entries.push_back(Entry{Intern(key), Intern(value), 0});
  return true;
}

void Document::Remove(Section& section, std::string_view key) {
  EntryList& entries = section.entries;
  VerbatimLines* body = section.verbatim_ ? &section.verbatim_->body : nullptr;
  size_t next = 0;
  size_t kept = 0;
  for (size_t i = 0; i < entries.size(); ++i) {
    // A verbatim line stays before the entry it stood before.
    for (; body && next < body->size() && (*body)[next].position <= i; ++next)
      (*body)[next].position = static_cast<uint32_t>(kept);
    if (entries[i].key != key) entries[kept++] = entries[i];
  }
  for (; body && next < body->size(); ++next) (*body)[next].position = static_cast<uint32_t>(kept);
  entries.resize(kept);
}

std::string_view Document::Intern(std::string_view text) {
  interned_.emplace_back(text);
  return interned_.back();
}

SectionVerbatim& Document::VerbatimOf(Section& section) {
  if (section.verbatim_ == nullptr) {
    verbatim_.emplace_back();
    section.verbatim_ = &verbatim_.back();
  }
  return *section.verbatim_;
}

bool operator==(const Document& a, const Document& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (!SameSection(a[i], b[i])) return false;
  }
  return SameLines(a.verbatim_after(), b.verbatim_after());
}

bool IsValidKey(std::string_view key, const Syntax& syntax) {
  return KeyReadsBack(key, Markers(syntax));
}

bool IsValidSectionName(std::string_view name, const Syntax& syntax) {
  (void)syntax;  // the rest of a section line is its name, whatever the markers
  return !name.empty() && NameReadsBack(name);
}

}  // namespace cfg
