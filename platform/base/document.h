#ifndef CMCFG_PLATFORM_BASE_DOCUMENT_H_
#define CMCFG_PLATFORM_BASE_DOCUMENT_H_

#include <cstddef>
#include <cstdint>
#include <list>
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
//
// A marker must not hold a blank or a control character, and the keyword,
// opener and closer must differ and must not start with the comment marker;
// otherwise the default markers are used (see Markers).
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

// A line the parser did not take into the document (a line that is not
// "key = value", an entry outside a section, a key or section name that
// would not be written back as it is read), kept as written so that a save
// writes it back unchanged. Such a line is never read: written back where
// it was found, it is rejected again.
struct VerbatimLine {
  std::string_view text;  // the line without its line break
  uint32_t line = 0;      // 1-based line in the parsed text
  uint32_t position = 0;  // in a section's body: the number of entries before it
};
using VerbatimLines = std::vector<VerbatimLine>;

// The verbatim lines that belong to one section; held by its Document.
struct SectionVerbatim {
  VerbatimLines before;  // outside any section, before the section's header
  VerbatimLines body;    // inside its body, by position
};

struct Section {
  Section() = default;
  // Entries in `arena` (owned by the document), or on the heap when null.
  explicit Section(Arena* arena) : entries(ArenaAllocator<Entry>(arena)) {}

  std::string_view name;
  EntryList entries;
  uint32_t line = 0;      // 1-based line of its header; 0 when added later
  uint32_t end_line = 0;  // line of its closer (its last line when it has none)

  // First entry with that key, or nullptr.
  const Entry* Find(std::string_view key) const;
  Entry* Find(std::string_view key);
  // Value of the first entry with that key, or "" when there is none.
  std::string_view Get(std::string_view key) const;
  bool Has(std::string_view key) const { return Find(key) != nullptr; }

  // Verbatim lines of the body, in file order; each is written back before
  // the entry at its position (after the last entry when beyond them).
  const VerbatimLines& verbatim() const;
  // Verbatim lines outside any section just before this one's header.
  const VerbatimLines& verbatim_before() const;

 private:
  friend class Document;
  friend class Parser;
  SectionVerbatim* verbatim_ = nullptr;  // owned by the document; null when none
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
  // rest is reported in diagnostics() and kept as verbatim lines. A section
  // without its closer ends at the next section line or at the end of the
  // text. A section whose name would not be written back as read is not
  // taken: its lines, header to closer, are kept verbatim.
  static Document Parse(std::string text, const Syntax& syntax = Syntax());
  // The same for a text that lives in `arena`, which the document takes
  // over to hold its tables as well.
  static Document Parse(std::unique_ptr<Arena> arena, std::string_view text,
                        const Syntax& syntax = Syntax());

  // The text of the document. For every document the parser produces and
  // every change made through Set, Add and Remove, Parse(Serialize()) is
  // equal (operator==) to the document: the same sections, keys, values and
  // verbatim lines. Values that could not stand on one line as they are
  // (line breaks, control characters, surrounding blanks, a leading double
  // quote) are written quoted with backslash escapes; verbatim lines are
  // written as they were read. A key or section name put into the tables
  // directly that would not read back (see IsValidKey) is left out with its
  // entry or section rather than written as something else. Comments and
  // blank lines of the parsed text are not kept.
  std::string Serialize(const Syntax& syntax = Syntax()) const;

  size_t size() const { return sections_.size(); }
  bool empty() const { return sections_.empty(); }
  Section& operator[](size_t i) { return sections_[i]; }
  const Section& operator[](size_t i) const { return sections_[i]; }
  using SectionList = std::vector<Section, ArenaAllocator<Section>>;
  SectionList& sections() { return sections_; }
  const SectionList& sections() const { return sections_; }

  // First section with that name, or nullptr. A parsed document of a few
  // to a few thousand sections is indexed by name, so a reader that looks
  // up each property's section pays a hash, not a scan; Add, TryAdd and
  // Erase keep the index, and a table changed through sections() is
  // searched linearly. (A name changed in place through Section::name is
  // not seen by the index: rename by Erase and Add.)
  Section* Find(std::string_view name);
  const Section* Find(std::string_view name) const;

