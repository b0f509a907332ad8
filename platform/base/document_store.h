#ifndef CMCFG_PLATFORM_BASE_DOCUMENT_STORE_H_
#define CMCFG_PLATFORM_BASE_DOCUMENT_STORE_H_

#include <functional>
#include <string>

#include "platform/base/document.h"
#include "platform/base/status.h"

// Loading and saving documents through the file system's seam, under the
// file's lock (file_lock.h).
namespace cfg {

// Where the store reports a write that failed: one line without a newline,
// "cannot save PATH: " followed by the Status (kind and reason). The default
// writes it to stderr, prefixed "cmcfg store: ", in one write, so lines of
// concurrent writers do not mix.
using StoreReporter = std::function<void(const std::string& line)>;

// Installs `reporter` for the whole process; an empty one restores the
// default. Thread-safe: reports are made one at a time under a mutex, so the
// reporter needs no lock of its own, and once this returns the old one is
// not called any more. A failed save from inside the reporter goes to the
// default instead of re-entering it.
void SetStoreReporter(StoreReporter reporter);

// Reports through the installed reporter that `path` was not saved and why
// ("cannot save PATH: " and the Status), for writers that refuse a change
// before it reaches the file. Thread-safe.
void ReportStoreFailure(const std::string& path, const Status& s);

// Reads and parses a multi-section file. NotFound when missing; IOError when
// unreadable or not a regular file. Parse problems are not errors: they are
// in doc->diagnostics().
Status LoadDocument(const std::string& path, Document* doc, const Syntax& syntax = Syntax());

// Writes the document atomically, over the text it was read from where it
// was read from a file (see RenderEdited: only the lines of what changed
// differ). No lock is taken here; when the calling
// thread holds the FileLock of `path`, the temporary file is noted in it (see
// FileLock), so a crash mid-way leaves nothing behind for long. A failure is
// also reported through the StoreReporter.
// In read-only mode it writes nothing and returns OK.
Status SaveDocument(const std::string& path, const Document& doc, const Syntax& syntax = Syntax());

// Read-modify-write under FileLock (waiting at most LockTimeout()): loads
// the file (a missing file is an empty document), calls `change`, and saves
// when it returns true. A lock not had in time gives TimedOut and nothing is
// written. Every failure (lock, read, save) is also reported once through
// the StoreReporter, after the lock is released. In read-only mode it takes
// no lock, loads and calls `change` all the same, writes nothing and returns
// OK (a read error other than a missing file is still returned).
Status UpdateDocument(const std::string& path, const std::function<bool(Document&)>& change,
                      const Syntax& syntax = Syntax());

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_DOCUMENT_STORE_H_
