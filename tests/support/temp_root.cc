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

std::string TempBase() {
  const char* base = getenv("CMCFG_TEST_TMP");
  std::string dir = base && *base ? base : fs::temp_directory_path().string();
  fs::create_directories(dir);
  return dir;
}

void SaveEnv(const char* name, std::string* value, bool* had) {
  const char* v = getenv(name);
  *had = v != nullptr;
  if (v) *value = v;
}

void RestoreEnv(const char* name, const std::string& value, bool had) {
  if (had)
    setenv(name, value.c_str(), 1);
  else
    unsetenv(name);
}

}  // namespace

TempRoot::TempRoot() {
  std::string templ = TempBase() + "/cmcfg-XXXXXX";
  if (!mkdtemp(templ.data())) throw std::runtime_error("mkdtemp failed");
  path_ = templ + "/";
  SaveEnv("ORBA_PATH", &saved_root_, &had_root_);
  SaveEnv("CMCFG_LOG_DIR", &saved_log_dir_, &had_log_dir_);
  setenv("ORBA_PATH", path_.c_str(), 1);
  setenv("CMCFG_LOG_DIR", path_.c_str(), 1);
  locks_ = templ + ".locks";
  SaveEnv("CMCFG_LOCK_DIR", &saved_lock_dir_, &had_lock_dir_);
  setenv("CMCFG_LOCK_DIR", locks_.c_str(), 1);
}

TempRoot::~TempRoot() {
  RestoreEnv("ORBA_PATH", saved_root_, had_root_);
  RestoreEnv("CMCFG_LOG_DIR", saved_log_dir_, had_log_dir_);
  RestoreEnv("CMCFG_LOCK_DIR", saved_lock_dir_, had_lock_dir_);
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
  std::ofstream out(p, std::ios::binary | std::ios::trunc);
  out << contents;
}

std::string TempRoot::Read(const std::string& relative) const {
  std::ifstream in(path_ + relative, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

bool TempRoot::Exists(const std::string& relative) const {
  return fs::exists(path_ + relative);
}

void TempRoot::MakeDir(const std::string& relative) const {
  fs::create_directories(path_ + relative);
}

}  // namespace testing_support

