#include <gtest/gtest.h>

#include <ctime>
#include <set>
#include <string>

#include "agent/net_interfaces.h"
#include "cmcfg/cm_agent.h"
#include "cmcfg/functions.h"
#include "tests/support/temp_root.h"

namespace {

using testing_support::TempRoot;

TEST(InterfaceNames, WanNameIsCutToItsVisibleCharacters) {
  TempRoot root;
  root.Write("wan-if", "  ppp1\n");
  std::string name = "old";
  EXPECT_EQ(0, agent_internal::ReadInterfaceName(root.Path("wan-if").c_str(), name));
  EXPECT_EQ("ppp1", name);

  root.Write("wan-if", "");
  EXPECT_EQ(0, agent_internal::ReadInterfaceName(root.Path("wan-if").c_str(), name));
  EXPECT_EQ("", name);
}

TEST(InterfaceNames, MissingWanFileLeavesTheNameAlone) {
  TempRoot root;
  std::string name = "eth9";
  EXPECT_EQ(-1, agent_internal::ReadInterfaceName(root.Path("absent").c_str(), name));
  EXPECT_EQ("eth9", name);
  GetLanIfName(name);
  EXPECT_EQ("eth0", name);
  GetPPPIfName(name);
  EXPECT_EQ("ppp0", name);
}

TEST(PathHelpers, CorrectPathTestsTheFolderOrTheWholePath) {
  TempRoot root;
  root.Write("x/file.cfg", "");
  std::string file = root.Path("x//file.cfg");
  EXPECT_TRUE(CorrectPath(file, true));
  EXPECT_EQ(root.Path("x/file.cfg"), file);  // normalised for the caller
  EXPECT_FALSE(CorrectPath(file, false));    // a file is not a folder
  std::string dir = root.Path("x");
  EXPECT_TRUE(CorrectPath(dir, false));
  std::string bare = "no-such-name";
  EXPECT_FALSE(CorrectPath(bare, true));  // no "/": the whole name is tested

  std::string backslashed = root.Path("x\\file.cfg");
  EXPECT_TRUE(FileExist(backslashed));
  EXPECT_EQ(root.Path("x/file.cfg"), backslashed);
}

TEST(PathHelpers, TokenMakerFormatsUnsigned) {
  EXPECT_EQ("line7", TokenMaker("line", 7));
  EXPECT_EQ("line4294967295", TokenMaker("line", -1));
}

class AgentPathsTest : public ::testing::Test {
 protected:
  void SetUp() override { root_.MakeDir("telephony"); }
  TempRoot root_;
};

TEST_F(AgentPathsTest, IsFileNameRejectsBothSlashes) {
  CMAgent agent;
  EXPECT_TRUE(agent.IsFileName("a.db"));
  EXPECT_TRUE(agent.IsFileName(""));
  EXPECT_FALSE(agent.IsFileName("dir/a.db"));
  EXPECT_FALSE(agent.IsFileName("dir\\a.db"));
}

TEST_F(AgentPathsTest, UniqueStringsDifferAndPutSecondsHigh) {
  CMAgent agent;
  std::set<std::string> seen;
  std::string text;
  for (int i = 0; i < 50; ++i) {
    agent.GenerateUniqueString(text, false);
    seen.insert(text);
    usleep(2);
  }
  EXPECT_GT(seen.size(), 1u);
  unsigned long long value = std::stoull(text);
  EXPECT_NEAR(static_cast<double>(value >> 32), static_cast<double>(time(nullptr)), 5.0);
  EXPECT_LT(value & 0xFFFFFFFFull, 1000000ull);  // microseconds, not seconds * 10^6

  std::string appended = "stem";
  agent.GenerateUniqueString(appended, true);
  EXPECT_EQ(0u, appended.find("stem"));
  EXPECT_GT(appended.size(), 4u);
}

// The digits GenerateUniqueString appends: seconds in the high word.
void ExpectTimeDigits(const std::string& digits) {
  ASSERT_FALSE(digits.empty());
  ASSERT_EQ(std::string::npos, digits.find_first_not_of("0123456789")) << digits;
  EXPECT_NEAR(static_cast<double>(std::stoull(digits) >> 32), static_cast<double>(time(nullptr)),
              5.0);
}

TEST_F(AgentPathsTest, FillUserNameUsesPrefixOrDefaultStem) {
  root_.Write("telephony/general.cfg", "section system\n{\nsystem_prefix = pbx-\n}\n");
  CMAgent agent;
  std::string user = "101";
  agent.FillUserName(user);
  ASSERT_EQ("pbx-101", user.substr(0, 7));
  ExpectTimeDigits(user.substr(7));

  // No name: the fixed stem, followed by the system prefix the load added.
  std::string none;
  agent.FillUserName(none);
  ASSERT_EQ("kaIfArIkNiCkpbx-", none.substr(0, 16));
  ExpectTimeDigits(none.substr(16));
}

TEST_F(AgentPathsTest, RuntimeNamesDefaultAndAreWrittenBack) {
  CMAgent agent;
  ASSERT_TRUE(agent.GetRuntimeDbNames(true));
  // A bare cache name becomes the telephony folder itself; the status
  // file a path inside it.
  EXPECT_EQ(root_.Path("telephony/"), agent.generalData.externalUserCacheDb);
  EXPECT_EQ(root_.Path("telephony/externaluserdb"), agent.generalData.externalUserDb);
  EXPECT_EQ(root_.Path("telephony/reg_status_file"), agent.generalData.regStatusFile);
  std::string saved = root_.Read("telephony/paths.cfg");
  EXPECT_NE(std::string::npos, saved.find("reg_status_file"));
  EXPECT_NE(std::string::npos, saved.find("external_user_cache_db"));
}

}  // namespace
