#include "platform/base/document_store.h"

#include <unistd.h>

#include <errno.h>

#include <memory>
#include <string_view>
#include <utility>

#include "platform/base/document_render.h"
#include "platform/base/file_lock.h"
#include "platform/base/file_system.h"
#include "platform/base/thread_mutex.h"

namespace cfg {

namespace {

// The installed reporter; reports are made one at a time under its mutex.
struct Reporting {
  ThreadMutex mu;
  StoreReporter reporter CMCFG_GUARDED_BY(mu);
};

Reporting& Installed() {
  static Reporting* installed = new Reporting;  // never destroyed: saves may run at exit
  return *installed;
}

void ReportToStderr(const std::string& line) {
  const std::string out = "cmcfg store: " + line + "\n";
  ssize_t n;
  do {
    n = write(STDERR_FILENO, out.data(), out.size());
  } while (n < 0 && errno == EINTR);
}

thread_local bool reporting = false;

}  // namespace

void ReportStoreFailure(const std::string& path, const Status& s) {
  const std::string line = "cannot save " + path + ": " + s.ToString();
  if (reporting) {  // a save from inside the reporter failed
    ReportToStderr(line);
    return;
  }
  Reporting& installed = Installed();
  MutexLock guard(&installed.mu);
  reporting = true;
  if (installed.reporter) {
    installed.reporter(line);
  } else {
    ReportToStderr(line);
  }
  reporting = false;
}

void SetStoreReporter(StoreReporter reporter) {
  Reporting& installed = Installed();
  MutexLock guard(&installed.mu);
  installed.reporter = std::move(reporter);
}

Status LoadDocument(const std::string& path, Document* doc, const Syntax& syntax) {
  std::unique_ptr<Arena> arena;
  std::string_view text;
  Status s = FileSystem::Default()->ReadFileToArena(path, &arena, &text);
  if (!s.ok()) {
    *doc = Document();
    return s;
  }
  *doc = Document::Parse(std::move(arena), text, syntax);
  return s;
}

Status SaveDocument(const std::string& path, const Document& doc, const Syntax& syntax) {
  if (IsReadOnly()) return Status::OK();
  Status s = WriteNotingTemporary(path, RenderEdited(doc, syntax));
  if (!s.ok()) ReportStoreFailure(path, s);
  return s;
}

namespace {

Status UpdateUnderLock(const std::string& path, const std::function<bool(Document&)>& change,
                       const Syntax& syntax) {
  const bool readOnly = IsReadOnly();
  FileLock lock(path);
  if (!lock.locked()) return lock.status();
  Document doc;
  Status s = LoadDocument(path, &doc, syntax);
  if (!s.ok() && !s.IsNotFound()) return s;
  // In read-only mode the change still runs: its caller computes from it
  // what it would hold after the save.
  if (!change || !change(doc) || readOnly) return Status::OK();
  return WriteNotingTemporary(path, RenderEdited(doc, syntax));
}

}  // namespace

Status UpdateDocument(const std::string& path, const std::function<bool(Document&)>& change,
                      const Syntax& syntax) {
  Status s = UpdateUnderLock(path, change, syntax);
  if (!s.ok()) ReportStoreFailure(path, s);  // the lock is free again: a slow reporter holds no one up
  return s;
}

}  // namespace cfg
