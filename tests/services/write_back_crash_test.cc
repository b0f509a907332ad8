// The agent's own writes killed at random instants: a child process blocks
// contacts, sets the forward dialled from the phone, or stores auto-login
// phones over and over through an agent of its own; the parent kills it
// with SIGKILL and checks what the kill left: a file that parses whole,
// every write the child had reported done, no temporary file after the
// next write, and a lock the next writer gets. The count of kills per kind
// of write comes from CMCFG_CRASH_KILLS (default 20, a few seconds);
// scripts/crash-test.sh runs it with many more.
#include <dirent.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "cmcfg/cm_agent.h"
#include "platform/base/document.h"
#include "platform/base/file_lock.h"
#include "tests/support/agent_fixture.h"
#include "tests/support/agent_support.h"
#include "tests/support/kill_child.h"

namespace {

using testing_support::ReleaseTables;
using testing_support::TempRoot;

const char kUser[] =
    "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
    "section contact 1 forward_unconditional\n{\nactive = 1\n"
    "destination_1 = 1,0,300\n}\n"
    "section contact 2\n{\nname = 5001\ncall_type = 0\n}\n";

const char kPhones[] =
    "section 1\n{\nphone_address = desk\nextension = 101\nphone_type = 2\n"
    "user_name = desk\nlogin_time = 1\n}\n";

// Writes of one child get numbers (round + 1) * kPerRound + 1, + 2, ...;
// the parent's own write after the kill takes the last number of the
// round, so numbers only grow. Small enough for an int32 login time.
const long kPerRound = 100000;

ExtensionData* Find(CMAgent& agent, const std::string& name) {
  for (ExtensionData* e : agent.extensionBase)
    if (e != nullptr && e->name == name) return e;
  return nullptr;
}

// An agent over the root as the call manager runs it: constructed, then
// every operation opens what it needs.
struct Agent {
  Agent() { agent.Destroy(); }
  ~Agent() { ReleaseTables(agent); }
  CMAgent agent;
};

// One kind of write. Write(n) is write number n; Read() takes what a fresh
// agent sees, and Holds(n) tells whether write n is in it (a write that
// replaces a value holds when the value is n or a later one).
class Kind {
 public:
  virtual ~Kind() = default;
  virtual const char* Name() const = 0;
  // The file written, relative to the root, and what it starts with.
  virtual std::string File() const = 0;
  virtual std::string Initial() const = 0;
  virtual bool Write(CMAgent& agent, long n) = 0;
  virtual void Read(CMAgent& fresh) = 0;
  virtual bool Holds(long n) const = 0;
  // Whether the file grows with every write (then it is reset now and then).
  virtual bool Grows() const = 0;
};

// Blocks number n as a new contact of user 101.
class BlockContacts : public Kind {
 public:
  const char* Name() const override { return "contacts"; }
  std::string File() const override { return "telephony/extensiondb/user/101.cfg"; }
  std::string Initial() const override { return kUser; }
  bool Write(CMAgent& agent, long n) override {
    ExtensionData* user = Find(agent, "101");
    return user != nullptr && agent.BlockContact(user, std::to_string(n), kCallNumber, true) == 0;
  }
  void Read(CMAgent& fresh) override {
    blocked_.clear();
    if (ExtensionData* user = Find(fresh, "101"))
      for (const AddressBookEntry& entry : user->addressBook)
        if (entry.second.incomingBlocking.active) blocked_.insert(entry.first.name);
  }
  bool Holds(long n) const override { return blocked_.count(std::to_string(n)) == 1; }
  bool Grows() const override { return true; }

 private:
  std::set<std::string> blocked_;
};

// Sets number n as the destination dialled from the phone of the any-caller
// contact's unconditional forward, replacing the one before.
class ForwardFromPhone : public Kind {
 public:
  const char* Name() const override { return "services"; }
  std::string File() const override { return "telephony/extensiondb/user/101.cfg"; }
  std::string Initial() const override { return kUser; }
  bool Write(CMAgent& agent, long n) override {
    ExtensionData* user = Find(agent, "101");
    return user != nullptr && agent.UpdateForwardService(user, std::to_string(n), true, true);
  }
  void Read(CMAgent& fresh) override {
    stored_ = -1;
    others_ = 0;
    ExtensionData* user = Find(fresh, "101");
    if (user == nullptr) return;
    for (const AddressBookEntry& entry : user->addressBook) {
      if (entry.first.name != "*") continue;
      for (const ForwardParams& to : entry.second.forwardUnconditional.destinations) {
        if (to.callType == kCallFromPhone)
          stored_ = std::atol(to.userName.c_str());
        else
          ++others_;
      }
    }
  }
  // The destination written before the run stays beside it.
  bool Holds(long n) const override { return stored_ >= n && others_ == 1; }
  bool Grows() const override { return false; }

