#ifndef CMCFG_PLATFORM_BASE_LOG_STREAM_H_
#define CMCFG_PLATFORM_BASE_LOG_STREAM_H_

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/base/thread_mutex.h"

// A trace log file. A relative name is placed in the folder named by the
// environment variable "CMCFG_LOG_DIR" when it is set, else in the current
// directory. The file is created (appending) on the first line written, so an
// agent with logging off leaves no file behind. Each TRACE call writes one
// formatted text and flushes it, unless the stream holds lines (Hold).
// Thread-safe.
class LogStream {
 public:
  // Held lines are written once this many bytes are held.
  static constexpr size_t kHoldBytes = size_t{64} << 10;
  // ... or once the oldest held line is this old when another line comes.
  static constexpr int64_t kHoldNanos = 1000 * 1000 * 1000;

  // name: file name; console: also copy every line to stderr; timestamps:
  // prefix lines with the time of day; maxBytes: when the file grows past
  // it, it is renamed to name + ".1" (keeping keepFiles old files) and a new
  // one started; keepFiles: old files kept; lineBuffer: longest formatted
  // text, longer ones are cut; syncEach: fsync after each line.
  LogStream(const char* name, bool console, bool timestamps, int maxBytes, int keepFiles,
            unsigned lineBuffer, bool syncEach);
  // Writes what is held.
  ~LogStream();
  LogStream(const LogStream&) = delete;
  LogStream& operator=(const LogStream&) = delete;

  // Formats and writes one text. level and flags are carried for filtering
  // by other programs and are not used here.
  void TRACE(unsigned char level, const char* format, va_list args, unsigned char flags);

  // From now on lines are kept in memory and written together: when
  // kHoldBytes are held, when a line comes kHoldNanos or more after the
  // oldest held one, at Flush, Release and destruction. For bursts such as
  // a start-up, where one write per line costs more than the work logged.
  // A process that crashes while lines are held loses them: at most
  // kHoldBytes, and nothing older than a second unless no line came since.
  // (The console copy is not held.)
  void Hold();
  // Writes what is held and goes back to one write per line.
  void Release();
  // Writes what is held; holding goes on.
  void Flush();

  // Where a log of this name is written.
  static std::string ResolvePath(const char* name);
  const std::string& path() const { return path_; }

 private:
  bool Open() CMCFG_REQUIRES(mu_);
  void Rotate() CMCFG_REQUIRES(mu_);
  void WriteHeld() CMCFG_REQUIRES(mu_);

  std::string path_;
  bool console_;
  bool timestamps_;
  long maxBytes_;
  int keepFiles_;
  unsigned lineBuffer_;
  bool syncEach_;
  ThreadMutex mu_;
  FILE* file_ CMCFG_GUARDED_BY(mu_) = nullptr;
  long written_ CMCFG_GUARDED_BY(mu_) = 0;  // the file's size, held bytes included
  bool holding_ CMCFG_GUARDED_BY(mu_) = false;
  std::string held_ CMCFG_GUARDED_BY(mu_);
  int64_t heldSince_ CMCFG_GUARDED_BY(mu_) = 0;  // steady clock, of the oldest held line
};

#endif  // CMCFG_PLATFORM_BASE_LOG_STREAM_H_
