#include "platform/base/file_lock.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <errno.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "platform/base/file_system.h"
#include "platform/base/posix_file_system.h"
#include "platform/base/thread_mutex.h"

namespace cfg {

namespace {

std::atomic<long long> lock_timeout_ms{kDefaultLockTimeout.count()};

// Polling: the first retries come quickly (a save takes milliseconds), later
// ones no more than every few milliseconds, so a waiter still finds the gaps
// between the saves of a busy writer.
constexpr std::chrono::microseconds kFirstPause{50};
constexpr std::chrono::microseconds kLongestPause{2000};

// At most this many temporaries of live pids stay noted; more would mean
// something else is wrong, and the lock file must stay small.
constexpr size_t kMaxKeptTemps = 8;

std::string Folder(const std::string& path) {
  size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string BaseName(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// The locks held in this process, each with the thread that took it, so
// SaveDocument can tell whether its caller holds the file's lock.
struct HeldLock {
  FileLock* lock;
  std::string path;
  std::thread::id owner;
};

struct HeldLocks {
  ThreadMutex mu;
  std::vector<HeldLock> locks CMCFG_GUARDED_BY(mu);
};

HeldLocks& Held() {
  static HeldLocks* held = new HeldLocks;  // never destroyed: locks may outlive statics
  return *held;
}

void Forget(const FileLock* lock) {
  HeldLocks& held = Held();
  MutexLock guard(&held.mu);
  held.locks.erase(std::remove_if(held.locks.begin(), held.locks.end(),
                                  [lock](const HeldLock& h) { return h.lock == lock; }),
                   held.locks.end());
}

}  // namespace

std::string LockFolder() {
  const char* set = std::getenv("CMCFG_LOCK_DIR");
  if (set != nullptr && *set != '\0') return set;
  struct stat st;
  if (stat("/run/lock", &st) == 0 && S_ISDIR(st.st_mode) && access("/run/lock", W_OK) == 0)
    return "/run/lock/cmcfg";
  const char* tmp = std::getenv("TMPDIR");
  return std::string(tmp != nullptr && *tmp == '/' ? tmp : "/tmp") + "/cmcfg-locks";
}

Status LockPathFor(const std::string& path, std::string* lock_path) {
  const std::string folder = Folder(path);
  struct stat st;
  if (stat(folder.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
    return Status::IOError("cannot lock " + path + ": its folder " + folder + " is not there");
  const std::string locks = LockFolder();
  if (mkdir(locks.c_str(), 01777) == 0) {
    chmod(locks.c_str(), 01777);  // shared by writers of every user; the umask would narrow it
  } else if (errno != EEXIST) {
    return Status::IOError("cannot create the lock folder " + locks + ": " + std::strerror(errno));
  }
  // The folder's identity, not its spelling: every path to the file finds
  // the same lock. A long name is hashed to stay within a file name's limit.
  std::string name = BaseName(path);
  if (name.size() > 180) {
    uint64_t h = 1469598103934665603ull;  // FNV-1a
    for (unsigned char c : name) h = (h ^ c) * 1099511628211ull;
    name = "hash-" + std::to_string(h);
  }
  *lock_path = locks + "/" + std::to_string(static_cast<uint64_t>(st.st_dev)) + "-" +
               std::to_string(static_cast<uint64_t>(st.st_ino)) + "-" + name + ".lock";
  return Status::OK();
}

void SetLockTimeout(std::chrono::milliseconds timeout) {
  lock_timeout_ms.store(std::max<long long>(0, timeout.count()));
}

std::chrono::milliseconds LockTimeout() { return std::chrono::milliseconds(lock_timeout_ms.load()); }

FileLock::FileLock(const std::string& path) : FileLock(path, LockTimeout()) {}

FileLock::FileLock(const std::string& path, std::chrono::milliseconds timeout) : path_(path) {
  if (path.empty()) {  // would lock ".lock" in whatever folder is current
    status_ = Status::InvalidArgument("no file to lock");
    return;
  }
  if (IsReadOnly()) {  // nothing will be written: no lock file, no temporaries to clear
    nominal_ = true;
    return;
  }
  Status where = LockPathFor(path, &lock_path_);
  if (!where.ok()) {
    status_ = where;
    return;
  }
  const std::string& lock_path = lock_path_;
  // O_NOFOLLOW: the lock folder is shared, and a link planted under a
  // lock's name must not make us create or truncate a file elsewhere.
  int fd = open(lock_path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0666);
  if (fd < 0) {
    status_ = Status::IOError("cannot open " + lock_path + ": " + std::strerror(errno));
    return;
  }
  fchmod(fd, 0666);  // writers of any user share the lock, whatever the umask
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  std::chrono::microseconds pause = kFirstPause;
  for (;;) {
    if (flock(fd, LOCK_EX | LOCK_NB) == 0) break;
    const int error = errno;
    if (error == EINTR) continue;
    const auto now = std::chrono::steady_clock::now();
    if (error != EWOULDBLOCK || now >= deadline) {
      close(fd);
      status_ = error != EWOULDBLOCK
                    ? Status::IOError("cannot lock " + lock_path + ": " + std::strerror(error))
                    : Status::TimedOut("another writer held " + lock_path + " for more than " +
                                       std::to_string(std::max<long long>(0, timeout.count())) +
                                       " ms");
      return;
    }
    std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(pause, deadline - now));
    pause = std::min(pause * 2, kLongestPause);
  }
  fd_ = fd;
  {
    HeldLocks& held = Held();
    MutexLock guard(&held.mu);
    held.locks.push_back(HeldLock{this, path_, std::this_thread::get_id()});
  }
  RemoveStaleTemps();
}

FileLock::~FileLock() {
  if (fd_ < 0) return;
  Forget(this);
  flock(fd_, LOCK_UN);
  close(fd_);
}

void FileLock::RemoveStaleTemps() {
  char buffer[4096];
  ssize_t n;
  do {
    n = pread(fd_, buffer, sizeof(buffer), 0);
  } while (n < 0 && errno == EINTR);
  if (n <= 0) return;  // the usual case: the last save under the lock finished
  const std::string folder = Folder(path_) + "/";
  std::string_view notes(buffer, static_cast<size_t>(n));
  while (!notes.empty()) {
    size_t end = notes.find('\n');
    const std::string name(notes.substr(0, end));
    notes.remove_prefix(end == std::string_view::npos ? notes.size() : end + 1);
    // Anything but one of our temporaries of this file is ignored (and
    // dropped from the notes): the lock file must never remove other files.
    const long pid = TempFileWriter(path_, name);
    if (pid <= 0 || std::find(kept_.begin(), kept_.end(), name) != kept_.end()) continue;
    const bool dead = static_cast<pid_t>(pid) == getpid() ||
                      (kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH);
    if (dead) {
      Status removed = FileSystem::Default()->RemoveFile(folder + name);
      if (removed.ok() || removed.IsNotFound()) continue;
    }
    if (kept_.size() < kMaxKeptTemps) kept_.push_back(name);
  }
  WriteNotes(std::string());  // best effort: the notes are rewritten by every save
}

Status FileLock::WriteNotes(const std::string& extra) {
  std::string text;
  for (const std::string& name : kept_) text += name + "\n";
  if (!extra.empty()) text += extra + "\n";
  size_t done = 0;
  while (done < text.size()) {
    ssize_t n = pwrite(fd_, text.data() + done, text.size() - done, static_cast<off_t>(done));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return Status::IOError("cannot note in " + lock_path_ + ": " + std::strerror(errno));
    done += static_cast<size_t>(n);
  }
  if (ftruncate(fd_, static_cast<off_t>(text.size())) != 0)
    return Status::IOError("cannot note in " + lock_path_ + ": " + std::strerror(errno));
  return Status::OK();
}

// A save by a thread that holds the file's lock: the temporary is noted in
// the lock file before it exists and forgotten once it is gone, so a crash
// at any instant leaves it noted for the next holder.
class LockedSave {
 public:
  static FileLock* Find(const std::string& path) {
    HeldLocks& held = Held();
    MutexLock guard(&held.mu);
    const std::thread::id self = std::this_thread::get_id();
    for (const HeldLock& h : held.locks)
      if (h.owner == self && h.path == path) return h.lock;
    return nullptr;
  }

  static Status Write(const std::string& path, std::string_view text) {
    FileSystem* fs = FileSystem::Default();
    FileLock* lock = Find(path);
    if (lock == nullptr) return fs->WriteFileAtomic(path, text);
    const std::string temp = TempPathFor(path);
    const std::string name = BaseName(temp);
    // Never a temporary that is not noted: a save that cannot note fails.
    Status s = lock->WriteNotes(name);
    if (!s.ok()) return s;
    s = fs->WriteFileAtomicVia(path, temp, text);
    if (!s.ok() && fs->FileExists(temp) && lock->kept_.size() < kMaxKeptTemps)
      lock->kept_.push_back(name);  // could not be removed: a later holder tries again
    lock->WriteNotes(std::string());
    return s;
  }
};


Status WriteNotingTemporary(const std::string& path, std::string_view text) {
  return LockedSave::Write(path, text);
}
}  // namespace cfg
