#ifndef CMCFG_PLATFORM_BASE_LOG_STREAM_H_
#define CMCFG_PLATFORM_BASE_LOG_STREAM_H_

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>

// A trace log file. A relative name is placed in the folder named by the
// environment variable "CMCFG_LOG_DIR" when it is set, else in the current
// directory. The file is created (appending) on the first line written, so an
// agent with logging off leaves no file behind. Each TRACE call writes one
// formatted text and flushes it. Thread-safe.
class LogStream {
 public:
  // name: file name; console: also copy every line to stderr; timestamps:
  // prefix lines with the time of day; maxBytes: when the file grows past
  // it, it is renamed to name + ".1" (keeping keepFiles old files) and a new
  // one started; keepFiles: old files kept; lineBuffer: longest formatted
  // text, longer ones are cut; syncEach: fsync after each line.
  LogStream(const char* name, bool console, bool timestamps, int maxBytes, int keepFiles,
            unsigned lineBuffer, bool syncEach);
  ~LogStream();
  LogStream(const LogStream&) = delete;
  LogStream& operator=(const LogStream&) = delete;

  // Formats and writes one text. level and flags are carried for filtering
  // by other programs and are not used here.
  void TRACE(unsigned char level, const char* format, va_list args, unsigned char flags);

  // Where a log of this name is written.
  static std::string ResolvePath(const char* name);
  const std::string& path() const { return path_; }

 private:
  // Both need mu_ held.
  bool Open();
  void Rotate();

  std::string path_;
  bool console_;
  bool timestamps_;
  long maxBytes_;
  int keepFiles_;
  unsigned lineBuffer_;
  bool syncEach_;
  std::mutex mu_;
  FILE* file_ = nullptr;
  long written_ = 0;
};

#endif  // CMCFG_PLATFORM_BASE_LOG_STREAM_H_
