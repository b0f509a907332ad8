#ifndef CMCFG_TOOLS_PROGRESS_H_
#define CMCFG_TOOLS_PROGRESS_H_

#include <chrono>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <thread>

#include "platform/base/thread_mutex.h"

namespace cmcfg_tool {

// "WHAT" alone at 0 seconds, else "WHAT N s".
std::string ProgressText(const std::string& what, long seconds);

// One line that tells a person at a terminal that something slow is under
// way: once `delay` has passed it shows describe() (computed then, in the
// line's own thread, so a fast task pays nothing for it) and then the
// elapsed seconds, once a second; Finish erases it. Each text goes to `sink`
// whole, starting with "\r\033[K" so it replaces the one before. A zero
// delay shows the first text before the constructor returns.
class ProgressLine {
 public:
  using Sink = std::function<void(const std::string& text)>;

  ProgressLine(std::function<std::string()> describe, Sink sink, std::chrono::milliseconds delay);
  // Finishes.
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  // Stops the updates and erases what was shown ("\r\033[K" to the sink),
  // nothing when nothing was. Returns when the line's thread has ended;
  // later calls do nothing.
  void Finish();

 private:
  void Show(long seconds) CMCFG_REQUIRES(mutex_);
  void Run();

  std::function<std::string()> describe_;
  Sink sink_;
  std::chrono::milliseconds delay_;
  std::chrono::steady_clock::time_point start_;
  ThreadMutex mutex_;
  ThreadCondition wake_;
  bool stop_ CMCFG_GUARDED_BY(mutex_) = false;
  bool shown_ CMCFG_GUARDED_BY(mutex_) = false;
  std::string what_ CMCFG_GUARDED_BY(mutex_);  // describe() once shown
  std::thread thread_;
};

// The line for loading the root `root` ("loading 1,234 extension files…"),
// shown after half a second, written straight to file descriptor 2; null
// when err is not std::cerr or stderr is not a terminal, so pipes, logs and
// tests stay clean.
std::unique_ptr<ProgressLine> LoadProgressOnTerminal(const std::string& root, std::ostream& err);

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_PROGRESS_H_
