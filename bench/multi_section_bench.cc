// Throughput of the multi-section text format on a large, realistic file:
// parse from memory, load from disk (read + parse) and serialize.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/base/document.h"
#include "platform/base/file_system.h"

namespace {

constexpr int kSections = 200000;

const char* const kFirstNames[] = {"Alice", "Bob", "Carol", "Dave", "Erin", "Frank", "Grace",
                                   "Heidi", "Ivan", "Judy", "Mallory", "Oscar"};
const char* const kLastNames[] = {"Smith", "Jones", "Garcia", "Miller", "Davis", "Lopez",
                                  "Wilson", "Moore", "Taylor", "Clark"};
const char* const kCodecs[] = {"PCMU,PCMA,G729", "G722,PCMA", "PCMU", "G729,G723,PCMU,PCMA"};

// One user's section, 200-odd bytes: numbers, a SIP address, names, a dial
// pattern with backslashes and, for some users, quoted values.
void AppendSection(int i, unsigned* seed, std::string* out) {
  *seed = *seed * 1103515245u + 12345u;
  unsigned r = *seed >> 8;
  const char* first = kFirstNames[r % 12];
  const char* last = kLastNames[(r / 12) % 10];
  char text[512];
  int n = snprintf(text, sizeof(text),
                   "section user_%06d\n{\n"
                   "extension_number = %d\n"
                   "user_name = %s %s\n"
                   "sip_address = sip:%d@pbx%u.example.com:%u\n"
                   "user_host_port = %u\n"
                   "registration_date_and_time = %u\n"
                   "forward_pattern = \\?1?*%d#\n"
                   "codec_list = %s\n",
                   i, 1000 + i, first, last, 1000 + i, r % 8, 5060 + r % 3, 5060 + r % 3,
                   1700000000u + r % 1000000u, i % 1000, kCodecs[r % 4]);
  out->append(text, static_cast<size_t>(n));
  if (r % 5 == 0) {
    n = snprintf(text, sizeof(text), "display_name = \"%s \\\"%c.\\\" %s\\t(desk)\"\n", first,
                 last[0], last);
    out->append(text, static_cast<size_t>(n));
  }
  out->append("}\n\n");
}

const std::string& LargeText() {
  static const std::string text = [] {
    std::string t;
    t.reserve(48u << 20);
    unsigned seed = 42;
    for (int i = 0; i < kSections; ++i) AppendSection(i, &seed, &t);
    return t;
  }();
  return text;
}

void CheckParsed(benchmark::State& state, const cfg::Document& doc) {
  if (doc.size() != static_cast<size_t>(kSections) || !doc.diagnostics().empty())
    state.SkipWithError("the generated text did not parse cleanly");
}

void BM_Parse(benchmark::State& state) {
  const std::string& text = LargeText();
  for (auto _ : state) {
    state.PauseTiming();
    std::string copy = text;  // Parse takes its text; the copy is not what we measure
    state.ResumeTiming();
    cfg::Document doc = cfg::Document::Parse(std::move(copy));
    benchmark::DoNotOptimize(doc.size());
    state.PauseTiming();
    CheckParsed(state, doc);
    doc = cfg::Document();  // freeing is not measured either
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(text.size()));
}

void BM_LoadDocument(benchmark::State& state) {
  const std::string& text = LargeText();
  char path[] = "/tmp/cmcfg-bench-XXXXXX";
  int fd = mkstemp(path);
  if (fd < 0 || write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    state.SkipWithError("cannot write the temporary file");
    return;
  }
  close(fd);
  for (auto _ : state) {
    cfg::Document doc;
    if (!cfg::LoadDocument(path, &doc).ok()) state.SkipWithError("load failed");
    benchmark::DoNotOptimize(doc.size());
  }
  unlink(path);
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(text.size()));
}

void BM_Serialize(benchmark::State& state) {
  const cfg::Document doc = cfg::Document::Parse(LargeText());
  size_t bytes = 0;
  for (auto _ : state) {
    std::string out = doc.Serialize();
    bytes = out.size();
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(bytes));
}

BENCHMARK(BM_Parse)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_LoadDocument)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_Serialize)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace

BENCHMARK_MAIN();
