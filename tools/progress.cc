#include "tools/progress.h"

#include "tools/root_files.h"
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <utility>


namespace cmcfg_tool {

namespace {

constexpr char kErase[] = "\r\033[K";

// A load that ends sooner is not worth a line that flickers.
constexpr std::chrono::milliseconds kLoadDelay{500};

// The number of extension and attendant files under the root's extension
// database, "1,234" style.
std::string ExtensionFileCount(const std::string& root) {
  size_t count = 0;
  for (const auto& file : FilesBelow(root + "telephony/extensiondb")) {
    const std::string& name = file.first;
    if (name.size() > 4 && name.compare(name.size() - 4, 4, ".cfg") == 0 && name != "system.cfg")
      ++count;
  }
  std::string digits = std::to_string(count), text;
  for (size_t i = 0; i < digits.size(); ++i) {
    if (i != 0 && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

void WriteToStderr(const std::string& text) {
  size_t done = 0;
  while (done < text.size()) {
    ssize_t n = write(STDERR_FILENO, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;  // a progress line is not worth failing for
    done += static_cast<size_t>(n);
  }
}

}  // namespace

std::string ProgressText(const std::string& what, long seconds) {
  return seconds <= 0 ? what : what + " " + std::to_string(seconds) + " s";
}

ProgressLine::ProgressLine(std::function<std::string()> describe, Sink sink,
                           std::chrono::milliseconds delay)
    : describe_(std::move(describe)),
      sink_(std::move(sink)),
      delay_(delay),
      start_(std::chrono::steady_clock::now()) {
  if (delay_.count() <= 0) {
    MutexLock lock(&mutex_);
    Show(0);
  }
  thread_ = std::thread(&ProgressLine::Run, this);
}

ProgressLine::~ProgressLine() { Finish(); }

void ProgressLine::Finish() {
  bool shown;
  {
    MutexLock lock(&mutex_);
    if (stop_) return;
    stop_ = true;
  }
  wake_.NotifyAll();
  thread_.join();
  {
    MutexLock lock(&mutex_);
    shown = shown_;
  }
  if (shown) sink_(kErase);
}

void ProgressLine::Show(long seconds) {
  if (!shown_) what_ = describe_();
  shown_ = true;
  sink_(kErase + ProgressText(what_, seconds));
}

void ProgressLine::Run() {
  MutexLock lock(&mutex_);
  auto next = start_ + std::max(delay_, std::chrono::milliseconds(0));
  if (shown_) next = start_ + std::chrono::seconds(1);
  for (;;) {
    while (!stop_ && std::chrono::steady_clock::now() < next) wake_.WaitUntil(&mutex_, next);
    if (stop_) return;
    const auto elapsed = std::chrono::steady_clock::now() - start_;
    const long seconds =
        static_cast<long>(std::chrono::duration_cast<std::chrono::seconds>(elapsed).count());
    Show(seconds);
    next = start_ + std::chrono::seconds(seconds + 1);
  }
}

std::unique_ptr<ProgressLine> LoadProgressOnTerminal(const std::string& root, std::ostream& err) {
  if (&err != &std::cerr || !isatty(STDERR_FILENO)) return nullptr;
  return std::make_unique<ProgressLine>(
      [root] { return "loading " + ExtensionFileCount(root) + " extension files\u2026"; },
      WriteToStderr, kLoadDelay);
}

}  // namespace cmcfg_tool
