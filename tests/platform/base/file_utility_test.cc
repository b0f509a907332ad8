#include "platform/base/file_utility.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/base/config_root.h"
#include "platform/base/smart_buffer.h"
#include "tests/support/temp_root.h"

namespace {

class FileUtilityTest : public ::testing::Test {
 protected:
  testing_support::TempRoot root_;
};

TEST_F(FileUtilityTest, AdjustPathForUnixTurnsBackslashesAndFoldsSlashes) {
  const char* cases[][2] = {
      {"C:\\orba\\\\telephony\\x.cfg", "C:/orba/telephony/x.cfg"},
      {"//etc///orba-conf/", "/etc/orba-conf/"},
      {"", ""},
      {"plain", "plain"},
  };
  for (const auto& c : cases) {
    std::string path = c[0];
    FileUtility::AdjustPathForUnix(path);
    EXPECT_EQ(c[1], path);
  }
}

TEST_F(FileUtilityTest, ExistenceChecksTellFilesFromFolders) {
  root_.Write("telephony/f.cfg", "x");
  EXPECT_TRUE(FileUtility::IsFileExist(root_.Path("telephony/f.cfg").c_str()));
  EXPECT_FALSE(FileUtility::IsDirExist(root_.Path("telephony/f.cfg").c_str()));
  EXPECT_TRUE(FileUtility::IsDirExist(root_.Path("telephony").c_str()));
  EXPECT_FALSE(FileUtility::IsFileExist(root_.Path("telephony").c_str()));
  EXPECT_FALSE(FileUtility::IsFileExist(root_.Path("nothing").c_str()));
  EXPECT_FALSE(FileUtility::IsFileExist(nullptr));
  EXPECT_FALSE(FileUtility::IsDirExist(""));
}

TEST_F(FileUtilityTest, ConfigRootIsReadAfreshWithDefaultWhenUnset) {
  EXPECT_EQ(root_.Path("telephony/fax.cfg"), cfg::TelephonyPath("fax.cfg"));
  setenv("ORBA_PATH", "/elsewhere", 1);
  EXPECT_EQ("/elsewheretelephony/x", cfg::TelephonyPath("x"));
  unsetenv("ORBA_PATH");
  EXPECT_EQ("/etc/orba-conf/", cfg::ConfigRoot());
}

TEST_F(FileUtilityTest, SmartBufferStartsAsEmptyString) {
  SmartBuffer buffer;
  EXPECT_EQ(SmartBuffer::kDefaultSize, buffer.GetSize());
  EXPECT_EQ(root_.path(), cfg::ConfigRoot() + buffer.GetData());
  SmartBuffer none(0);
  EXPECT_STREQ("", none.GetData());
}

}  // namespace
