#ifndef CMCFG_TESTS_SUPPORT_AGENT_FIXTURE_H_
#define CMCFG_TESTS_SUPPORT_AGENT_FIXTURE_H_

#include <memory>

#include "cmcfg/cm_agent.h"
#include "tests/support/agent_support.h"
#include "tests/support/temp_root.h"

namespace testing_support {

// A test over its own configuration root: write the files, then Start()
// constructs the agent over them.
class AgentTest : public ::testing::Test {
 protected:
  void SetUp() override { root_.MakeDir("telephony"); }
  void TearDown() override {
    if (agent_) ReleaseTables(*agent_);
    agent_.reset();
  }
  CMAgent& Start() {
    if (agent_) ReleaseTables(*agent_);
    agent_.reset(new CMAgent);
    return *agent_;
  }

  TempRoot root_;
  std::unique_ptr<CMAgent> agent_;
};

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_AGENT_FIXTURE_H_
