#include "platform/base/multi_section_file.h"

#include <cstring>

#include "platform/base/document_store.h"
#include "platform/base/file_lock.h"
#include "platform/base/file_system.h"

namespace Configuration {

namespace {

cfg::Syntax MakeSyntax(const char* keyword, const char* opener, const char* closer,
                       const char* separator, const char* comment) {
  cfg::Syntax syntax;
  if (keyword) syntax.keyword = keyword;
  if (opener) syntax.opener = opener;
  if (closer) syntax.closer = closer;
  if (separator) syntax.separator = separator;
  if (comment) syntax.comment = comment;
  return syntax;
}

}  // namespace

struct MultiSectionFile::Rep {
  std::string path;
  cfg::Syntax syntax;
  bool for_update = false;
  bool create_if_missing = false;
  bool open = false;
  std::unique_ptr<cfg::FileLock> lock;
  cfg::Document doc;
  long cursor = -1;  // index of the current section; -1 before the first

  cfg::Section* Current() {
    if (cursor < 0 || static_cast<size_t>(cursor) >= doc.size()) return nullptr;
    return &doc[static_cast<size_t>(cursor)];
  }
};

MultiSectionFile::MultiSectionFile(const std::string& path, bool forUpdate, bool sharedRead,
                                   bool createIfMissing, const char* keyword, const char* opener,
                                   const char* closer, const char* separator,
                                   const char* comment, const char* reserved)
    : rep_(new Rep) {
  (void)sharedRead;  // reading never locks; only forUpdate does
  (void)reserved;
  Rep& r = *rep_;
  r.path = path;
  r.syntax = MakeSyntax(keyword, opener, closer, separator, comment);
  r.for_update = forUpdate;
  r.create_if_missing = createIfMissing;
  if (path.empty()) return;
  // The lock comes before the read so no other writer can slip in between.
  // A file that may not be created is not locked when missing, which spares
  // its folder a stray ".lock" file.
  if (forUpdate && (createIfMissing || cfg::FileSystem::Default()->FileExists(path)))
    r.lock.reset(new cfg::FileLock(path));
  r.open = cfg::LoadDocument(path, &r.doc, r.syntax).ok();
}

MultiSectionFile::~MultiSectionFile() = default;

bool MultiSectionFile::IsOpen() const { return rep_->open; }

void MultiSectionFile::Restart() { rep_->cursor = -1; }

bool MultiSectionFile::GotoNextSection() {
  if (static_cast<size_t>(rep_->cursor + 1) >= rep_->doc.size()) return false;
  ++rep_->cursor;
  return true;
}

bool MultiSectionFile::GotoSection(const char* name) {
  if (name == nullptr) return false;
  for (size_t i = 0; i < rep_->doc.size(); ++i) {
    if (rep_->doc[i].name == name) {
      rep_->cursor = static_cast<long>(i);
      return true;
    }
  }
  return false;
}

bool MultiSectionFile::GotoLastSection() {
  if (rep_->doc.empty()) return false;
  rep_->cursor = static_cast<long>(rep_->doc.size()) - 1;
  return true;
}

unsigned MultiSectionFile::GetSectionCount() const {
  return static_cast<unsigned>(rep_->doc.size());
}

std::string MultiSectionFile::GetSectionName() const {
  const cfg::Section* section = rep_->Current();
  return section ? std::string(section->name) : std::string();
}

bool MultiSectionFile::GetSectionEntry(const char* key, char* buffer, size_t size) const {
  if (buffer == nullptr || size == 0) return false;
  buffer[0] = '\0';
  const cfg::Section* section = rep_->Current();
  if (section == nullptr || key == nullptr) return false;
  const cfg::Entry* entry = section->Find(key);
  if (entry == nullptr) return false;
  size_t n = entry->value.size() < size - 1 ? entry->value.size() : size - 1;
  std::memcpy(buffer, entry->value.data(), n);
  buffer[n] = '\0';
  return true;
}

bool MultiSectionFile::SetSectionEntry(const char* key, const std::string& value) {
  cfg::Section* section = rep_->Current();
  if (section == nullptr || key == nullptr || !cfg::IsValidKey(key, rep_->syntax)) return false;
  rep_->doc.Set(*section, key, value);
  return true;
}

bool MultiSectionFile::AddSection(const char* name) {
  if (name == nullptr || !cfg::IsValidSectionName(name, rep_->syntax)) return false;
  rep_->doc.Add(name);
  rep_->cursor = static_cast<long>(rep_->doc.size()) - 1;
  return true;
}

bool MultiSectionFile::DeleteSection() {
  if (rep_->Current() == nullptr) return false;
  rep_->doc.Erase(static_cast<size_t>(rep_->cursor));
  --rep_->cursor;
  return true;
}

bool MultiSectionFile::Save(bool sync) {
  (void)sync;  // saves are always flushed: a torn configuration file is worse than a slow save
  Rep& r = *rep_;
  if (!r.for_update || r.path.empty()) return false;
  if (!r.open && !r.create_if_missing) return false;
  if (r.lock == nullptr || !r.lock->locked()) return false;
  if (!cfg::SaveDocument(r.path, r.doc, r.syntax).ok()) return false;
  r.open = true;
  return true;
}

const cfg::Document& MultiSectionFile::document() const { return rep_->doc; }

}  // namespace Configuration
