#ifndef CMCFG_TESTS_SUPPORT_FAILING_SAVES_H_
#define CMCFG_TESTS_SUPPORT_FAILING_SAVES_H_

#include <string>

#include "platform/base/posix_file_system.h"

namespace testing_support {

// The real file system, except that every atomic save fails at its last
// step, as on a full or broken medium: the tests run as root, where no
// permission makes the real one fail. Installed for the object's lifetime.
class FailingSaves : public cfg::PosixFileSystem {
 public:
  FailingSaves() { cfg::FileSystem::SetDefaultForTesting(this); }
  ~FailingSaves() override { cfg::FileSystem::SetDefaultForTesting(nullptr); }

 protected:
  cfg::Status Rename(const std::string&, const std::string& to) override {
    return cfg::Status::IOError("no space left to replace " + to);
  }
};

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_FAILING_SAVES_H_
