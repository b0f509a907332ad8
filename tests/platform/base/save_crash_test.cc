// Saves killed at random instants: a child process saves over and over, the
// parent kills it with SIGKILL and checks what a crash leaves. The count of
// kills comes from CMCFG_CRASH_KILLS (default 100, a few seconds);
// scripts/crash-test.sh runs it with many more.
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "tests/support/kill_child.h"
#include "tests/support/platform_fixture.h"

namespace cfg {
namespace {

// Save number n: small for even n, some 20 KB for odd n, so that
// consecutive saves differ in size.
std::string Contents(long n) {
  Document doc;
  doc.Set(doc.Add("save"), "seq", std::to_string(n));
  for (int i = 0; i < (n % 2 == 0 ? 3 : 400); ++i)
    doc.Set(doc.Add("body " + std::to_string(i)), "value", n % 2 == 0 ? "A" : "B, a longer value");
  return doc.Serialize();
}

long SeqOf(const Document& doc) {
  const Section* s = doc.Find("save");
  return s == nullptr ? 0 : std::atol(std::string(s->Get("seq")).c_str());
}

// One read-modify-write: the next save number; *saved gets it.
Status SaveNext(const std::string& path, long* saved) {
  return UpdateDocument(path, [saved](Document& doc) {
    doc = Document::Parse(Contents(*saved = SeqOf(doc) + 1));
    return true;
  });
}

class SaveCrashTest : public testing_support::PlatformTest {};

TEST_F(SaveCrashTest, KilledSavesLeaveAWholeFileNoTempAndNoLock) {
  const char* env = std::getenv("CMCFG_CRASH_KILLS");
  const int kills = env != nullptr && std::atoi(env) > 0 ? std::atoi(env) : 100;
  const std::string path = root_.Path("f.cfg");
  SetLockTimeout(std::chrono::milliseconds(2000));  // the next writer must get it well within
  // Kills must land in every step of a save, the rename and the folder
  // flush after the file's flush included: the random wait spans 3 ms and a
  // save (measured here). Every other kill first waits for the child's
  // first save, so that many come after a success.
  root_.Write("f.cfg", Contents(0));
  long last = 0;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 4; ++i) ASSERT_TRUE(SaveNext(path, &last).ok());
  const long save_us = std::chrono::duration_cast<std::chrono::microseconds>(
                           std::chrono::steady_clock::now() - start).count() / 4;
  const unsigned seed = std::random_device()();
  std::mt19937 random(seed);
  std::uniform_int_distribution<long> wait_us(0, 3000 + save_us);
  int torn = 0, lost = 0, stale_lock = 0, stale_temp = 0, after_saves = 0;
  const pid_t self = getpid();
  for (int kill = 0; kill < kills; ++kill) {
    const testing_support::KilledChild killed = testing_support::KillAfter(
        [&](int out) {  // saves until killed, reporting each success
          alarm(60);
          for (long saved = 0; getppid() == self;)
            if (SaveNext(path, &saved).ok() && write(out, &saved, sizeof(saved)) != sizeof(saved)) break;
          _exit(1);
        },
        false, kill % 2 == 1, std::chrono::microseconds(wait_us(random)));
    ASSERT_TRUE(killed.forked);
    ASSERT_TRUE(killed.signalled) << "the saving child ended by itself";
    long reported = last;  // the last save known to have succeeded
    for (long n : killed.reports) reported = std::max(reported, n);
    after_saves += reported > last;
    std::string text;
    ASSERT_TRUE(FileSystem::Default()->ReadFile(path, &text).ok());
    const long found = SeqOf(Document::Parse(text));
    torn += text != Contents(found);  // neither kind of save, byte for byte
    lost += found < reported;        // older than a save that had succeeded
    // The next writer: not blocked by the dead one, and it clears up.
    Status s = SaveNext(path, &last);
    if (s.IsTimedOut()) {
      ++stale_lock;
      continue;
    }
    ASSERT_TRUE(s.ok()) << s.ToString();
    std::vector<std::string> names;
    ASSERT_TRUE(FileSystem::Default()->ListDir(root_.path(), &names).ok());
    stale_temp += static_cast<int>(names.size()) - 1;
  }
  std::printf("crash run [document saves]: kills=%d torn=%d lost=%d stale-lock=%d stale-temp=%d"
              " (saves=%ld, kills after a child's save=%d, save=%ld us, seed=%u)\n",
              kills, torn, lost, stale_lock, stale_temp, last, after_saves, save_us, seed);
  EXPECT_EQ(0, torn);
  EXPECT_EQ(0, lost);
  EXPECT_EQ(0, stale_lock);
  EXPECT_EQ(0, stale_temp);
  EXPECT_GE(after_saves, kills / 2);
}

}  // namespace
}  // namespace cfg
