// Start-up of the agent over generated roots of 1,000 to 100,000 users:
// wall time and peak memory per extension, a plain read of the same files
// for comparison, and one per-extension query after Destroy, whose cost
// should not depend on the size of the database.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench/root_generator.h"
#include "cmcfg/cm_agent.h"
#include "tests/support/agent_support.h"

namespace {

// Points the agent at `root` and keeps its log (off in the generated
// general.cfg anyway) out of the current folder.
bool UseRoot(benchmark::State& state, int users, std::string* root) {
  try {
    *root = bench_roots::UserRoot(users);
  } catch (const std::exception& e) {
    state.SkipWithError(e.what());
    return false;
  }
  const std::string logDir = bench_roots::CacheFolder() + "/log";
  std::filesystem::create_directories(logDir);
  setenv("ORBA_PATH", root->c_str(), 1);
  setenv("CMCFG_LOG_DIR", logDir.c_str(), 1);
  return true;
}

size_t LoadedExtensions(const CMAgent& agent) {
  size_t n = 0;
  for (const ExtensionData* record : agent.extensionBase) n += record != nullptr;
  return n;
}

const ExtensionData* Find(const CMAgent& agent, const std::string& name) {
  for (const ExtensionData* record : agent.extensionBase)
    if (record != nullptr && record->name == name) return record;
  return nullptr;
}

bool LoadedAll(benchmark::State& state, const CMAgent& agent, int users) {
  if (LoadedExtensions(agent) != static_cast<size_t>(users) || agent.attendants.size() != 1) {
    state.SkipWithError("the agent did not load every extension and the attendant");
    return false;
  }
  return true;
}

// A start-up that skips part of each profile would look fast; one user's
// record tells whether the loaders read all of it.
bool ProfileComplete(benchmark::State& state, const CMAgent& agent, int users) {
  if (users == 0) return true;
  const ExtensionData* record = Find(agent, bench_roots::UserNumber(users / 2));
  if (record == nullptr || record->sip.host.empty() || record->description.empty() ||
      record->speedDial.size() != 10 || record->addressBook.size() != 10 ||
      record->functionalTable.size() < 20) {
    state.SkipWithError("a user's profile was loaded only in part");
    return false;
  }
  return true;
}

void BM_Startup(benchmark::State& state) {
  const int users = static_cast<int>(state.range(0));
  std::string root;
  if (!UseRoot(state, users, &root)) return;
  double seconds = 0;
  bool checked = false;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    std::unique_ptr<CMAgent> agent(new CMAgent);
    agent->Destroy();
    const bool ok = LoadedAll(state, *agent, users) &&
                    (checked || ProfileComplete(state, *agent, users));
    checked = true;
    testing_support::ReleaseTables(*agent);
    agent.reset();
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!ok) return;
  }
  state.counters["us_per_ext"] =
      seconds * 1e6 / (static_cast<double>(state.iterations()) * static_cast<double>(users));
}

BENCHMARK(BM_Startup)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(2.0);
// A start-up of 100,000 users takes tens of seconds: one per repetition,
// and three repetitions whatever the command line asks for.
BENCHMARK(BM_Startup)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(3);

// Start-up with logging on: general.cfg of the cached root is switched to
// logging for the benchmark and put back afterwards; the log is removed
// after each start-up (not timed), so it does not grow from run to run.
class LoggingOn {
 public:
  explicit LoggingOn(const std::string& root) : path_(root + "telephony/general.cfg") {
    std::ifstream in(path_);
    std::stringstream text;
    text << in.rdbuf();
    original_ = text.str();
    std::string on = original_;
    const size_t at = on.find("log_enabled = 0");
    if (at == std::string::npos) return;
    on.replace(at, 15, "log_enabled = 1");
    ok_ = static_cast<bool>(std::ofstream(path_) << on);
  }
  ~LoggingOn() {
    if (ok_) std::ofstream(path_) << original_;
  }
  bool ok() const { return ok_; }

 private:
  std::string path_;
  std::string original_;
  bool ok_ = false;
};

