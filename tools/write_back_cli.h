#ifndef CMCFG_TOOLS_WRITE_BACK_CLI_H_
#define CMCFG_TOOLS_WRITE_BACK_CLI_H_

#include <iosfwd>

#include "tools/write_back.h"

namespace CLI {
class App;
}

namespace cmcfg_tool {

// The command lines of the write-back verbs "forward", "block", "contact"
// and "port": registers them on the tool's application and runs the one
// that was given.
class WriteBackVerbs {
 public:
  // Adds the four sub-commands, with their options and help, to `app`,
  // which must outlive this object.
  explicit WriteBackVerbs(CLI::App* app);
  WriteBackVerbs(const WriteBackVerbs&) = delete;
  WriteBackVerbs& operator=(const WriteBackVerbs&) = delete;

  // After a successful parse: the exit status of the verb that was given,
  // or -1 when it was none of these.
  int Run(std::ostream& out, std::ostream& err);

 private:
  CLI::App* forwardCmd_ = nullptr;
  CLI::App* blockCmd_ = nullptr;
  CLI::App* contactCmd_ = nullptr;
  CLI::App* portCmd_ = nullptr;
  ForwardOptions forward_;
  std::string forwardAction_;
  BlockOptions block_;
  bool incoming_ = false;
  bool outgoing_ = false;
  int callType_ = kCallNumber;
  ContactOptions contact_;
  std::string contactMode_;
  PortOptions port_;
};

}  // namespace cmcfg_tool

#endif  // CMCFG_TOOLS_WRITE_BACK_CLI_H_
