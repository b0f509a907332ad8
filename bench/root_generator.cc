#include "bench/root_generator.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "bench/generated_text.h"

namespace bench_roots {
namespace fs = std::filesystem;

namespace {

// Six-digit numbers: a large exchange's numbering plan, and never the
// attendant's 100.
constexpr int kFirstUser = 100000;
const char kMarker[] = "generated.ok";

bool Complete(const std::string& dir) { return fs::exists(dir + "/" + kMarker); }

void Generate(const std::string& dir, int users) {
  const std::string tel = dir + "/telephony/";
  fs::create_directories(tel + "regional");
  fs::create_directories(tel + "extensiondb/attendant");
  fs::create_directories(tel + "extensiondb/user");
  WriteSystemFiles(tel, users);
  for (int i = 0; i < users; ++i)
    WriteFile(tel + "extensiondb/user/" + UserNumber(i) + ".cfg", UserFileText(i, users));
  // Last: a root without the marker is an interrupted generation.
  WriteFile(dir + "/" + kMarker, std::to_string(users) + " users\n");
}

}  // namespace

void WriteFile(const std::string& path, const std::string& text) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) throw std::runtime_error("cannot create " + path + ": " + std::strerror(errno));
  size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      ::close(fd);
      throw std::runtime_error("cannot write " + path);
    }
    done += static_cast<size_t>(n);
  }
  ::close(fd);
}

std::string CacheFolder() {
  const char* dir = std::getenv("CMCFG_BENCH_CACHE");
  return dir != nullptr && *dir != '\0' ? std::string(dir) : std::string("/tmp/cmcfg-bench");
}

std::string UserNumber(int index) { return std::to_string(kFirstUser + index); }

std::vector<std::string> UserFiles(const std::string& root, int users) {
  std::vector<std::string> files;
  files.reserve(static_cast<size_t>(users));
  for (int i = 0; i < users; ++i)
    files.push_back(root + "telephony/extensiondb/user/" + UserNumber(i) + ".cfg");
  return files;
}

std::string UserRoot(int users) {
  if (users < 0) throw std::invalid_argument("negative user count");
  const std::string base = CacheFolder();
  const std::string dir = base + "/users-" + std::to_string(users) + "-v" +
                          std::to_string(kGeneratorVersion);
  if (Complete(dir)) return dir + "/";

  fs::create_directories(base);
  std::error_code ec;
  fs::remove_all(dir, ec);  // an interrupted generation
  // Written aside and renamed into place, so a concurrent run never sees a
  // half-written root.
  const std::string partial = dir + ".partial-" + std::to_string(::getpid());
  fs::remove_all(partial, ec);
  Generate(partial, users);
  fs::rename(partial, dir, ec);
  if (ec) {
    fs::remove_all(partial, ec);
    if (!Complete(dir)) throw std::runtime_error("cannot place the generated root " + dir);
  }
  return dir + "/";
}

}  // namespace bench_roots