  // Appends an empty section named `name` (copied) and returns it; the
  // pointer is valid until sections are added or erased. nullptr, and
  // nothing added, when the name fails IsValidSectionName.
  Section* TryAdd(std::string_view name);
  // TryAdd for names the caller knows to be valid. A name that is not is
  // refused all the same: the document is left unchanged and the section
  // returned is a scratch one that is never saved.
  Section& Add(std::string_view name);
  // As Add, but the section goes after the last section of its kind rather
  // than at the end: after the last one that shares the most leading words
  // of its name ("contact 7 clir" after the last "contact 7 ..." section,
  // "contact 8" after the last "contact ..." one), at the end when none
  // shares the first word. Pointers to sections are invalidated.
  Section& AddBeside(std::string_view name);
  // Removes the section at `index` (nothing when out of range). Verbatim
  // lines before its header stay, before the next section.
  void Erase(size_t index);

  // Sets the first entry with `key` to `value`, or appends the entry when
  // there is none; both texts are copied into the document. Any value is
  // accepted and reads back identical after a save. False, and nothing
  // changed, when the key fails IsValidKey.
  bool Set(Section& section, std::string_view key, std::string_view value);
  // Removes every entry with `key`; verbatim lines of the body stay.
  void Remove(Section& section, std::string_view key);

  // Verbatim lines after the last section.
  const VerbatimLines& verbatim_after() const { return verbatim_after_; }

  // Copies `text` into storage owned by the document and returns a view of
  // the copy.
  std::string_view Intern(std::string_view text);

  const std::vector<Diagnostic>& diagnostics() const { return diagnostics_; }

  // The text the document was parsed from; empty for a document built in
  // memory. Line numbers of sections and entries refer to it.
  std::string_view source() const { return text_; }

 private:
  // Storage, one place per kind of thing. A default Document allocates
  // nothing: a file's load makes and moves several before one is kept.
  // (Lists rather than deques: an empty one allocates nothing, moving one
  // allocates nothing, and elements never move, which the views need.)
  std::unique_ptr<std::string> buffer_;  // the text given to Parse(std::string)
  std::string_view text_;                // the parsed text: in buffer_ or in arena_
  std::list<std::string> interned_;      // decoded values and Intern copies
  std::unique_ptr<Arena> arena_;         // the tables (and a text given with it); freed after them
  SectionList sections_;
  std::list<SectionVerbatim> verbatim_;  // what sections point to; rarely any
  VerbatimLines verbatim_after_;
  std::vector<Diagnostic> diagnostics_;
  Section scratch_;                      // what Add returns for a refused name
  // Open addressing over section names: position + 1 of the first section
  // of each name, 0 for a free slot; a power of two in size, at most half
  // full. Valid only while the table is the one it was built over.
  std::vector<uint32_t, ArenaAllocator<uint32_t>> index_;
  const Section* indexedData_ = nullptr;
  size_t indexedSize_ = 0;

  SectionVerbatim& VerbatimOf(Section& section);
  bool Indexed() const;
  // (Re)builds the index when the document's size calls for one; drops it
  // otherwise.
  void IndexSections();
  // Adds the section at `position` to a valid index.
  void IndexSection(size_t position);

  friend class Parser;
};

// Same sections in the same order with the same names, entries (keys and
// values) and verbatim lines (texts and positions). Line numbers and
// diagnostics are not compared.
bool operator==(const Document& a, const Document& b);
inline bool operator!=(const Document& a, const Document& b) { return !(a == b); }

// True when an entry with this key is written back as exactly this key:
// not empty, no control character but the tab, no blank at either end, no separator,
// not starting with the comment marker, not the keyword alone or followed
// by a blank. The parser keeps an entry whose key fails this only as a
// verbatim line. Values need no check (they are escaped).
bool IsValidKey(std::string_view key, const Syntax& syntax = Syntax());
// True when a section of this name is written back as exactly this name:
// not empty, no control character but the tab, no blank at either end.
bool IsValidSectionName(std::string_view name, const Syntax& syntax = Syntax());

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_DOCUMENT_H_
