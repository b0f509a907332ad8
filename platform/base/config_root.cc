#include "platform/base/config_root.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <unistd.h>
#if __has_include(<linux/openat2.h>)
#include <linux/openat2.h>
#endif

#include <atomic>
#include <cstdlib>
#include <memory>

#include "platform/base/thread_mutex.h"

namespace cfg {

std::string ConfigRoot() {
  // Looked up on every call: tests and the appliance's tools switch roots
  // while the library is loaded.
  const char* root = std::getenv("ORBA_PATH");
  return root != nullptr ? std::string(root) : std::string("/etc/orba-conf/");
}

std::string TelephonyPath(const std::string& name) {
  return ConfigRoot() + "telephony/" + name;
}

namespace {

// The resolved form of `path`, or "" when it cannot be resolved.
std::string Resolved(const std::string& path) {
  char buffer[PATH_MAX];
  return realpath(path.c_str(), buffer) != nullptr ? std::string(buffer) : std::string();
}

// `resolved` and `root` are resolved paths (no trailing "/" but for "/").
bool Within(const std::string& resolved, const std::string& root) {
  if (root == "/") return !resolved.empty() && resolved[0] == '/';
  return resolved.size() > root.size() && resolved.compare(0, root.size(), root) == 0 &&
         resolved[root.size()] == '/';
}

// True for an absolute path without "//", "." or ".." components and
// without a trailing "/": such a path that prefixes a resolved path is
// itself resolved, so no realpath is needed to compare with it.
bool LooksResolved(const std::string& path) {
  if (path.empty() || path[0] != '/') return false;
  if (path == "/") return true;
  if (path.back() == '/') return false;
  for (size_t start = 1; start <= path.size();) {
    size_t end = path.find('/', start);
    if (end == std::string::npos) end = path.size();
    const std::string_view part(path.data() + start, end - start);
    if (part.empty() || part == "." || part == "..") return false;
    start = end + 1;
  }
  return true;
}

// What `fd` has open, as the kernel names it; "" when it cannot tell.
std::string OpenedPath(int fd) {
  char link[64];
  snprintf(link, sizeof(link), "/proc/self/fd/%d", fd);
  char buffer[PATH_MAX];
  ssize_t n = readlink(link, buffer, sizeof(buffer));
  if (n <= 0 || static_cast<size_t>(n) >= sizeof(buffer) || buffer[0] != '/') return std::string();
  return std::string(buffer, static_cast<size_t>(n));
}

}  // namespace

bool IsInsideRoot(const std::string& path) {
  std::string root = Resolved(ConfigRoot());
  if (root.empty() || path.empty()) return false;
  // The file itself may not exist yet; its folder must.
  std::string resolved = Resolved(path);
  if (resolved.empty()) {
    size_t slash = path.rfind('/');
    std::string dir = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..") return false;
    std::string folder = Resolved(dir);
    if (folder.empty()) return false;
    resolved = folder + "/" + name;
  }
  return Within(resolved, root);
}

bool IsUnderRootName(const std::string& path) {
  const std::string root = ConfigRoot();
  if (root.empty() || path.size() <= root.size() || path.compare(0, root.size(), root) != 0)
    return false;
  return root.back() == '/' || (path[root.size()] == '/' && path.size() > root.size() + 1);
}

bool OpenedInsideRoot(int fd, const std::string& path) {
  std::string opened = OpenedPath(fd);
  if (opened.empty()) opened = Resolved(path);  // no /proc: resolve the name instead
  if (opened.empty()) return false;
  std::string root = ConfigRoot();
  while (root.size() > 1 && root.back() == '/') root.pop_back();
  if (LooksResolved(root) && Within(opened, root)) return true;
  // The root itself may be reached through a link (or given relative).
  const std::string resolved_root = Resolved(root);
  return !resolved_root.empty() && Within(opened, resolved_root);
}

namespace {

// The root's descriptor of the live scopes.
struct RootHandle {
  std::string root;  // ConfigRoot() when it was opened
  int fd = -1;
  ~RootHandle() {
    if (fd >= 0) close(fd);
  }
};

struct Scopes {
  ThreadMutex mu;
  int count CMCFG_GUARDED_BY(mu) = 0;
  std::shared_ptr<RootHandle> handle CMCFG_GUARDED_BY(mu);  // null until first needed
};

Scopes& TheScopes() {
  static Scopes* scopes = new Scopes;  // never destroyed: used until exit
  return *scopes;
}

std::atomic<bool> g_no_openat2{false};

// The scopes' handle for `root`, opened on first use; null when no scope
// lives or it was opened for another root.
std::shared_ptr<RootHandle> HandleFor(const std::string& root) {
  Scopes& scopes = TheScopes();
  MutexLock lock(&scopes.mu);
  if (scopes.count == 0) return nullptr;
  if (scopes.handle == nullptr) {
    auto handle = std::make_shared<RootHandle>();
    handle->root = root;
    handle->fd = open(root.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    scopes.handle = std::move(handle);
  }
  if (scopes.handle->root != root || scopes.handle->fd < 0) return nullptr;
  return scopes.handle;
}

}  // namespace

RootScope::RootScope() {
  Scopes& scopes = TheScopes();
  MutexLock lock(&scopes.mu);
  ++scopes.count;
}

RootScope::~RootScope() {
  Scopes& scopes = TheScopes();
  MutexLock lock(&scopes.mu);
  // A reader still holding the handle keeps the descriptor open until it
  // is done.
  if (--scopes.count == 0) scopes.handle.reset();
}

int OpenUnderRoot(const std::string& path, int flags, bool* handled) {
  *handled = false;
  if (g_no_openat2.load(std::memory_order_relaxed)) return -1;
  const std::string root = ConfigRoot();
  if (root.empty() || path.size() <= root.size() || path.compare(0, root.size(), root) != 0)
    return -1;
  size_t start = root.size();
  if (root.back() != '/') {
    if (path[start] != '/') return -1;  // a sibling that shares the prefix
    ++start;
  }
  if (start >= path.size()) return -1;
#if defined(SYS_openat2) && defined(RESOLVE_BENEATH)
  const std::shared_ptr<RootHandle> handle = HandleFor(root);
  if (handle == nullptr) return -1;
  struct open_how how = {};
  how.flags = static_cast<uint64_t>(flags);
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
  for (;;) {
    const long fd = syscall(SYS_openat2, handle->fd, path.c_str() + start, &how, sizeof(how));
    if (fd >= 0) {
      *handled = true;
      return static_cast<int>(fd);
    }
    switch (errno) {
      case EINTR:
        continue;
      case ENOSYS:
      case EPERM:  // a filter that forbids the call
        g_no_openat2.store(true, std::memory_order_relaxed);
        return -1;
      case EXDEV:   // out of the root, or an absolute link: the slow way decides
      case EAGAIN:  // a rename raced with the walk
      case ELOOP:   // perhaps a magic link; a real loop fails the slow way too
      case EINVAL:
        return -1;
      default:
        *handled = true;
        return -1;
    }
  }
#else
  (void)flags;  // built without openat2: the caller's way is the only one
  return -1;
#endif
}

bool IsPlainFileName(std::string_view name) {
  if (name.empty() || name == "." || name == "..") return false;
  for (char c : name) {
    const unsigned char u = static_cast<unsigned char>(c);
    if (c == '/' || u < 0x20 || u == 0x7F) return false;
  }
  return true;
}

}  // namespace cfg
