#ifndef CMCFG_PLATFORM_BASE_MULTI_SECTION_FILE_H_
#define CMCFG_PLATFORM_BASE_MULTI_SECTION_FILE_H_

#include <cstddef>
#include <memory>
#include <string>

#include "platform/base/document.h"

namespace Configuration {

// A multi-section file with a cursor on its sections, read whole when
// constructed. The markers are given by the caller ("section", "{\n",
// "}\n", "=", "#"): a marker given with a trailing newline is a marker line.
//
// Flags:
//  - forUpdate: the file will be changed and saved; its FileLock is taken in
//    the constructor and held until destruction, so the read-modify-write
//    cannot lose a change made by another process in between.
//  - sharedRead: read-only use; no lock is taken.
//  - createIfMissing: Save may create the file when it did not exist.
// A missing, unreadable or malformed file opens as what could be read of it
// (possibly no section at all); nothing here throws.
class MultiSectionFile {
 public:
  MultiSectionFile(const std::string& path, bool forUpdate, bool sharedRead, bool createIfMissing,
                   const char* keyword, const char* opener, const char* closer,
                   const char* separator, const char* comment, const char* reserved);
  ~MultiSectionFile();
  MultiSectionFile(const MultiSectionFile&) = delete;
  MultiSectionFile& operator=(const MultiSectionFile&) = delete;

  // True when the file existed and was read.
  bool IsOpen() const;

  // Puts the cursor before the first section.
  void Restart();
  // Moves to the next section; false (cursor unchanged) at the end.
  bool GotoNextSection();
  // Moves to the first section with that name; false when there is none.
  bool GotoSection(const char* name);
  bool GotoLastSection();
  unsigned GetSectionCount() const;
  // Name of the current section; "" before the first.
  std::string GetSectionName() const;

  // Copies the value of `key` in the current section into `buffer` (at most
  // size - 1 bytes, NUL-terminated) and returns true; when the key or a
  // current section is missing, stores "" and returns false.
  bool GetSectionEntry(const char* key, char* buffer, size_t size) const;
  // Sets a key of the current section; false without a current section or
  // with a key that cannot be written.
  bool SetSectionEntry(const char* key, const std::string& value);
  // Appends a section and makes it current.
  bool AddSection(const char* name);
  // Removes the current section; the cursor moves to the one before it.
  bool DeleteSection();

  // Writes the file atomically; `sync` flushes it to disk before the rename.
  // False when the file was not opened for update or the write failed (the
  // old file then stays as it was). In the store's read-only mode (cfg::SetReadOnly) a
  // file opened for update takes no lock and Save writes nothing and returns
  // true, so the caller goes on with the sections as changed in memory.
  bool Save(bool sync);

  const cfg::Document& document() const;

 private:
  struct Rep;
  std::unique_ptr<Rep> rep_;
};

}  // namespace Configuration

#endif  // CMCFG_PLATFORM_BASE_MULTI_SECTION_FILE_H_
