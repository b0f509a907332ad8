// The library's free helpers (interface names, paths, tokens) and the
// agent's names: unique strings, user names, runtime databases.
#include <unistd.h>

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <utility>
#include <vector>

#include "agent/net_interfaces.h"
#include "cmcfg/functions.h"
#include "tests/support/agent_fixture.h"

namespace {

using testing_support::AgentTest;
using testing_support::TempRoot;

// The files are read one right after the other, so the reading buffer
// still holds the bytes of the longer file before past the end of a
// shorter one: a trim that looks one byte too far finds them.
TEST(InterfaceNames, WanNameIsCutToItsVisibleCharacters) {
  TempRoot root;
  const std::pair<std::string, std::string> files[] = {  // contents, name
      {std::string(512, 'x'), std::string(512, 'x')}, {"  ppp1\n", "ppp1"}, {std::string(512, ' '), ""},
      {"  ", ""}, {"a", "a"}, {"", ""}};
  std::vector<std::string> paths, names(std::size(files), "old"), expected;
  for (size_t i = 0; i < std::size(files); ++i) {
    root.Write(std::to_string(i), files[i].first);
    paths.push_back(root.Path(std::to_string(i)));
    expected.push_back(files[i].second);
  }
  std::vector<int> results(std::size(files), -9);
  for (size_t i = 0; i < std::size(files); ++i)
    results[i] = agent_internal::ReadInterfaceName(paths[i].c_str(), names[i]);
  EXPECT_EQ(std::vector<int>(std::size(files), 0), results);
  EXPECT_EQ(expected, names);
  EXPECT_EQ(-1, agent_internal::ReadInterfaceName(root.Path("absent").c_str(), names[0]));
  EXPECT_EQ(files[0].second, names[0]);  // no file: left alone
}

TEST(PathHelpers, CorrectPathTestsTheFolderOrTheWholePath) {
  TempRoot root;
  root.Write("x/file.cfg", "");
  std::string file = root.Path("x//file.cfg"), dir = root.Path("x"), bare = "no-such-name";
  std::string backslashed = root.Path("x\\file.cfg");
  // A file is not a folder; without "/" the whole name is tested.
  EXPECT_EQ((std::vector<bool>{true, false, true, false, true}),
            (std::vector<bool>{CorrectPath(file, true), CorrectPath(file, false), CorrectPath(dir, false),
                               CorrectPath(bare, true), FileExist(backslashed)}));
  EXPECT_EQ(root.Path("x/file.cfg"), file);  // normalised for the caller
  EXPECT_EQ(root.Path("x/file.cfg"), backslashed);
  EXPECT_EQ("line4294967295", TokenMaker("line", -1));  // unsigned
}

// The digits GenerateUniqueString appends: seconds in the high word,
// microseconds (not seconds * 10^6) in the low one.
void ExpectTimeDigits(const std::string& digits) {
  ASSERT_FALSE(digits.empty());
  ASSERT_EQ(std::string::npos, digits.find_first_not_of("0123456789")) << digits;
  const unsigned long long value = std::stoull(digits);
  EXPECT_NEAR(static_cast<double>(value >> 32), static_cast<double>(time(nullptr)), 5.0);
  EXPECT_LT(value & 0xFFFFFFFFull, 1000000ull);
}

TEST_F(AgentTest, NamesAreUniqueAndTakeTheSystemPrefix) {
  root_.Write("telephony/general.cfg", "section system\n{\nsystem_prefix = pbx-\n}\n");
  CMAgent& agent = Start();
  EXPECT_TRUE(agent.IsFileName("a.db") && agent.IsFileName(""));
  EXPECT_FALSE(agent.IsFileName("dir/a.db") || agent.IsFileName("dir\\a.db"));
  std::string first, text = "stem";
  agent.GenerateUniqueString(first, false);
  usleep(2);
  agent.GenerateUniqueString(text, false);  // replaces the stem
  EXPECT_NE(first, text);
  ExpectTimeDigits(text);
  std::string user = "101", none;
  agent.FillUserName(user);
  ASSERT_EQ("pbx-101", user.substr(0, 7));
  ExpectTimeDigits(user.substr(7));
  // No name: the fixed stem, followed by the system prefix the load added.
  agent.FillUserName(none);
  ASSERT_EQ("kaIfArIkNiCkpbx-", none.substr(0, 16));
  ExpectTimeDigits(none.substr(16));
}

}  // namespace
