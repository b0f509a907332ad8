#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "tests/platform/blocks/all_accessors.h"
#include "tests/support/temp_root.h"

namespace {

using blocks_testing::kFlaggedCount;
using blocks_testing::OpenAndCloseAll;
using testing_support::TempRoot;

const char* const kFlaggedFiles[] = {"general.cfg",      "paths.cfg",    "gateways.cfg",
                                     "fxs.cfg",          "tos.cfg",      "authorized_phones.cfg",
                                     "ringpatterns.cfg", "log_login.cfg"};

class BadFilesTest : public ::testing::Test {
 protected:
  BadFilesTest() { root_.MakeDir("telephony"); }
  void WriteAll(const std::string& contents) {
    for (const char* name : kFlaggedFiles) root_.Write(std::string("telephony/") + name, contents);
    root_.Write("telephony/sysmessages.cfg", contents);
  }
  TempRoot root_;
};

TEST_F(BadFilesTest, MissingOrFolderFilesGiveDefaultsOnlyWhenAskedTo) {
  EXPECT_EQ(0, OpenAndCloseAll(false));
  EXPECT_EQ(kFlaggedCount, OpenAndCloseAll(true));
  for (const char* name : kFlaggedFiles) root_.MakeDir(std::string("telephony/") + name);
  root_.MakeDir("telephony/sysmessages.cfg");
  EXPECT_EQ(0, OpenAndCloseAll(false));
  EXPECT_EQ(nullptr, SysMessageAccessor::GetInstance());
  SysMessageAccessor::CloseInstance();  // harmless without an instance

  GatewayAccessor* gateways = GatewayAccessor::GetInstance(true);
  EXPECT_EQ(0u, gateways->GetBlockCount());
  EXPECT_FALSE(gateways->AddBlock(gateways->CreateBlock()));  // never replaces the folder
  GatewayAccessor::CloseInstance();
  FxsDataAccessor* fxs = FxsDataAccessor::GetInstance(true);
  EXPECT_EQ(45, fxs->ringVoltage);
  EXPECT_FALSE(fxs->Save());
  FxsDataAccessor::CloseInstance();
}

TEST_F(BadFilesTest, FilesWithoutReadPermissionAreUnreadable) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads files whatever their mode";
  WriteAll("section 1\n{\nname = x\n}\n");
  for (const char* name : kFlaggedFiles)
    ASSERT_EQ(0, chmod(root_.Path(std::string("telephony/") + name).c_str(), 0));
  EXPECT_EQ(0, OpenAndCloseAll(false));
  EXPECT_EQ(kFlaggedCount, OpenAndCloseAll(true));
}

TEST_F(BadFilesTest, GarbageGivesAnInstanceWithWhatParses) {
  const char kGarbage[] = "\x01\x02section\0}{{=\xff\xfe\n= = =\n}}}\nsection\n";
  WriteAll(std::string(kGarbage, sizeof(kGarbage) - 1));
  EXPECT_EQ(kFlaggedCount, OpenAndCloseAll(false));
  SysMessageAccessor* messages = SysMessageAccessor::GetInstance();
  ASSERT_NE(nullptr, messages);
  EXPECT_EQ(0u, messages->GetSysMessageCount());
  SysMessageAccessor::CloseInstance();
}

TEST_F(BadFilesTest, MissingCloserAndHugeLineStillReadTheRest) {
  root_.Write("telephony/general.cfg", "section logging\n{\nlog_enabled = 1\n");
  root_.Write("telephony/fxs.cfg", "section fxs\n{\nring_voltage = " + std::string(1 << 20, '7') +
                                       "\nring_frequency = 50\nring_cadence = 1000,2500" +
                                       std::string(1 << 20, '0') + "\n}\n");
  root_.Write("telephony/ringpatterns.cfg", "section 1\n{\nname = " + std::string(1 << 20, 'n') +
                                                "\n}\nsection 2\n{\nname = ok\n");
  GeneralSettingsAccessor* settings = GeneralSettingsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, settings);
  EXPECT_EQ(1, settings->logEnabled);
  GeneralSettingsAccessor::CloseInstance();

  FxsDataAccessor* fxs = FxsDataAccessor::GetInstance(false);
  ASSERT_NE(nullptr, fxs);
  EXPECT_EQ(45, fxs->ringVoltage);
  EXPECT_EQ(50, fxs->ringFrequency);
  EXPECT_EQ((std::vector<unsigned long>{1000, 2500}), fxs->ringCadence);
  FxsDataAccessor::CloseInstance();

  RingPatternParams* patterns = RingPatternParams::GetInstance(false);
  ASSERT_NE(nullptr, patterns);
  EXPECT_EQ(2u, patterns->GetBlockCount());
  EXPECT_NE(nullptr, patterns->GetBlockByName("ok"));
  RingPatternParams::CloseInstance();
}

}  // namespace
