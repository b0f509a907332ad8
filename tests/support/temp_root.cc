#include "tests/support/temp_root.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace testing_support {
namespace fs = std::filesystem;

namespace {

const char* const kVariables[] = {"ORBA_PATH", "CMCFG_LOG_DIR", "CMCFG_LOCK_DIR"};

}  // namespace

TempRoot::TempRoot() {
  const char* base = getenv("CMCFG_TEST_TMP");
  const std::string dir = base && *base ? base : fs::temp_directory_path().string();
  fs::create_directories(dir);
  std::string templ = dir + "/cmcfg-XXXXXX";
  if (!mkdtemp(templ.data())) throw std::runtime_error("mkdtemp failed");
  path_ = templ + "/";
  locks_ = templ + ".locks";
  const std::string values[] = {path_, path_, locks_};
  for (int i = 0; i < 3; ++i) {
    if (const char* v = getenv(kVariables[i])) saved_[i] = v;
    setenv(kVariables[i], values[i].c_str(), 1);
  }
}

TempRoot::~TempRoot() {
  for (int i = 0; i < 3; ++i) {
    if (saved_[i])
      setenv(kVariables[i], saved_[i]->c_str(), 1);
    else
      unsetenv(kVariables[i]);
  }
  std::error_code ec;
  fs::remove_all(locks_, ec);
  // Tests may leave read-only files or folders behind; make them removable.
  for (auto& entry : fs::recursive_directory_iterator(path_, ec))
    fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add, ec);
  fs::remove_all(path_, ec);
}

void TempRoot::Write(const std::string& relative, const std::string& contents) const {
  fs::path p = path_ + relative;
  fs::create_directories(p.parent_path());
  std::ofstream(p, std::ios::binary | std::ios::trunc) << contents;
}

std::string TempRoot::Read(const std::string& relative) const {
  std::ostringstream s;
  s << std::ifstream(path_ + relative, std::ios::binary).rdbuf();
  return s.str();
}

bool TempRoot::Exists(const std::string& relative) const { return fs::exists(path_ + relative); }

void TempRoot::MakeDir(const std::string& relative) const { fs::create_directories(path_ + relative); }

}  // namespace testing_support
