#ifndef CMCFG_PLATFORM_BASE_STATUS_H_
#define CMCFG_PLATFORM_BASE_STATUS_H_

#include <string>
#include <utility>

namespace cfg {

// Result of a store operation: ok, or what went wrong and why.
class Status {
 public:
  enum Code { kOk = 0, kNotFound, kCorrupt, kIOError, kInvalidArgument, kTimedOut };

  Status() = default;
  static Status OK() { return Status(); }
  static Status NotFound(std::string msg) { return Status(kNotFound, std::move(msg)); }
  static Status Corrupt(std::string msg) { return Status(kCorrupt, std::move(msg)); }
  static Status IOError(std::string msg) { return Status(kIOError, std::move(msg)); }
  static Status InvalidArgument(std::string msg) { return Status(kInvalidArgument, std::move(msg)); }
  // Gave up waiting for something another process holds (a file's lock).
  static Status TimedOut(std::string msg) { return Status(kTimedOut, std::move(msg)); }

  bool ok() const { return code_ == kOk; }
  bool IsNotFound() const { return code_ == kNotFound; }
  bool IsTimedOut() const { return code_ == kTimedOut; }
  Code code() const { return code_; }
  const std::string& message() const { return message_; }
  // "OK", or "<kind>: <message>".
  std::string ToString() const;

 private:
  Status(Code code, std::string msg) : code_(code), message_(std::move(msg)) {}
  Code code_ = kOk;
  std::string message_;
};

}  // namespace cfg

#endif  // CMCFG_PLATFORM_BASE_STATUS_H_
