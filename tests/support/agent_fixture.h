#ifndef CMCFG_TESTS_SUPPORT_AGENT_FIXTURE_H_
#define CMCFG_TESTS_SUPPORT_AGENT_FIXTURE_H_

#include <memory>
#include <string>

#include "cmcfg/cm_agent.h"
#include "tests/support/agent_support.h"
#include "tests/support/temp_root.h"

namespace testing_support {

// A test over its own configuration root: write the files, then Start()
// constructs the agent over them; Fresh() a second one, which shows what a
// change left in the files.
class AgentTest : public ::testing::Test {
 protected:
  void SetUp() override { root_.MakeDir("telephony"); }
  void TearDown() override {
    for (std::unique_ptr<CMAgent>* agent : {&agent_, &fresh_}) {
      if (*agent) ReleaseTables(**agent);
      agent->reset();
    }
  }
  CMAgent& Start() { return Renew(agent_); }
  CMAgent& Fresh() { return Renew(fresh_); }
  ExtensionData* Find(const std::string& name) const { return FindExtension(*agent_, name); }
  std::string Log() const { return root_.Read("cmcfg.log"); }

  TempRoot root_;
  std::unique_ptr<CMAgent> agent_, fresh_;

 private:
  static CMAgent& Renew(std::unique_ptr<CMAgent>& agent) {
    if (agent) ReleaseTables(*agent);
    agent.reset(new CMAgent);
    return *agent;
  }
};

}  // namespace testing_support

#endif  // CMCFG_TESTS_SUPPORT_AGENT_FIXTURE_H_
