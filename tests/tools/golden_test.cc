// The tool's outputs on the bundled example, pinned byte for byte. When an
// output changes on purpose, scripts/regen-goldens.sh rewrites the files and
// their diff is what a reviewer reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <regex>

#include "tests/support/golden.h"
#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"
#include "tools/check_syntax.h"

namespace {

using tool_testing::CopyExample;
using testing_support::ExpectGolden;
using tool_testing::RunCmcfg;

const std::string kRootsDir = CMCFG_SOURCE_DIR "/tests/tools/roots/";

std::string TestName(const std::string& text) {
  return std::regex_replace(text, std::regex("[^A-Za-z0-9]"), "_");
}

// Replaces the first `from` in the root's file `relative` with `to`.
void Edit(const testing_support::TempRoot& root, const std::string& relative,
          const std::string& from, const std::string& to) {
  std::string text = root.Read(relative);
  const size_t at = text.find(from);
  ASSERT_NE(at, std::string::npos) << from << " not in " << relative;
  root.Write(relative, text.replace(at, from.size(), to));
}

// The mistakes check must report, planted in a copy of the example.
void PlantMistakes(const testing_support::TempRoot& root) {
  const std::string user = "telephony/extensiondb/user/";
  root.Write(user + "100.cfg", root.Read(user + "102.cfg"));  // hides attendant 100
  Edit(root, user + "102.cfg", "port = 5060", "port = 99999");
  Edit(root, user + "102.cfg", "transport = udp", "transport = sctpx");
  Edit(root, user + "102.cfg", "registration_enabled = 1", "registration_enabled = 7");
  Edit(root, user + "102.cfg", "register_expiry = 1800", "register_expiry = -5");
  Edit(root, user + "102.cfg", "user_name = 102", "user_name = 102\nuser_name = 1020");
  Edit(root, user + "101.cfg", "1,1,sip:alice@mobile.example", "1,1,sip:alice@@mobile example:99x");
  std::rename(root.Path("telephony/general.cfg").c_str(),
              root.Path("telephony/general.cfg.old").c_str());
}

// A copy with one extension changed and a contact added: diff loads only
// that extension.
void ChangeExtension(const testing_support::TempRoot& root) {
  const std::string user = "telephony/extensiondb/user/";
  Edit(root, user + "102.cfg", "transport = udp", "transport = tcp");
  root.Write(user + "102.cfg", root.Read(user + "102.cfg") +
                                   "\nsection contact 9\n{\nname = 0800*\ncall_type = 0\n}\n");
}

// ... and a setting changed as well: diff loads both roots.
void ChangeSettings(const testing_support::TempRoot& root) {
  ChangeExtension(root);
  Edit(root, "telephony/general.cfg", "system_prefix = office-", "system_prefix = hq-");
}

struct Golden {
  const char* file;
  std::vector<std::string> args;  // ROOT and OTHER stand for the two copies
  int status;
  std::function<void(const testing_support::TempRoot&)> prepare;  // the first copy
};

const Golden kGoldens[] = {
    {"show.txt", {"show", "--root", "ROOT"}, 0, nullptr},
    {"show.json", {"show", "--json", "--root", "ROOT"}, 0, nullptr},
    {"dump.json", {"--root", "ROOT", "dump"}, 0, nullptr},
    {"ext-109.txt", {"ext", "109", "--root", "ROOT"}, 0, nullptr},
    {"ext-109.json", {"ext", "109", "--json", "--root", "ROOT"}, 0, nullptr},
    {"ext-100-attendant.txt", {"ext", "100", "--root", "ROOT"}, 0, nullptr},
    {"ext-300-group.txt", {"ext", "300", "--root", "ROOT"}, 0, nullptr},
    {"check-clean.txt", {"check", "--root", "ROOT"}, 0, nullptr},
    {"check.txt", {"check", "--root", "ROOT"}, 1, PlantMistakes},
    {"check.json", {"check", "--json", "--root", "ROOT"}, 1, PlantMistakes},
    {"diff-extension.txt", {"diff", "OTHER", "ROOT"}, 1, ChangeExtension},
    {"diff-settings.txt", {"diff", "OTHER", "ROOT"}, 1, ChangeSettings},
};

// The case's file names it in a failure.
void PrintTo(const Golden& golden, std::ostream* out) { *out << golden.file; }

class GoldenTest : public ::testing::TestWithParam<Golden> {};

TEST_P(GoldenTest, OutputIsPinned) {
  const Golden& golden = GetParam();
  testing_support::TempRoot root, other;
  CopyExample(root.path());
  CopyExample(other.path());
  if (golden.prepare) golden.prepare(root);
  std::vector<std::string> args;
  for (const std::string& arg : golden.args)
    args.push_back(arg == "ROOT" ? root.path() : arg == "OTHER" ? other.path() : arg);
  std::ostringstream out, err;
  EXPECT_EQ(RunCmcfg(args, out, err), golden.status) << err.str();
  ExpectGolden("tools/golden/" + std::string(golden.file), out.str());
}

INSTANTIATE_TEST_SUITE_P(Example, GoldenTest, ::testing::ValuesIn(kGoldens),
                         [](const ::testing::TestParamInfo<Golden>& info) {
                           return TestName(info.param.file);
                         });

// Small roots kept as data, tests/tools/roots/NAME/, each pinning what the
// agent and check make of some corner of the format in NAME.golden: check's
// findings and status, the parts of the dump that differ from an empty
// root's (of a list, the elements an empty root has not), and the agent's
// log. Settings files a case leaves out are written
// empty, so that check reports only what the case holds.
std::vector<std::string> RootCases() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kRootsDir))
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

