// Two processes write back to the same extension at the same time, as the
// call manager and the web configuration do: no change may be lost.
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "cmcfg/cm_agent.h"
#include "tests/support/agent_fixture.h"
#include "tests/support/lock_files.h"

namespace {

using testing_support::ReleaseTables;

const char kUser[] =
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
    "section contact 2\n{\nname = 5001\ncall_type = 0\n}\n"
    "section contact 2 clir\n{\nactive = 1\n}\n";

constexpr int kPerProcess = 200;

ExtensionData* Find(CMAgent& agent, const std::string& name) {
  for (ExtensionData* e : agent.extensionBase)
    if (e != nullptr && e->name == name) return e;
  return nullptr;
}

std::string Number(char prefix, int i) { return prefix + std::to_string(1000 + i); }

// Blocks kPerProcess numbers starting with `prefix` through an agent of its
// own; the count of calls that did not add a blocked contact.
int BlockMany(char prefix) {
  CMAgent agent;
  agent.Destroy();  // as in service: every operation opens what it needs
  ExtensionData* user = Find(agent, "101");
  int failed = user == nullptr ? kPerProcess : 0;
  for (int i = 0; user != nullptr && i < kPerProcess; ++i)
    failed += agent.BlockContact(user, Number(prefix, i), kCallNumber, true) != 0;
  ReleaseTables(agent);
  return failed;
}

class ConcurrentWriteBackTest : public testing_support::AgentTest {};

TEST_F(ConcurrentWriteBackTest, TwoProcessesBlockingContactsLoseNothing) {
  root_.Write("telephony/extensiondb/user/101.cfg", kUser);
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    alarm(120);  // never outlives a test that went wrong
    _exit(BlockMany('7') == 0 ? 0 : 1);
  }
  EXPECT_EQ(0, BlockMany('8'));
  int status = 0;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the other process failed";

  ExtensionData* user = Find(Start(), "101");
  ASSERT_NE(nullptr, user);
  std::set<std::string> blocked;
  std::set<int32_t> ids;
  for (const AddressBookEntry& entry : user->addressBook) {
    EXPECT_TRUE(ids.insert(entry.first.id).second) << "contact id used twice: " << entry.first.id;
    if (entry.second.incomingBlocking.active) blocked.insert(entry.first.name);
  }
  for (char prefix : {'7', '8'})
    for (int i = 0; i < kPerProcess; ++i)
      EXPECT_EQ(1u, blocked.count(Number(prefix, i))) << Number(prefix, i) << " is lost";
  EXPECT_EQ(2u + 2 * kPerProcess, user->addressBook.size());
  // What was there before is untouched.
  EXPECT_EQ(0u, blocked.count("5001"));
  for (const AddressBookEntry& entry : user->addressBook) {
    if (entry.first.name == "5001") {
      EXPECT_EQ(1, entry.second.clir.active);
    }
  }
  EXPECT_EQ("", testing_support::ReadLock(root_, "telephony/extensiondb/user/101.cfg"));  // nothing left noted
}

}  // namespace
