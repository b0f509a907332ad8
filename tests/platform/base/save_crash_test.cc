// Saves killed at random instants: a child process saves over and over, the
// parent kills it with SIGKILL and checks what a crash leaves. The count of
// kills comes from CMCFG_CRASH_KILLS (default 100, a few seconds);
// scripts/crash-test.sh runs it with many more.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/base/document_store.h"
#include "platform/base/file_lock.h"
#include "platform/base/file_system.h"
#include "tests/support/kill_child.h"
#include "tests/support/temp_root.h"

namespace cfg {
namespace {

// Save number n: a header with n, then body A (small) for even n and body
// B (some 20 KB) for odd n, so that consecutive saves differ in size.
std::string Contents(long n) {
  Document doc;
  doc.Set(doc.Add("save"), "seq", std::to_string(n));
  const int sections = n % 2 == 0 ? 3 : 400;
  for (int i = 0; i < sections; ++i) {
    Section& s = doc.Add("body " + std::to_string(i));
    doc.Set(s, "value", n % 2 == 0 ? "A" : "B, a longer value");
  }
  return doc.Serialize();
}

long SeqOf(const Document& doc) {
  const Section* s = doc.Find("save");
  return s == nullptr ? 0 : std::atol(std::string(s->Get("seq")).c_str());
}

// One read-modify-write: the next save number; *saved gets it.
Status SaveNext(const std::string& path, long* saved) {
  return UpdateDocument(path, [saved](Document& doc) {
    *saved = SeqOf(doc) + 1;
    doc = Document::Parse(Contents(*saved));
    return true;
  });
}

// Saves until killed; after each save that succeeded it writes its number
// to `out` (a pipe: one small write is never torn).
[[noreturn]] void SaveForever(const std::string& path, int out, pid_t parent) {
  alarm(60);  // never outlives a test that went wrong
  while (getppid() == parent) {
    long saved = 0;
    if (SaveNext(path, &saved).ok() && write(out, &saved, sizeof(saved)) != sizeof(saved)) break;
  }
  _exit(1);
}

struct Counts {
  int kills = 0;
  int torn = 0;        // neither A nor B of some save, byte for byte
  int lost = 0;        // older than a save that had returned success
  int stale_lock = 0;  // the next writer did not get the lock in time
  int stale_temp = 0;  // a temporary file left after the next save
  int after_saves = 0;  // kills of a child that had saved
};

TEST(SaveCrashTest, KilledSavesLeaveAWholeFileNoTempAndNoLock) {
  const char* env = std::getenv("CMCFG_CRASH_KILLS");
  const int kills = env != nullptr && std::atoi(env) > 0 ? std::atoi(env) : 100;
  testing_support::TempRoot root;
  const std::string path = root.Path("f.cfg");
  // The next writer must get the lock well within this.
  SetLockTimeout(std::chrono::milliseconds(2000));

  // Kills must land in every step of a save, also the rename and the
  // folder flush that come after the file's flush: the random wait spans
  // 3 ms and a save (measured here, not checked). Every other kill first
  // waits for the child's first save, so that many come after a success.
  root.Write("f.cfg", Contents(0));
  long last = 0;
  auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 4; ++i) ASSERT_TRUE(SaveNext(path, &last).ok());
  const long save_us = std::chrono::duration_cast<std::chrono::microseconds>(
                           std::chrono::steady_clock::now() - start).count() / 4;
  std::random_device device;
  const unsigned seed = device();
  std::mt19937 random(seed);
  std::uniform_int_distribution<long> wait_us(0, 3000 + save_us);

  Counts c;
  const pid_t self = getpid();
  for (; c.kills < kills; ++c.kills) {
    const testing_support::KilledChild killed = testing_support::KillAfter(
        [&](int out) { SaveForever(path, out, self); }, false, c.kills % 2 == 1,
        std::chrono::microseconds(wait_us(random)));
    ASSERT_TRUE(killed.forked);
    ASSERT_TRUE(killed.signalled) << "the saving child ended by itself";
    long reported = last;  // the last save known to have succeeded
    for (long n : killed.reports) reported = std::max(reported, n);
    if (reported > last) ++c.after_saves;

    std::string text;
    ASSERT_TRUE(FileSystem::Default()->ReadFile(path, &text).ok());
    const long found = SeqOf(Document::Parse(text));
    if (text != Contents(found)) ++c.torn;
    if (found < reported) ++c.lost;

    // The next writer: not blocked by the dead one, and it clears up.
    Status s = SaveNext(path, &last);
    if (s.IsTimedOut()) {
      ++c.stale_lock;
      continue;
    }
    ASSERT_TRUE(s.ok()) << s.ToString();
    std::vector<std::string> names;
    ASSERT_TRUE(FileSystem::Default()->ListDir(root.path(), &names).ok());
    for (const std::string& name : names)
      if (name != "f.cfg" && name != "f.cfg.lock") ++c.stale_temp;
  }
  SetLockTimeout(kDefaultLockTimeout);

  std::printf("crash run [document saves]: kills=%d torn=%d lost=%d stale-lock=%d stale-temp=%d"
              " (saves=%ld, kills after a child's save=%d, save=%ld us, seed=%u)\n",
              c.kills, c.torn, c.lost, c.stale_lock, c.stale_temp, last, c.after_saves, save_us,
              seed);
  EXPECT_EQ(0, c.torn);
  EXPECT_EQ(0, c.lost);
  EXPECT_EQ(0, c.stale_lock);
  EXPECT_EQ(0, c.stale_temp);
  EXPECT_GE(c.after_saves, kills / 2);
}

}  // namespace
}  // namespace cfg
