// Shared pieces of the fuzz targets: a failed check that libFuzzer records
// as a crash, the configuration root a target keeps for the whole run,
// and the split of one input into several files.
#ifndef CMCFG_TESTS_FUZZ_FUZZ_SUPPORT_H_
#define CMCFG_TESTS_FUZZ_FUZZ_SUPPORT_H_

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz_support {

// Aborts with the failed condition: the targets are built with NDEBUG, so
// assert() would check nothing.
[[noreturn]] inline void Fail(const char* file, int line, const char* what) {
  std::fprintf(stderr, "%s:%d: check failed: %s\n", file, line, what);
  std::fflush(stderr);
  abort();
}

#define FUZZ_CHECK(cond) \
  ((cond) ? static_cast<void>(0) : ::fuzz_support::Fail(__FILE__, __LINE__, #cond))

// CMCFG_FUZZ_STRICT=1 turns on the checks of findings that are still open
// in code other than the target's own (see docs/fuzzing.md); off, the
// targets check only what holds today, so a run stops only at a regression.
inline bool Strict() {
  static const bool strict = [] {
    const char* v = getenv("CMCFG_FUZZ_STRICT");
    return v != nullptr && *v != '\0' && *v != '0';
  }();
  return strict;
}

inline std::string_view AsText(const uint8_t* data, size_t size) {
  return std::string_view(reinterpret_cast<const char*>(data), size);
}

// The line that separates the files of one input. Readable, so that seeds
// can be written by hand; the dictionaries hold it too.
constexpr std::string_view kSplit = "\n----\n";

// Cuts `input` at each kSplit into at most `count` pieces (the last piece
// keeps any further separators); missing pieces are empty.
inline std::vector<std::string> Split(std::string_view input, size_t count) {
  std::vector<std::string> pieces;
  while (pieces.size() + 1 < count) {
    size_t at = input.find(kSplit);
    if (at == std::string_view::npos) break;
    pieces.emplace_back(input.substr(0, at));
    input.remove_prefix(at + kSplit.size());
  }
  pieces.emplace_back(input);
  pieces.resize(count);
  return pieces;
}

// Where the roots go: $TMPDIR, else /dev/shm, else /tmp. The targets write
// their files once per input, so a memory file system (where a flush costs
// nothing and no inode reaches a disk) is worth several times the rate.
inline std::string TempBase() {
  const char* tmp = getenv("TMPDIR");
  if (tmp != nullptr && *tmp != '\0') return tmp;
  if (access("/dev/shm", W_OK | X_OK) == 0) return "/dev/shm";
  return "/tmp";
}

// A configuration root in a fresh temporary folder (under TempBase()) for
// the whole run: ORBA_PATH points at it, and the trace log is sent to a
// folder that never exists, so a fuzzed "log_enabled" formats its lines but
// writes no file. Removed at a normal exit; a crash leaves it for a look.
class FuzzRoot {
 public:
  FuzzRoot() {
    const std::string base = TempBase();
    std::error_code ec;
    std::filesystem::create_directories(base, ec);
    std::string templ = base + "/cmcfg-fuzz-XXXXXX";
    if (mkdtemp(templ.data()) == nullptr) Fail(__FILE__, __LINE__, "mkdtemp");
    path_ = templ + "/";
    setenv("ORBA_PATH", path_.c_str(), 1);
    setenv("CMCFG_LOG_DIR", (path_ + "no-log-dir/").c_str(), 1);
    MakeDirs("telephony");
  }
  ~FuzzRoot() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  FuzzRoot(const FuzzRoot&) = delete;
  FuzzRoot& operator=(const FuzzRoot&) = delete;

  const std::string& path() const { return path_; }
  std::string Path(const std::string& relative) const { return path_ + relative; }

  void MakeDirs(const std::string& relative) const {
    std::error_code ec;
    std::filesystem::create_directories(path_ + relative, ec);
  }

  // Replaces the file's contents (plain POSIX calls: this runs once per
  // input and must stay cheap).
  void Write(const std::string& relative, std::string_view contents) const {
    int fd = open((path_ + relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0 || write(fd, contents.data(), contents.size()) != static_cast<ssize_t>(contents.size()))
      Fail(__FILE__, __LINE__, "write");
    close(fd);
  }

  // Empties `relative` (a folder) of everything, keeping the folder.
  void Clear(const std::string& relative) const {
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(path_ + relative, ec))
      std::filesystem::remove_all(entry.path(), ec);
  }

 private:
  std::string path_;
};

// The run's root, made at the first call (from LLVMFuzzerInitialize, before
// any input) with `folders` in it, and removed at a normal exit.
inline FuzzRoot& Root(std::initializer_list<const char*> folders = {}) {
  static FuzzRoot root;
  for (const char* folder : folders) root.MakeDirs(folder);
  return root;
}

}  // namespace fuzz_support

#endif  // CMCFG_TESTS_FUZZ_FUZZ_SUPPORT_H_
