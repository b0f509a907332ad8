#ifndef CMCFG_PLATFORM_BASE_DOCUMENT_H_
#define CMCFG_PLATFORM_BASE_DOCUMENT_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/arena.h"

namespace cfg {

// The markers of the multi-section text format. Every configuration file of
// the appliance uses the defaults:
//
//   # comment
//   section NAME
//   {
//   key = value
//   }
struct Syntax {
  std::string keyword = "section";
  std::string opener = "{";
  std::string closer = "}";
  std::string separator = "=";
  std::string comment = "#";
};

// One "key = value" line. Both views point into storage owned by the
// Document and stay valid until the Document is destroyed; moving the
// Document keeps them valid.
struct Entry {
  std::string_view key;
  std::string_view value;
  uint32_t line = 0;  // 1-based line in the parsed text, 0 when added later
};

// Entry and section tables of a parsed document live in its arena.
using EntryList = std::vector<Entry, ArenaAllocator<Entry>>;

struct Section {
  Section() = default;
  explicit Section(Arena* arena) : entries(ArenaAllocator<Entry>(arena)) {}

  std::string_view name;
  EntryList entries;
  uint32_t line = 0;

  // First entry with that key, or nullptr.
  const Entry* Find(std::string_view key) const;
  Entry* Find(std::string_view key);
  // Value of the first entry with that key, or "" when there is none.
  std::string_view Get(std::string_view key) const;
  bool Has(std::string_view key) const { return Find(key) != nullptr; }
};

// A problem found while parsing; the parse goes on after it.
struct Diagnostic {
  uint32_t line = 0;      // 1-based
  uint32_t column = 0;    // 0-based byte offset of the caret
  std::string message;
  std::string text;       // the offending line (cut to a sane length)

  // "file:line: message\n<text>\n<spaces>^"
  std::string Format(std::string_view file) const;
};

// A parsed multi-section file: sections in file order, each with its
// entries in file order. Duplicate section names and duplicate keys are
// kept; lookups return the first. Move-only.
class Document {
 public:
  Document();
  ~Document();
  Document(Document&&) noexcept;
  Document& operator=(Document&&) noexcept;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  // Parses `text`, keeping it as the storage the views point into. Never
  // fails and never throws on bad input: what is well formed is kept, the
  // rest is reported in diagnostics(). A section without its closer ends at
  // the next section line or at the end of the text.
  static Document Parse(std::string text, const Syntax& syntax = Syntax());
  // The same for a text that lives in `arena`, which the document takes
  // over to hold its tables as well.
  static Document Parse(std::unique_ptr<Arena> arena, std::string_view text,
                        const Syntax& syntax = Syntax());

  // The text of the document; Parse(Serialize()) gives back the same
  // sections, keys and values. Values that could not stand on one line as
  // they are (line breaks, control characters, surrounding blanks, a leading
  // double quote) are written quoted with backslash escapes.
  std::string Serialize(const Syntax& syntax = Syntax()) const;

  size_t size() const { return sections_.size(); }
  bool empty() const { return sections_.empty(); }
  Section& operator[](size_t i) { return sections_[i]; }
  const Section& operator[](size_t i) const { return sections_[i]; }
  using SectionList = std::vector<Section, ArenaAllocator<Section>>;
  SectionList& sections() { return sections_; }
  const SectionList& sections() const { return sections_; }

  // First section with that name, or nullptr.
  Section* Find(std::string_view name);
  const Section* Find(std::string_view name) const;

  // Appends an empty section; the name is copied. Returns it (the reference
  // is valid until sections are added or erased).
  Section& Add(std::string_view name);
  void Erase(size_t index);

  // Sets the first entry with `key` to `value`, or appends the entry when
  // there is none. Both texts are copied into the document.
  void Set(Section& section, std::string_view key, std::string_view value);
  // Removes every entry with `key`.
  void Remove(Section& section, std::string_view key);

  // Copies `text` into storage owned by the document and returns a view of
  // the copy.
  std::string_view Intern(std::string_view text);

  const std::vector<Diagnostic>& diagnostics() const { return diagnostics_; }

 private:
  std::unique_ptr<std::string> buffer_;  // parsed text, unless it lives in memory_
  std::string_view text_;                // the parsed text, wherever it lives
  std::deque<std::string> arena_;        // decoded or later-set texts
  std::unique_ptr<Arena> memory_;        // the tables below; declared first, freed last
  SectionList sections_;
  std::vector<Diagnostic> diagnostics_;

  friend class Parser;
};

// Checks a key or section name chosen by code: not empty, one line, no
// separator, not a marker. Values need no check (they are escaped).
bool IsValidKey(std::string_view key, const Syntax& syntax = Syntax());
bool IsValidSectionName(std::string_view name, const Syntax& syntax = Syntax());

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_DOCUMENT_H_