void BM_StartupLogging(benchmark::State& state) {
  const int users = static_cast<int>(state.range(0));
  std::string root;
  if (!UseRoot(state, users, &root)) return;
  LoggingOn logging(root);
  if (!logging.ok()) {
    state.SkipWithError("cannot switch the root's logging on");
    return;
  }
  const std::string log = bench_roots::CacheFolder() + "/log/cmcfg.log";
  double seconds = 0;
  size_t lines = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    std::unique_ptr<CMAgent> agent(new CMAgent);
    agent->Destroy();
    const bool ok = agent->logEnabled && LoadedAll(state, *agent, users);
    testing_support::ReleaseTables(*agent);
    agent.reset();
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::ifstream in(log);
    lines = static_cast<size_t>(std::count(std::istreambuf_iterator<char>(in), {}, '\n'));
    std::remove(log.c_str());
    if (!ok) {
      state.SkipWithError("the agent did not log or did not load everything");
      return;
    }
  }
  state.counters["us_per_ext"] =
      seconds * 1e6 / (static_cast<double>(state.iterations()) * static_cast<double>(users));
  state.counters["log_lines"] = static_cast<double>(lines);
}

BENCHMARK(BM_StartupLogging)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(2.0);

// ------------------------------------------------------------ peak memory

// Resident memory of this process now, in KiB; -1 when unknown.
long ResidentKiB() {
  std::ifstream statm("/proc/self/statm");
  long pages = 0, resident = -1;
  if (!(statm >> pages >> resident)) return -1;
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

struct ChildMemory {
  long peak = -1;  // KiB, the high-water mark of the start-up
  long kept = -1;  // KiB resident once the start-up helpers are gone
};

// Memory of a child process that starts the agent over the current root
// and destroys the start-up helpers. The child inherits the parent's
// pages, so it first hands back the parent's free heap and resets its
// high-water mark to what it holds now; what the agent adds is then the
// difference to a child over an empty root. What it keeps is measured the
// same way after Destroy, with the free heap handed back again, and sent
// back through a pipe. Both -1 on failure.
ChildMemory ChildMemoryKiB(int users) {
  ChildMemory result;
  int fds[2];
  if (pipe(fds) != 0) return result;
  const pid_t pid = fork();
  if (pid < 0) {
    close(fds[0]);
    close(fds[1]);
    return result;
  }
  if (pid == 0) {
    close(fds[0]);
    malloc_trim(0);
    const int fd = open("/proc/self/clear_refs", O_WRONLY | O_CLOEXEC);
    if (fd >= 0) {
      (void)!write(fd, "5", 1);  // 5: reset the peak RSS to the current RSS
      close(fd);
    }
    CMAgent* agent = new CMAgent;
    agent->Destroy();
    const bool ok =
        LoadedExtensions(*agent) == static_cast<size_t>(users) && agent->attendants.size() == 1;
    malloc_trim(0);
    const long kept = ResidentKiB();
    (void)!write(fds[1], &kept, sizeof(kept));
    // The peak is behind us; the process's exit frees the rest.
    _exit(ok ? 0 : 3);
  }
  close(fds[1]);
  long kept = -1;
  if (read(fds[0], &kept, sizeof(kept)) != static_cast<ssize_t>(sizeof(kept))) kept = -1;
  close(fds[0]);
  int status = 0;
  struct rusage usage {};
  if (wait4(pid, &status, 0, &usage) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
    return result;
  result.peak = usage.ru_maxrss;  // KiB on Linux
  result.kept = kept;
  return result;
}

void BM_StartupPeakRss(benchmark::State& state) {
  const int users = static_cast<int>(state.range(0));
  std::string empty, root;
  if (!UseRoot(state, 0, &empty) || !UseRoot(state, users, &root)) return;
  ChildMemory base, loaded;
  for (auto _ : state) {
    setenv("ORBA_PATH", empty.c_str(), 1);
    base = ChildMemoryKiB(0);
    setenv("ORBA_PATH", root.c_str(), 1);
    loaded = ChildMemoryKiB(users);
    if (base.peak < 0 || loaded.peak < 0 || base.kept < 0 || loaded.kept < 0) {
      state.SkipWithError("the child start-up failed");
      return;
    }
  }
  const double peak = static_cast<double>(loaded.peak - base.peak);
  const double kept = static_cast<double>(loaded.kept - base.kept);
  state.counters["KiB_per_ext"] = peak / users;
  state.counters["agent_MiB"] = peak / 1024.0;
  state.counters["kept_MiB"] = kept / 1024.0;
  // The goal: the peak of the start-up close to what its records keep.
  state.counters["peak_to_kept"] = kept > 0 ? peak / kept : 0.0;
  state.counters["base_MiB"] = static_cast<double>(base.peak) / 1024.0;
}

BENCHMARK(BM_StartupPeakRss)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);
BENCHMARK(BM_StartupPeakRss)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(3);

// ------------------------------------------------------------ bare reads

// What reading the user files costs without the agent: open, read, close.
void BM_ReadFilesBareLoop(benchmark::State& state) {
  const int users = static_cast<int>(state.range(0));
  std::string root;
  if (!UseRoot(state, users, &root)) return;
  const std::vector<std::string> files = bench_roots::UserFiles(root, users);
  std::vector<char> buffer(1 << 16);
  size_t bytes = 0;
  double seconds = 0;
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    bytes = 0;
    for (const std::string& path : files) {
      const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
      if (fd < 0) {
        state.SkipWithError("cannot open a user file");
        return;
      }
      ssize_t n;
      while ((n = read(fd, buffer.data(), buffer.size())) > 0) bytes += static_cast<size_t>(n);
      close(fd);
    }
    benchmark::DoNotOptimize(bytes);
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
  state.counters["us_per_file"] =
      seconds * 1e6 / (static_cast<double>(state.iterations()) * static_cast<double>(users));
}

BENCHMARK(BM_ReadFilesBareLoop)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// ------------------------------------------------- one query after Destroy

// One agent per size, started once: a 100,000-user start-up is far too
// slow to repeat for every run of the benchmark.
struct LoadedAgent {
  int users = -1;
  std::unique_ptr<CMAgent> agent;
  ~LoadedAgent() { Reset(); }
  void Reset() {
    if (agent) testing_support::ReleaseTables(*agent);
    agent.reset();
    users = -1;
  }
};

LoadedAgent& AgentOver(int users) {
  static LoadedAgent loaded;
  if (loaded.users != users) {
    loaded.Reset();
    loaded.agent.reset(new CMAgent);
    loaded.agent->Destroy();
    loaded.users = users;
  }
  return loaded;
}

void BM_GetSipDataAfterDestroy(benchmark::State& state) {
  const int users = static_cast<int>(state.range(0));
  std::string root;
  if (!UseRoot(state, users, &root)) return;
  CMAgent& agent = *AgentOver(users).agent;
  if (!ProfileComplete(state, agent, users)) return;
  ExtensionData* record = const_cast<ExtensionData*>(Find(agent, bench_roots::UserNumber(users / 2)));
  for (auto _ : state) {
    if (!agent.GetSipData(record, nullptr, nullptr)) {
      state.SkipWithError("GetSipData failed");
      return;
    }
  }
  if (record->sip.host.empty()) state.SkipWithError("GetSipData read no host");
}

BENCHMARK(BM_GetSipDataAfterDestroy)
    ->Arg(1000)
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

// The queries that open their own helpers after Destroy, on a user bound
// to an FXS port (an even index), whose cost must not grow with the
// database. Arguments: users, then the query (0 LoadExtensionDB, 1
// GetLineData, 2 GetCodecData); sizes outermost, so each agent starts once.
void BM_QueryAfterDestroy(benchmark::State& state) {
  const int users = static_cast<int>(state.range(0));
  const int query = static_cast<int>(state.range(1));
  static const char* const kNames[] = {"LoadExtensionDB", "GetLineData", "GetCodecData"};
  state.SetLabel(kNames[query]);
  std::string root;
  if (!UseRoot(state, users, &root)) return;
  CMAgent& agent = *AgentOver(users).agent;
  if (!ProfileComplete(state, agent, users)) return;
  const std::string name = bench_roots::UserNumber((users / 2) & ~1);
  ExtensionData* record = const_cast<ExtensionData*>(Find(agent, name));
  for (auto _ : state) {
    bool ok = false;
    const auto start = std::chrono::steady_clock::now();
    if (query == 0) {
      ok = agent.LoadExtensionDB(name, kExtUser) == 1;
    } else if (query == 1) {
      LineSettings line;
      ok = agent.GetLineData(name, &line, nullptr) && line.gatewayId != INACTIVE_PARTY;
    } else {
      ok = agent.GetCodecData(record, nullptr);
    }
    state.SetIterationTime(
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    if (query == 0) agent.EraseExtension(agent.extensionBase.size() - 1, true, true);
    if (!ok) {
      state.SkipWithError("the query failed");
      return;
    }
  }
}

BENCHMARK(BM_QueryAfterDestroy)
    ->ArgsProduct({{1000, 10000, 100000}, {0, 1, 2}})
    ->Unit(benchmark::kMicrosecond)
    ->UseManualTime();

}  // namespace
