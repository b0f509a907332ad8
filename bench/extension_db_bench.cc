// Cost of opening the extension database and fetching one extension, for
// a small office and for a very large database: it should not depend on
// the size.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/extension/extension_manager.h"

namespace {

std::string UserFile(int number) {
  char text[640];
  snprintf(text, sizeof(text),
           "section extension\n{\ndescription = User %d\n}\n"
           "section sip\n{\nauth_name = u%d\nuser_name = %d\npassword = pw%d\nhost = 10.0.%d.1\n"
           "port = 5060\ndisplay_name = User %d\n}\n"
           "section codecs\n{\nvoice_codecs = G711A,G711U,G729\nfax_codecs = T38\n}\n"
           "section timeouts\n{\nno_answer_timeout = 15\n}\n"
           "section contact 1\n{\nname = *\ncall_type = 0\n}\n"
           "section contact 1 forward_busy\n{\nactive = 1\ndestination_1 = 1,0,%d\n}\n",
           number, number, number, number, number % 250, number, number + 1);
  return text;
}

std::string small_db, large_db;

void RemoveDatabases() {
  for (const std::string* dir : {&small_db, &large_db})
    if (!dir->empty()) std::filesystem::remove_all(*dir);
}

// A database of `count` users, made once per size for the whole run (plain
// writes: setting it up is not what is measured).
const std::string& Database(int count) {
  std::string& dir = count <= 10 ? small_db : large_db;
  if (dir.empty()) {
    if (small_db.empty() && large_db.empty()) std::atexit(RemoveDatabases);
    char tmpl[] = "/tmp/cmcfg-extdb-XXXXXX";
    dir = std::string(mkdtemp(tmpl)) + "/";
    std::filesystem::create_directories(dir + "user");
    for (int i = 0; i < count; ++i)
      std::ofstream(dir + "user/" + std::to_string(100000 + i) + ".cfg") << UserFile(100000 + i);
  }
  return dir;
}

void BM_OpenAndFetchOne(benchmark::State& state) {
  const int count = static_cast<int>(state.range(0));
  const std::string& dir = Database(count);
  const std::string name = std::to_string(100000 + count / 2);
  for (auto _ : state) {
    ExtensionManager manager(dir, false);
    Extension* user = manager.GetExtension(kExtUser, name, true);
    if (user == nullptr) state.SkipWithError("extension not found");
    benchmark::DoNotOptimize(user);
  }
}

BENCHMARK(BM_OpenAndFetchOne)
    ->Arg(10)
    ->Arg(100000)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

}  // namespace
