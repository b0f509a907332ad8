// Throughput of the multi-section text format on a large, realistic file:
// parse from memory, load from disk (read + parse) and serialize; and the
// store's load with every name, key and value visited, against a careful
// single-pass parser of the same format and the floor of mapping the file
// and finding its lines, all in the same run.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/base/document.h"
#include "platform/base/document_store.h"

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

// ------------------------------------------- parsing against its yardsticks

// A careful single-pass parser of the same format, for comparison only: one
// memchr per line, the line classified by its first byte, entries cut at
// the first separator and trimmed, quoted values decoded into one shared
// buffer. It keeps no verbatim lines and checks nothing that the writer
// needs (names and keys that would not read back are taken as they are),
// so it is the speed the store's parser should reach with its checks.
struct RefEntry {
  std::string_view key;
  std::string_view value;
};
struct RefSection {
  std::string_view name;
  uint32_t first = 0;  // index of its first entry
  uint32_t count = 0;
};
struct RefDocument {
  std::vector<RefSection> sections;
  std::vector<RefEntry> entries;
  std::string decoded;  // quoted values, unescaped, one after the other
};

inline bool RefBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view RefTrim(const char* b, const char* e) {
  while (b < e && RefBlank(*b)) ++b;
  while (e > b && (RefBlank(e[-1]) || e[-1] == '\r')) --e;
  return std::string_view(b, static_cast<size_t>(e - b));
}

int RefHex(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Appends the decoded text of a quoted value's inside; an escape that is not
// understood stays as written.
void RefUnescape(std::string_view in, std::string* out) {
  for (size_t i = 0; i < in.size(); ++i) {
    char c = in[i];
    if (c != '\\' || i + 1 == in.size()) {
      out->push_back(c);
      continue;
    }
    char n = in[++i];
    switch (n) {
      case 'n': out->push_back('\n'); break;
      case 'r': out->push_back('\r'); break;
      case 't': out->push_back('\t'); break;
      case 'x':
        if (i + 2 < in.size() && RefHex(in[i + 1]) >= 0 && RefHex(in[i + 2]) >= 0) {
          out->push_back(static_cast<char>(RefHex(in[i + 1]) * 16 + RefHex(in[i + 2])));
          i += 2;
        } else {
          out->append("\\x");
        }
        break;
      default: out->push_back(n);
    }
  }
}

void RefParse(std::string_view text, RefDocument* doc) {
  doc->sections.clear();
  doc->entries.clear();
  doc->decoded.clear();
  doc->sections.reserve(text.size() / 64);
  doc->entries.reserve(text.size() / 24);
  // Quoted values as (entry, offset, length) in `decoded`, which may still
  // move while it grows: their views are made at the end.
  std::vector<std::array<size_t, 3>> quoted;
  const char* p = text.data();
  const char* const end = p + text.size();
  bool inside = false;
  while (p < end) {
    const char* nl = static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(end - p)));
    const char* line_end = nl ? nl : end;
    const std::string_view line = RefTrim(p, line_end);
    p = nl ? nl + 1 : end;
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '{' && line.size() == 1) continue;
    if (line[0] == '}' && line.size() == 1) {
      inside = false;
      continue;
    }
    if (line.size() >= 7 && line.compare(0, 7, "section") == 0 &&
        (line.size() == 7 || RefBlank(line[7]))) {
      RefSection s;
      s.name = RefTrim(line.data() + 7, line.data() + line.size());
      s.first = static_cast<uint32_t>(doc->entries.size());
      doc->sections.push_back(s);
      inside = true;
      continue;
    }
    const char* eq = static_cast<const char*>(std::memchr(line.data(), '=', line.size()));
    if (eq == nullptr || !inside) continue;
    RefEntry e;
    e.key = RefTrim(line.data(), eq);
    e.value = RefTrim(eq + 1, line.data() + line.size());
    if (e.value.size() >= 2 && e.value.front() == '"' && e.value.back() == '"') {
      const size_t at = doc->decoded.size();
      RefUnescape(e.value.substr(1, e.value.size() - 2), &doc->decoded);
      quoted.push_back({doc->entries.size(), at, doc->decoded.size() - at});
    }
    doc->entries.push_back(e);
    ++doc->sections.back().count;
  }
  for (const auto& q : quoted) doc->entries[q[0]].value = std::string_view(doc->decoded).substr(q[1], q[2]);
}

