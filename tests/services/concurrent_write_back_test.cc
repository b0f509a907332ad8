// Several processes write back to the same extension at the same time, as
// the call manager, the web configuration and the tool do: the file must
// end as some serial order of the operations that reported success, and an
// operation that found its change impossible must have reported failure.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

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

const char kFile[] = "telephony/extensiondb/user/101.cfg";
constexpr int kProcesses = 4;
constexpr int kRounds = 20;

// What one process saw succeed, by kind of operation.
enum { kBlockedOwn, kSharedAdded, kPhoneSet, kPhoneCleared, kSwitched, kSavedUsers, kKinds };

std::string Own(int process, int round) { return "7" + std::to_string(process) + std::to_string(10 + round); }

bool SavePhone(CMAgent& agent, const std::string& address, int32_t loginTime) {
  AuthorizedPhonesData user;
  user.phoneAddress = address;
  user.phoneType = 1;
  user.extension = "101";
  user.loginTime = loginTime;
  return agent.SaveAutologinUser(&user);
}

// The mixed operations of one process, each through the agent as the call
// manager makes them: its own numbers blocked, the number every process
// blocks, the phone's forward number set where none was and cleared where
// one was, the forward switched, its own phone and the shared one saved.
void Work(int process, int* done) {
  testing_support::RunningAgent running;
  CMAgent& agent = running.agent;
  ExtensionData* user = testing_support::FindExtension(agent, "101");
  for (int r = 0; user != nullptr && r < kRounds; ++r) {
    done[kBlockedOwn] += agent.BlockContact(user, Own(process, r), kCallNumber, true) == 0;
    done[kSharedAdded] += agent.BlockContact(user, "5999", kCallNumber, false) == 0;
    done[kPhoneSet] += agent.UpdateForwardService(user, "*9" + Own(process, r), true, false);
    done[kSwitched] += agent.SwitchForwardService(user);
    done[kPhoneCleared] += agent.UpdateForwardService(user, "", false, false);
    done[kSavedUsers] += SavePhone(agent, "10.0.0." + std::to_string(process), r) + SavePhone(agent, "10.9.9.9", r);
  }
}

class ConcurrentWriteBackTest : public testing_support::AgentTest {};

TEST_F(ConcurrentWriteBackTest, MixedOperationsOfManyProcessesSerialize) {
  root_.Write(kFile,
              "# any caller: forward to 101 when switched on\n"
              "section contact 1\n{\nname = *\ncall_type = 0\n}\n\n"
              "section contact 1 forward_unconditional\n{\nactive = 0\ntext = Away\n"
              "destination_1 = 1,0,101\n}\n\n"
              "section contact 2\n{\nname = 5001\ncall_type = 0\n}\n"
              "section contact 2 clir\n{\nactive = 1\n}\n");
  root_.Write("telephony/authorized_phones.cfg", "# phones that log in by themselves\n");
  // What each process saw succeed, in memory it shares with this one.
  void* shared = mmap(nullptr, sizeof(int[kProcesses][kKinds]), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(MAP_FAILED, shared);
  auto done = static_cast<int(*)[kKinds]>(shared);
  pid_t children[kProcesses];
  for (int p = 0; p < kProcesses; ++p) {
    children[p] = fork();
    ASSERT_GE(children[p], 0);
    if (children[p] == 0) {
      alarm(120);  // never outlives a test that went wrong
      Work(p, done[p]);
      _exit(0);
    }
  }
  int all[kKinds] = {};
  for (int p = 0; p < kProcesses; ++p) {
    int status = 0;
    ASSERT_EQ(children[p], waitpid(children[p], &status, 0));
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    for (int k = 0; k < kKinds; ++k) all[k] += done[p][k];
  }
  munmap(shared, sizeof(int[kProcesses][kKinds]));
  const int ops = kProcesses * kRounds;
  EXPECT_EQ(ops, all[kBlockedOwn]);
  EXPECT_EQ(1, all[kSharedAdded]);  // the others found it blocked, in memory or in the file
  EXPECT_EQ(ops, all[kSwitched]);
  EXPECT_EQ(2 * ops, all[kSavedUsers]);

  cfg::Document doc;
  ASSERT_TRUE(cfg::LoadDocument(root_.Path(kFile), &doc).ok());
  // A set succeeds only where no number is set and a clear only where one
  // is: in any serial order their difference is what is left.
  const cfg::Section* forward = doc.Find("contact 1 forward_unconditional");
  ASSERT_NE(nullptr, forward);
  int phone_numbers = 0;
  for (const cfg::Entry& e : forward->entries) phone_numbers += e.value.find(",3,") == 1;
  EXPECT_GE(1, phone_numbers);
  EXPECT_EQ(all[kPhoneSet] - all[kPhoneCleared], phone_numbers);
  EXPECT_EQ("1,0,101", forward->Get("destination_1"));  // what no operation touches stays
  EXPECT_EQ("Away", forward->Get("text"));
  EXPECT_EQ("1", doc.Find("contact 2 clir")->Get("active"));

  std::map<std::string, int> contacts;  // name -> sections
  for (const cfg::Section& s : doc.sections())
    if (s.name.find(' ', 8) == std::string_view::npos && s.name.substr(0, 8) == "contact ")
      ++contacts[std::string(s.Get("name"))];
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
