// Several processes write back to the same extension at the same time, as
// the call manager, the web configuration and the tool do: the file must
// end as some serial order of the operations that reported success, and an
// operation that found its change impossible must have reported failure.
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "cmcfg/cm_agent.h"
#include "platform/base/document.h"
#include "platform/base/document_store.h"
#include "tests/support/agent_fixture.h"
#include "tests/support/lock_files.h"

namespace {

using testing_support::ReleaseTables;

const char kFile[] = "telephony/extensiondb/user/101.cfg";
const char kUser[] =
    "# any caller: forward to 101 when switched on\n"
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n\n"
    "section contact 1 forward_unconditional\n{\nactive = 0\ntext = Away\n"
    "destination_1 = 1,0,101\n}\n\n"
    "section contact 2\n{\nname = 5001\ncall_type = 0\n}\n"
    "section contact 2 clir\n{\nactive = 1\n}\n";

constexpr int kProcesses = 4;
constexpr int kRounds = 20;

// What one process saw succeed.
struct Tally {
  int blocked_own = 0;     // its own numbers added to the black list
  int shared_added = 0;    // the number every process blocks: added by this one
  int phone_set = 0;       // the phone's forward number set where none was
  int phone_cleared = 0;   // and removed where one was
  int switched = 0;
  int saved_users = 0;
};

ExtensionData* Find(CMAgent& agent, const std::string& name) {
  for (ExtensionData* e : agent.extensionBase)
    if (e != nullptr && e->name == name) return e;
  return nullptr;
}

std::string Own(int process, int round) {
  return "7" + std::to_string(process) + std::to_string(10 + round);
}

AuthorizedPhonesData Phone(const std::string& address, int32_t loginTime) {
  AuthorizedPhonesData user;
  user.phoneAddress = address;
  user.phoneType = 1;
  user.extension = "101";
  user.loginTime = loginTime;
  return user;
}

// The mixed operations of one process, each through the agent as the call
// manager makes them.
Tally Work(int process) {
  Tally t;
  CMAgent agent;
  agent.Destroy();  // as in service: every operation opens what it needs
  ExtensionData* user = Find(agent, "101");
  for (int r = 0; user != nullptr && r < kRounds; ++r) {
    t.blocked_own += agent.BlockContact(user, Own(process, r), kCallNumber, true) == 0;
    t.shared_added += agent.BlockContact(user, "5999", kCallNumber, false) == 0;
    t.phone_set += agent.UpdateForwardService(user, "*9" + Own(process, r), true, false);
    t.switched += agent.SwitchForwardService(user);
    t.phone_cleared += agent.UpdateForwardService(user, "", false, false);
    AuthorizedPhonesData own = Phone("10.0.0." + std::to_string(process), r);
    AuthorizedPhonesData shared = Phone("10.9.9.9", r);
    t.saved_users += agent.SaveAutologinUser(&own) + agent.SaveAutologinUser(&shared);
  }
  ReleaseTables(agent);
  return t;
}

class ConcurrentWriteBackTest : public testing_support::AgentTest {};

TEST_F(ConcurrentWriteBackTest, MixedOperationsOfManyProcessesSerialize) {
  root_.Write(kFile, kUser);
  root_.Write("telephony/authorized_phones.cfg", "# phones that log in by themselves\n");
  int pipes[kProcesses][2];
  pid_t children[kProcesses];
  for (int p = 0; p < kProcesses; ++p) {
    ASSERT_EQ(0, pipe(pipes[p]));
    children[p] = fork();
    ASSERT_GE(children[p], 0);
    if (children[p] == 0) {
      alarm(120);  // never outlives a test that went wrong
      const Tally t = Work(p);
      char line[128];
      int n = std::snprintf(line, sizeof(line), "%d %d %d %d %d %d", t.blocked_own,
                            t.shared_added, t.phone_set, t.phone_cleared, t.switched,
                            t.saved_users);
      _exit(write(pipes[p][1], line, static_cast<size_t>(n)) == n ? 0 : 1);
    }
    close(pipes[p][1]);
  }
  Tally all;
  for (int p = 0; p < kProcesses; ++p) {
    char line[128] = {};
    ASSERT_GT(read(pipes[p][0], line, sizeof(line) - 1), 0);
    close(pipes[p][0]);
    int status = 0;
    ASSERT_EQ(children[p], waitpid(children[p], &status, 0));
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    Tally t;
    ASSERT_EQ(6, std::sscanf(line, "%d %d %d %d %d %d", &t.blocked_own, &t.shared_added,
                             &t.phone_set, &t.phone_cleared, &t.switched, &t.saved_users));
    all.blocked_own += t.blocked_own;
    all.shared_added += t.shared_added;
    all.phone_set += t.phone_set;
    all.phone_cleared += t.phone_cleared;
    all.switched += t.switched;
    all.saved_users += t.saved_users;
  }
  const int ops = kProcesses * kRounds;
  RecordProperty("phone_sets", all.phone_set);
  RecordProperty("phone_clears", all.phone_cleared);
  EXPECT_EQ(ops, all.blocked_own);
  EXPECT_EQ(1, all.shared_added);  // the others found it blocked, in memory or in the file
  EXPECT_EQ(ops, all.switched);
  EXPECT_EQ(2 * ops, all.saved_users);

  cfg::Document doc;
  ASSERT_TRUE(cfg::LoadDocument(root_.Path(kFile), &doc).ok());
  // A set succeeds only where no number is set and a clear only where one
  // is: in any serial order their difference is what is left.
  const cfg::Section* forward = doc.Find("contact 1 forward_unconditional");
  ASSERT_NE(nullptr, forward);
  int phone_numbers = 0;
  for (const cfg::Entry& e : forward->entries) phone_numbers += e.value.find(",3,") == 1;
  EXPECT_GE(1, phone_numbers);
  EXPECT_EQ(all.phone_set - all.phone_cleared, phone_numbers)
      << all.phone_set << " sets, " << all.phone_cleared << " clears";
  EXPECT_EQ("1,0,101", forward->Get("destination_1"));  // what no operation touches stays
  EXPECT_EQ("Away", forward->Get("text"));
  EXPECT_EQ("1", doc.Find("contact 2 clir")->Get("active"));

  std::map<std::string, int> contacts;  // name -> sections
  std::set<std::string> blocked;
  for (const cfg::Section& s : doc.sections()) {
    if (s.name.find(' ', 8) == std::string_view::npos && s.name.substr(0, 8) == "contact ")
      ++contacts[std::string(s.Get("name"))];
  }
  for (int p = 0; p < kProcesses; ++p)
    for (int r = 0; r < kRounds; ++r) EXPECT_EQ(1, contacts[Own(p, r)]) << Own(p, r);
  EXPECT_EQ(1, contacts["5999"]);
  EXPECT_EQ(2u + ops + 1, contacts.size());

  cfg::Document phones;
  ASSERT_TRUE(cfg::LoadDocument(root_.Path("telephony/authorized_phones.cfg"), &phones).ok());
  std::map<std::string, int> saved;
  for (const cfg::Section& s : phones.sections()) ++saved[std::string(s.Get("phone_address"))];
  EXPECT_EQ(kProcesses + 1u, saved.size());
  for (const auto& [address, count] : saved) EXPECT_EQ(1, count) << address;

  // Nothing but the two files was written into the root, and no save left
  // a temporary noted.
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root_.path()))
    if (entry.is_regular_file()) files.insert(entry.path().filename().string());
  EXPECT_EQ((std::set<std::string>{"101.cfg", "authorized_phones.cfg", "paths.cfg"}), files);
  EXPECT_EQ("", testing_support::ReadLock(root_, kFile));
}

}  // namespace
