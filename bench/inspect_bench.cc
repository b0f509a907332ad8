// The inspecting verbs over a generated root of 10,000 fully profiled
// users, against a plain start-up of the agent over the same root: `show`,
// `ext` of one user, `dump`, `check`, and `diff` of the root against a copy
// with one user changed. Compare the medians (ext within 0.1x show, diff
// within 2x show). Peak memory: run the cmcfg binary under /usr/bin/time -v.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "bench/root_generator.h"
#include "cmcfg/cm_agent.h"
#include "tests/support/agent_support.h"
#include "tools/cli.h"

namespace {

const int kUsers = 10000;

// Points the agent at the generated root and its log out of the current
// folder; "" (and the benchmark skipped) when the root cannot be made.
std::string Root(benchmark::State& state) {
  std::string root;
  try {
    root = bench_roots::UserRoot(kUsers);
  } catch (const std::exception& e) {
    state.SkipWithError(e.what());
    return "";
  }
  const std::string logDir = bench_roots::CacheFolder() + "/log";
  std::filesystem::create_directories(logDir);
  setenv("ORBA_PATH", root.c_str(), 1);
  setenv("CMCFG_LOG_DIR", logDir.c_str(), 1);
  return root;
}

// A copy of the root with its first user's transport changed, made once.
std::string ChangedCopy(const std::string& root) {
  namespace fs = std::filesystem;
  const std::string copy = bench_roots::CacheFolder() + "/users-" + std::to_string(kUsers) + "-v" +
                           std::to_string(bench_roots::kGeneratorVersion) + "-changed/";
  if (!fs::exists(copy)) {
    fs::copy(root, copy, fs::copy_options::recursive);
    const std::string file = bench_roots::UserFiles(copy, kUsers).front();
    std::ofstream(file, std::ios::app) << "\n# changed\n";
  }
  return copy;
}

void RunVerb(benchmark::State& state, std::vector<std::string> args) {
  const std::string root = Root(state);
  if (root.empty()) return;
  for (std::string& arg : args) {
    if (arg == "ROOT") arg = root;
    if (arg == "COPY") arg = ChangedCopy(root);
    if (arg == "USER") arg = bench_roots::UserNumber(kUsers / 2);
  }
  std::vector<const char*> argv{"cmcfg"};
  for (const std::string& arg : args) argv.push_back(arg.c_str());
  size_t bytes = 0;
  for (auto _ : state) {
    std::ostringstream out, err;
    cmcfg_tool::RunCommandLine(static_cast<int>(argv.size()), argv.data(), out, err);
    bytes = out.str().size();
  }
  state.counters["out_bytes"] = static_cast<double>(bytes);
}

void BM_InspectStartup(benchmark::State& state) {
  if (Root(state).empty()) return;
  for (auto _ : state) {
    std::unique_ptr<CMAgent> agent(new CMAgent);
    agent->Destroy();
    // What the call manager does at shutdown: the records are the caller's.
    testing_support::ReleaseTables(*agent);
  }
}

void BM_InspectShow(benchmark::State& state) { RunVerb(state, {"show", "--root", "ROOT"}); }
void BM_InspectExt(benchmark::State& state) { RunVerb(state, {"ext", "USER", "--root", "ROOT"}); }
void BM_InspectDump(benchmark::State& state) { RunVerb(state, {"dump", "--root", "ROOT"}); }
void BM_InspectCheck(benchmark::State& state) { RunVerb(state, {"check", "--root", "ROOT"}); }
void BM_InspectDiff(benchmark::State& state) { RunVerb(state, {"diff", "ROOT", "COPY"}); }

// Seconds per run: a few repetitions of one run each, medians reported.
#define CMCFG_INSPECT_BENCH(fn)      \
  BENCHMARK(fn)                      \
      ->Unit(benchmark::kMillisecond) \
      ->UseRealTime()                \
      ->Iterations(1)                \
      ->Repetitions(3)               \
      ->ReportAggregatesOnly(true)

CMCFG_INSPECT_BENCH(BM_InspectStartup);
CMCFG_INSPECT_BENCH(BM_InspectShow);
CMCFG_INSPECT_BENCH(BM_InspectExt);
CMCFG_INSPECT_BENCH(BM_InspectDump);
CMCFG_INSPECT_BENCH(BM_InspectCheck);
CMCFG_INSPECT_BENCH(BM_InspectDiff);

}  // namespace
