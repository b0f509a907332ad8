#include "platform/base/log_stream.h"

#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <vector>

namespace {

// A lineBuffer of 0 would leave no room for any text.
constexpr unsigned kDefaultLineBuffer = 2048;

// "HH:MM:SS.mmm "
std::string TimeOfDay() {
  struct timeval tv;
  gettimeofday(&tv, nullptr);
  struct tm tm;
  time_t seconds = tv.tv_sec;
  localtime_r(&seconds, &tm);
  char text[32];
  snprintf(text, sizeof(text), "%02d:%02d:%02d.%03ld ", tm.tm_hour, tm.tm_min, tm.tm_sec,
           static_cast<long>(tv.tv_usec / 1000));
  return text;
}

int64_t SteadyNanos() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

}  // namespace

LogStream::LogStream(const char* name, bool console, bool timestamps, int maxBytes,
                     int keepFiles, unsigned lineBuffer, bool syncEach)
    : path_(ResolvePath(name)),
      console_(console),
      timestamps_(timestamps),
      maxBytes_(maxBytes),
      keepFiles_(keepFiles),
      lineBuffer_(lineBuffer > 0 ? lineBuffer : kDefaultLineBuffer),
      syncEach_(syncEach) {}

LogStream::~LogStream() {
  MutexLock lock(&mu_);
  WriteHeld();
  if (file_ != nullptr) fclose(file_);
}

std::string LogStream::ResolvePath(const char* name) {
  std::string file = name != nullptr ? name : "";
  if (file.empty() || file[0] == '/') return file;
  const char* dir = std::getenv("CMCFG_LOG_DIR");
  if (dir == nullptr || *dir == '\0') return file;
  std::string path = dir;
  if (path.back() != '/') path += '/';
  return path + file;
}

void LogStream::TRACE(unsigned char level, const char* format, va_list args,
                      unsigned char flags) {
  (void)level;
  (void)flags;
  if (format == nullptr || path_.empty()) return;
  // Formatted on the stack: a heap buffer per line cost as much as the
  // formatting.
  char local[kDefaultLineBuffer];
  std::vector<char> large;
  char* buffer = local;
  size_t size = lineBuffer_;
  if (size > sizeof(local)) {
    large.resize(size);
    buffer = large.data();
  }
  va_list copy;
  va_copy(copy, args);
  int n = vsnprintf(buffer, size, format, copy);
  va_end(copy);
  if (n < 0) return;
  const size_t length = static_cast<size_t>(n) < size ? static_cast<size_t>(n) : size - 1;
  std::string stamped;
  std::string_view line(buffer, length);
  if (timestamps_) {
    stamped = TimeOfDay();
    stamped.append(line);
    line = stamped;
  }

  MutexLock lock(&mu_);
  if (console_) fwrite(line.data(), 1, line.size(), stderr);
  if (maxBytes_ > 0 && written_ > 0 && written_ + static_cast<long>(line.size()) > maxBytes_) {
    WriteHeld();
    Rotate();
  }
  if (!Open()) return;  // a log that cannot be written is not worth failing for
  if (holding_) {
    const int64_t now = SteadyNanos();
    if (held_.empty()) heldSince_ = now;
    held_.append(line);
    written_ += static_cast<long>(line.size());
    if (held_.size() >= kHoldBytes || now - heldSince_ >= kHoldNanos) WriteHeld();
    return;
  }
  if (fwrite(line.data(), 1, line.size(), file_) == line.size()) written_ += static_cast<long>(line.size());
  fflush(file_);
  if (syncEach_) fsync(fileno(file_));
}

void LogStream::Hold() {
  MutexLock lock(&mu_);
  holding_ = true;
}

void LogStream::Release() {
  MutexLock lock(&mu_);
  WriteHeld();
  holding_ = false;
}

void LogStream::Flush() {
  MutexLock lock(&mu_);
  WriteHeld();
}

void LogStream::WriteHeld() {
  if (held_.empty()) return;
  if (Open()) {
    fwrite(held_.data(), 1, held_.size(), file_);
    fflush(file_);
    if (syncEach_) fsync(fileno(file_));
  }
  held_.clear();
}

bool LogStream::Open() {
  if (file_ != nullptr) return true;
  file_ = fopen(path_.c_str(), "a");
  if (file_ == nullptr) return false;
  struct stat st;
  written_ = fstat(fileno(file_), &st) == 0 ? static_cast<long>(st.st_size) : 0;
  return true;
}

// name.(k-1) -> name.k, ..., name -> name.1; the oldest beyond keepFiles
// goes. With no old files kept the log simply starts again.
void LogStream::Rotate() {
  if (file_ != nullptr) {
    fclose(file_);
    file_ = nullptr;
  }
  written_ = 0;
  if (keepFiles_ <= 0) {
    unlink(path_.c_str());
    return;
  }
  for (int k = keepFiles_; k > 1; --k)
    rename((path_ + "." + std::to_string(k - 1)).c_str(), (path_ + "." + std::to_string(k)).c_str());
  rename(path_.c_str(), (path_ + ".1").c_str());
}