 private:
  long stored_ = -1;
  int others_ = 0;
};

// Even n: a new phone "p<n>"; odd n: the known phone "desk" logs in at n.
class AutologinUsers : public Kind {
 public:
  const char* Name() const override { return "auto-login"; }
  std::string File() const override { return "telephony/authorized_phones.cfg"; }
  std::string Initial() const override { return kPhones; }
  bool Write(CMAgent& agent, long n) override {
    AuthorizedPhonesData user;
    user.phoneAddress = n % 2 == 0 ? "p" + std::to_string(n) : "desk";
    user.extension = "101";
    user.userName = "u" + std::to_string(n);
    user.loginTime = static_cast<int32_t>(n);
    return agent.SaveAutologinUser(&user);
  }
  void Read(CMAgent& fresh) override {
    phones_.clear();
    desk_login_ = -1;
    fresh.GetAutologinDB();
    for (const AuthorizedPhonesData& phone : fresh.generalData.authorizedPhones) {
      if (phone.phoneAddress == "desk")
        desk_login_ = std::max<long>(desk_login_, phone.loginTime);
      else
        phones_.insert(phone.phoneAddress);
    }
  }
  bool Holds(long n) const override {
    return n % 2 == 0 ? phones_.count("p" + std::to_string(n)) == 1 : desk_login_ >= n;
  }
  bool Grows() const override { return true; }

 private:
  std::set<std::string> phones_;
  long desk_login_ = -1;
};

struct Counts {
  int kills = 0;
  int torn = 0;          // the file did not parse whole
  int lost = 0;          // a write the child reported done is not there
  int stale_lock = 0;    // the next writer did not get the lock in time
  int stale_temp = 0;    // a temporary file left after the next write
  int after_writes = 0;  // kills of a child that had written
  long writes = 0;       // writes the children reported done
};

// Writes numbers first, first + 1, ... until killed; reports 0 once its
// agent is up, then each number after its write returned (a pipe: one small
// write is never torn). A failed write ends it, which the parent sees.
[[noreturn]] void WriteForever(Kind& kind, long first, int out, pid_t parent) {
  alarm(60);  // never outlives a test that went wrong
  Agent child;
  long report = 0;
  if (write(out, &report, sizeof(report)) != sizeof(report)) _exit(1);
  for (long n = first; getppid() == parent && n < first + kPerRound - 1; ++n) {
    if (!kind.Write(child.agent, n)) _exit(2);
    if (write(out, &n, sizeof(n)) != sizeof(n)) break;
  }
  _exit(1);
}

// Temporary files of the store's saves (name.pid.hex.tmp) in `folder`.
int TempFilesIn(const std::string& folder) {
  int count = 0;
  if (DIR* dir = opendir(folder.c_str())) {
    while (const dirent* entry = readdir(dir)) {
      const std::string name = entry->d_name;
      if (name.size() > 4 && name.compare(name.size() - 4, 4, ".tmp") == 0) ++count;
    }
    closedir(dir);
  }
  return count;
}

// A whole file as the store writes it: no diagnostic, and written again it
// is the same text (a cut-off file lacks its last closing brace).
bool Whole(const std::string& text) {
  const cfg::Document doc = cfg::Document::Parse(text);
  return doc.diagnostics().empty() && doc.Serialize() == text;
}

int KillsFromEnvironment() {
  const char* env = std::getenv("CMCFG_CRASH_KILLS");
  return env != nullptr && std::atoi(env) > 0 ? std::atoi(env) : 20;
}

class WriteBackCrashTest : public ::testing::Test {
 protected:
  void SetUp() override {
    root_.Write("telephony/paths.cfg", testing_support::kAllRuntimePaths);
    // The next writer must get the lock well within this.
    cfg::SetLockTimeout(std::chrono::milliseconds(2000));
  }
  void TearDown() override { cfg::SetLockTimeout(cfg::kDefaultLockTimeout); }