void FillSettings(const testing_support::TempRoot& root) {
  for (const std::string& relative : cmcfg_tool::SettingsFiles())
    if (!root.Exists(relative)) root.Write(relative, "");
}

// `text` with the root's path written as ROOT/, and the time digits of the
// SIP user names the agent makes up per call as "…".
std::string Relative(std::string text, const testing_support::TempRoot& root) {
  for (size_t at; (at = text.find(root.path())) != std::string::npos;)
    text.replace(at, root.path().size(), "ROOT/");
  return std::regex_replace(text, std::regex("[0-9]{12,}"), "…");
}

// `cmcfg dump` of `root` as JSON, with the agent's log in `log`.
nlohmann::ordered_json Dump(const testing_support::TempRoot& root, std::string* log) {
  testing_support::TempRoot logs;
  std::ostringstream out, err;
  EXPECT_EQ(RunCmcfg({"dump", "--root", root.path(), "--log-dir", logs.path()}, out, err), 0)
      << err.str();
  if (log != nullptr) *log = Relative(logs.Read("cmcfg.log"), root);
  return nlohmann::ordered_json::parse(Relative(out.str(), root), nullptr, false);
}

const nlohmann::ordered_json& EmptyRootDump() {
  static const nlohmann::ordered_json dump = [] {
    testing_support::TempRoot root;
    FillSettings(root);
    return Dump(root, nullptr);
  }();
  return dump;
}

class RootCaseTest : public ::testing::TestWithParam<std::string> {};

TEST_P(RootCaseTest, OutputIsPinned) {
  testing_support::TempRoot root;
  std::filesystem::copy(kRootsDir + GetParam(), root.path(),
                        std::filesystem::copy_options::recursive);
  FillSettings(root);
  std::ostringstream out, err, golden;
  const int status = RunCmcfg({"check", "--root", root.path()}, out, err);
  golden << "== check: exit " << status << "\n" << Relative(out.str() + err.str(), root);

  std::string log;
  const nlohmann::ordered_json dump = Dump(root, &log);
  nlohmann::ordered_json differs = nlohmann::ordered_json::object();
  const nlohmann::ordered_json& empty = EmptyRootDump();
  for (const auto& [key, value] : dump.items()) {
    if (empty.contains(key) && empty[key] == value) continue;
    if (!value.is_array() || !empty.contains(key)) {
      differs[key] = value;
      continue;
    }
    differs[key] = nlohmann::ordered_json::array();  // the elements an empty root has not
    for (const auto& element : value)
      if (std::find(empty[key].begin(), empty[key].end(), element) == empty[key].end())
        differs[key].push_back(element);
  }
  golden << "== dump: what differs from an empty root\n" << differs.dump(2) << "\n";
  golden << "== log\n" << log;
  ExpectGolden("tools/roots/" + GetParam() + ".golden", golden.str());
}

INSTANTIATE_TEST_SUITE_P(Roots, RootCaseTest, ::testing::ValuesIn(RootCases()),
                         [](const ::testing::TestParamInfo<std::string>& info) {
                           return TestName(info.param);
                         });

}  // namespace
