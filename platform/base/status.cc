#include "platform/base/status.h"

namespace cfg {

std::string Status::ToString() const {
  const char* kind = "OK";
  switch (code_) {
    case kOk:
      return "OK";
    case kNotFound:
      kind = "NotFound";
      break;
    case kCorrupt:
      kind = "Corrupt";
      break;
    case kIOError:
      kind = "IOError";
      break;
    case kInvalidArgument:
      kind = "InvalidArgument";
      break;
    case kTimedOut:
      kind = "TimedOut";
      break;
  }
  return std::string(kind) + ": " + message_;
}

}  // namespace cfg