// The large text as a file, written once for the comparison benchmarks.
const std::string& LargeFile() {
  static const std::string path = [] {
    std::string p = "/tmp/cmcfg-bench-parse-" + std::to_string(getpid()) + ".cfg";
    const std::string& text = LargeText();
    const int fd = open(p.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0 || write(fd, text.data(), text.size()) != static_cast<ssize_t>(text.size())) p.clear();
    if (fd >= 0) close(fd);
    if (!p.empty()) std::atexit([] { unlink(LargeFile().c_str()); });
    return p;
  }();
  return path;
}

// The whole file mapped and paged in (munmap it with *size), or nullptr.
void* MapWhole(const std::string& path, size_t* size) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat st {};
  if (fd < 0 || fstat(fd, &st) != 0) {
    if (fd >= 0) close(fd);
    return nullptr;
  }
  *size = static_cast<size_t>(st.st_size);
  void* map = mmap(nullptr, *size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
  close(fd);
  return map == MAP_FAILED ? nullptr : map;
}

// The floor: the file mapped and every line found, nothing else.
void BM_ParseFloorMmapMemchr(benchmark::State& state) {
  const std::string& path = LargeFile();
  size_t size = 0;
  for (auto _ : state) {
    void* map = MapWhole(path, &size);
    if (map == nullptr) {
      state.SkipWithError("cannot open the file");
      return;
    }
    const char* p = static_cast<const char*>(map);
    const char* end = p + size;
    size_t lines = 0;
    while (const void* nl = std::memchr(p, '\n', static_cast<size_t>(end - p))) {
      ++lines;
      p = static_cast<const char*>(nl) + 1;
    }
    benchmark::DoNotOptimize(lines);
    munmap(map, size);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}

// What a reader does with a parsed document: every name, key and value.
template <typename Visit>
size_t Checksum(Visit visit) {
  size_t sum = 0;
  visit([&](std::string_view s) { sum += s.size() + (s.empty() ? 0 : static_cast<unsigned char>(s[0])); });
  return sum;
}

void BM_ParseReference(benchmark::State& state) {
  const std::string& path = LargeFile();
  RefDocument doc;
  for (auto _ : state) {
    // Mapped, as the floor reads it: no copy of the text at all.
    size_t size = 0;
    void* map = MapWhole(path, &size);
    if (map == nullptr) {
      state.SkipWithError("cannot open the file");
      return;
    }
    RefParse(std::string_view(static_cast<const char*>(map), size), &doc);
    benchmark::DoNotOptimize(Checksum([&](auto take) {
      for (const RefSection& s : doc.sections) {
        take(s.name);
        for (uint32_t i = s.first; i < s.first + s.count; ++i) {
          take(doc.entries[i].key);
          take(doc.entries[i].value);
        }
      }
    }));
    state.PauseTiming();
    if (doc.sections.size() != static_cast<size_t>(kSections)) state.SkipWithError("bad parse");
    doc = RefDocument();  // freeing is not measured (nor for the store's parser)
    munmap(map, size);
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(LargeText().size()));
}

void BM_ParseStore(benchmark::State& state) {
  const std::string& path = LargeFile();
  for (auto _ : state) {
    cfg::Document doc;
    if (!cfg::LoadDocument(path, &doc).ok()) {
      state.SkipWithError("cannot read the file");
      return;
    }
    benchmark::DoNotOptimize(Checksum([&](auto take) {
      for (const cfg::Section& s : doc.sections()) {
        take(s.name);
        for (const cfg::Entry& e : s.entries) {
          take(e.key);
          take(e.value);
        }
      }
    }));
    state.PauseTiming();
    CheckParsed(state, doc);
    doc = cfg::Document();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(LargeText().size()));
}

BENCHMARK(BM_ParseFloorMmapMemchr)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ParseReference)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ParseStore)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

BENCHMARK(BM_Parse)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_LoadDocument)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_Serialize)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace

BENCHMARK_MAIN();
