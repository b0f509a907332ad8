// One write-back operation of the call manager, flush included, on an
// extension of a database of 1,000 and of 100,000 users: a write locks,
// reads, changes and saves one user's file, so it should cost the same in
// any size of database.
#include <benchmark/benchmark.h>
#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "bench/root_generator.h"
#include "cmcfg/cm_agent.h"
#include "platform/base/file_system.h"
#include "tests/support/agent_support.h"

namespace {

namespace fs = std::filesystem;

// A writable twin of a generated root: every file hard-linked, so making it
// is cheap, and the cached root stays as it was, since a save replaces a
// file (a new inode) instead of writing into it.
struct WritableRoot {
  std::string dir;  // ends in "/"
  std::unique_ptr<CMAgent> agent;
  ExtensionData* user = nullptr;
  std::string file;      // the user's file
  std::string original;  // its contents, put back before every run

  ~WritableRoot() {
    if (agent) testing_support::ReleaseTables(*agent);
    std::error_code ec;
    if (!dir.empty()) fs::remove_all(dir, ec);
  }
};

// Twins left by a run that was killed (their pid has no process).
void RemoveAbandonedTwins() {
  std::error_code ec;
  for (const fs::directory_entry& entry : fs::directory_iterator(bench_roots::CacheFolder(), ec)) {
    const std::string name = entry.path().filename().string();
    const size_t dash = name.rfind('-');
    if (name.rfind("write-", 0) != 0 || dash == std::string::npos) continue;
    const long pid = std::atol(name.c_str() + dash + 1);
    if (pid > 0 && kill(static_cast<pid_t>(pid), 0) != 0 && errno == ESRCH)
      fs::remove_all(entry.path(), ec);
  }
}

// One root at a time (a 100,000-user agent is large); the benchmarks are
// registered size by size, so each is made once.
WritableRoot* RootFor(benchmark::State& state, int users) {
  static int current = -1;
  static std::unique_ptr<WritableRoot> root;
  if (current == users) return root.get();
  root.reset();
  static bool swept = false;
  if (!swept) RemoveAbandonedTwins();
  swept = true;
  current = -1;
  std::unique_ptr<WritableRoot> made(new WritableRoot);
  try {
    const std::string cached = bench_roots::UserRoot(users);
    made->dir = bench_roots::CacheFolder() + "/write-" + std::to_string(users) + "-" +
                std::to_string(getpid()) + "/";
    fs::copy(cached, made->dir, fs::copy_options::recursive | fs::copy_options::create_hard_links);
  } catch (const std::exception& e) {
    state.SkipWithError(e.what());
    return nullptr;
  }
  const std::string log_dir = bench_roots::CacheFolder() + "/log";
  fs::create_directories(log_dir);
  setenv("ORBA_PATH", made->dir.c_str(), 1);
  setenv("CMCFG_LOG_DIR", log_dir.c_str(), 1);
  made->agent.reset(new CMAgent);
  made->agent->Destroy();  // as in service: every operation opens what it needs
  const std::string name = bench_roots::UserNumber(users / 2);
  for (ExtensionData* e : made->agent->extensionBase)
    if (e != nullptr && e->name == name) made->user = e;
  made->file = made->dir + "telephony/extensiondb/user/" + name + ".cfg";
  if (made->user == nullptr ||
      !cfg::FileSystem::Default()->ReadFile(made->file, &made->original).ok()) {
    state.SkipWithError("the extension is not in the database");
    return nullptr;
  }
  root = std::move(made);
  current = users;
  return root.get();
}

// The user's file as generated, so every run starts from the same size.
bool Reset(benchmark::State& state, WritableRoot& root) {
  setenv("ORBA_PATH", root.dir.c_str(), 1);
  if (cfg::FileSystem::Default()->WriteFileAtomic(root.file, root.original).ok()) return true;
  state.SkipWithError("cannot restore the user's file");
  return false;
}

// A new number every time, so every call adds and stores a contact.
void BM_BlockContact(benchmark::State& state) {
  WritableRoot* root = RootFor(state, static_cast<int>(state.range(0)));
  if (root == nullptr || !Reset(state, *root)) return;
  static long next = 0;
  for (auto _ : state) {
    const std::string number = "77" + std::to_string(next++);
    if (root->agent->BlockContact(root->user, number, kCallNumber, true) != 0) {
      state.SkipWithError("BlockContact stored nothing");
      return;
    }
  }
}

// On and off in turn, so every call stores.
void BM_UpdateForwardService(benchmark::State& state) {
  WritableRoot* root = RootFor(state, static_cast<int>(state.range(0)));
  if (root == nullptr || !Reset(state, *root)) return;
  bool on = true;
  for (auto _ : state) {
    if (!root->agent->UpdateForwardService(root->user, "4000", on, true)) {
      state.SkipWithError("UpdateForwardService stored nothing");
      return;
    }
    on = !on;
  }
}

BENCHMARK(BM_BlockContact)->Arg(1000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_UpdateForwardService)->Arg(1000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_BlockContact)->Arg(100000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_UpdateForwardService)->Arg(100000)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
