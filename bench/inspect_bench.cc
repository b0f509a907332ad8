// The inspecting verbs over a generated root of 10,000 fully profiled
// users, against a plain start-up of the agent over the same root: `check`
// (every finding, printed) and `dump --json` (a start-up, then the JSON
// document). Compare the medians of the three.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

#include "bench/root_generator.h"
#include "cmcfg/cm_agent.h"
#include "tools/check.h"
#include "tools/dump.h"
#include "tests/support/agent_support.h"

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

void BM_InspectStartup(benchmark::State& state) {
  if (Root(state).empty()) return;
  for (auto _ : state) {
    std::unique_ptr<CMAgent> agent(new CMAgent);
    agent->Destroy();
    // What the call manager does at shutdown: the records are the caller's.
    testing_support::ReleaseTables(*agent);
  }
}

void BM_InspectCheck(benchmark::State& state) {
  const std::string root = Root(state);
  if (root.empty()) return;
  size_t findings = 0, bytes = 0;
  for (auto _ : state) {
    const cmcfg_tool::Findings found = cmcfg_tool::FindProblems(root);
    std::ostringstream out;
    cmcfg_tool::PrintFindings(found, out);
    findings = found.size();
    bytes = out.str().size();
  }
  // A generated root is clean; findings would mean the check or the
  // generator went wrong, and printing them would be timed as well.
  state.counters["findings"] = static_cast<double>(findings);
  state.counters["out_bytes"] = static_cast<double>(bytes);
}

void BM_InspectDumpJson(benchmark::State& state) {
  const std::string root = Root(state);
  if (root.empty()) return;
  cmcfg_tool::DumpOptions options;
  options.root = root;
  options.logDir = bench_roots::CacheFolder() + "/log";
  size_t bytes = 0;
  for (auto _ : state) {
    std::ostringstream out, err;
    if (cmcfg_tool::RunDump(options, out, err) != 0) {
      state.SkipWithError(("dump failed: " + err.str()).c_str());
      return;
    }
    bytes = out.str().size();
  }
  state.counters["out_MiB"] = static_cast<double>(bytes) / (1024.0 * 1024.0);
}

// Seconds per run: a few repetitions of one run each, medians reported.
#define CMCFG_INSPECT_BENCH(fn)      \
  BENCHMARK(fn)                      \
      ->Unit(benchmark::kMillisecond) \
      ->UseRealTime()                \
      ->Iterations(1)                \
      ->Repetitions(5)               \
      ->ReportAggregatesOnly(true)

CMCFG_INSPECT_BENCH(BM_InspectStartup);
CMCFG_INSPECT_BENCH(BM_InspectCheck);
CMCFG_INSPECT_BENCH(BM_InspectDumpJson);

}  // namespace