  // The file as the store would have saved it, so that Whole() holds.
  void Reset(Kind& kind) {
    root_.Write(kind.File(), cfg::Document::Parse(kind.Initial()).Serialize());
    reported_.clear();
  }

  // The run: kills, each followed by the checks; prints the counts.
  void Run(Kind& kind, int kills) {
    const std::string path = root_.Path(kind.File());
    const std::string folder = path.substr(0, path.rfind('/'));
    Reset(kind);

    // Kills must land in every step of a write: the random wait spans 3 ms
    // and a write (measured here, not checked). Every other kill first
    // waits for the child's first write, so that many come after a success.
    long write_us = 0;
    {
      Agent parent;
      auto start = std::chrono::steady_clock::now();
      for (long n = 1; n <= 4; ++n) ASSERT_TRUE(kind.Write(parent.agent, n));
      write_us = std::chrono::duration_cast<std::chrono::microseconds>(
                     std::chrono::steady_clock::now() - start).count() / 4;
    }
    std::random_device device;
    const unsigned seed = device();
    std::mt19937 random(seed);
    std::uniform_int_distribution<long> wait_us(0, 3000 + write_us);

    Counts c;
    const pid_t self = getpid();
    for (; c.kills < kills; ++c.kills) {
      // A growing file is started afresh now and then, so that a write
      // costs about the same all through the run.
      if (kind.Grows() && reported_.size() > 300) Reset(kind);
      const long first = (c.kills + 1) * kPerRound + 1;
      const size_t before = reported_.size();
      const testing_support::KilledChild killed = testing_support::KillAfter(
          [&](int out) { WriteForever(kind, first, out, self); }, true, c.kills % 2 == 1,
          std::chrono::microseconds(wait_us(random)));
      ASSERT_TRUE(killed.forked);
      ASSERT_TRUE(killed.started) << "the child's agent did not start";
      ASSERT_TRUE(killed.signalled) << "the writing child ended by itself: a write failed";
      reported_.insert(reported_.end(), killed.reports.begin(), killed.reports.end());
      if (reported_.size() > before) ++c.after_writes;
      c.writes += static_cast<long>(reported_.size() - before);

      if (!Whole(root_.Read(kind.File()))) ++c.torn;
      {
        Agent fresh;
        kind.Read(fresh.agent);
      }
      for (long done : reported_) {
        if (!kind.Holds(done)) {
          ++c.lost;
          break;
        }
      }

      // The next writer: not blocked by the dead one, and it clears up.
      const long mine = first + kPerRound - 1;
      bool written;
      {
        Agent next;
        written = kind.Write(next.agent, mine);
      }
      if (!written) {
        cfg::FileLock probe(path, std::chrono::milliseconds(0));
        ASSERT_TRUE(probe.status().IsTimedOut()) << "the next write failed with the lock free";
        ++c.stale_lock;
        continue;
      }
      reported_.push_back(mine);
      c.stale_temp += TempFilesIn(folder);
      {
        Agent fresh;
        kind.Read(fresh.agent);
      }
      ASSERT_TRUE(kind.Holds(mine)) << "the next writer's write is not there";
    }

    std::printf("crash run [%s]: kills=%d torn=%d lost=%d stale-lock=%d stale-temp=%d"
                " (writes=%ld, kills after a child's write=%d, write=%ld us, seed=%u)\n",
                kind.Name(), c.kills, c.torn, c.lost, c.stale_lock, c.stale_temp, c.writes,
                c.after_writes, write_us, seed);
    EXPECT_EQ(0, c.torn);
    EXPECT_EQ(0, c.lost);
    EXPECT_EQ(0, c.stale_lock);
    EXPECT_EQ(0, c.stale_temp);
    EXPECT_GE(c.after_writes, kills / 2);
  }

  TempRoot root_;
  std::vector<long> reported_;  // writes known done since the file's last reset
};

TEST_F(WriteBackCrashTest, KilledContactBlockingLosesNoReportedContact) {
  BlockContacts kind;
  Run(kind, KillsFromEnvironment());
}

TEST_F(WriteBackCrashTest, KilledForwardUpdateKeepsTheLastReportedNumber) {
  ForwardFromPhone kind;
  Run(kind, KillsFromEnvironment());
}

TEST_F(WriteBackCrashTest, KilledAutologinSavesLoseNoReportedPhoneOrLogin) {
  AutologinUsers kind;
  Run(kind, KillsFromEnvironment());
}

}  // namespace
