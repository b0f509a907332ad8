// The tool's outputs on the bundled example, pinned byte for byte. When an
// output changes on purpose, scripts/regen-goldens.sh rewrites the files and
// their diff is what a reviewer reads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <regex>

#include "tests/support/temp_root.h"
#include "tests/tools/tool_test_util.h"

namespace {

using tool_testing::CopyExample;
using tool_testing::RunCmcfg;

const std::string kGoldenDir = CMCFG_EXAMPLES_DIR "../tests/tools/golden/";

std::string Read(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
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
  const std::string path = kGoldenDir + golden.file;
  if (std::getenv("CMCFG_REGEN_GOLDEN") != nullptr) {
    std::ofstream(path, std::ios::binary) << out.str();
    return;
  }
  EXPECT_EQ(out.str(), Read(path)) << "regenerate with scripts/regen-goldens.sh if intended";
}

INSTANTIATE_TEST_SUITE_P(Example, GoldenTest, ::testing::ValuesIn(kGoldens),
                         [](const ::testing::TestParamInfo<Golden>& info) {
                           return std::regex_replace(info.param.file, std::regex("[^A-Za-z0-9]"),
                                                     "_");
                         });

}  // namespace
