#include <gtest/gtest.h>

#include <cstdio>

#include "platform/base/file_system.h"
#include "platform/blocks/fxs_data_accessor.h"
#include "platform/blocks/general_paths.h"
#include "platform/blocks/general_settings_accessor.h"
#include "platform/blocks/log_login_accessor.h"
#include "tests/support/temp_root.h"

namespace {

using testing_support::TempRoot;

class SettingsAccessorsTest : public ::testing::Test {
 protected:
  SettingsAccessorsTest() { root_.MakeDir("telephony"); }
  cfg::Document ReadBack(const std::string& name) {
    cfg::Document doc;
    EXPECT_TRUE(cfg::LoadDocument(root_.Path("telephony/" + name), &doc).ok());
    return doc;
  }
  TempRoot root_;
};

TEST_F(SettingsAccessorsTest, GeneralSettingsSurviveSaveAndReopen) {
  GeneralSettingsAccessor* s = GeneralSettingsAccessor::GetInstance(true);
  s->logEnabled = 1;
  s->systemPrefix = "pbx-";
  s->voiceCodecs = {"G711A", "G711U", "G729"};
  s->callerIdIp = "%u <%h>";
  s->maxExtensions = 4000000000u;
  s->maxHoldCalls = 65535;
  s->dialTimeout = -3;
  s->e1t1Interfaces = 4;
  s->cdrFailedFiles = 99;
  ASSERT_TRUE(s->Save());
  GeneralSettingsAccessor::CloseInstance();

  cfg::Document doc = ReadBack("general.cfg");
  EXPECT_EQ("G711A,G711U,G729", doc.Find("system")->Get("voice_codecs"));
  EXPECT_EQ("1", doc.Find("logging")->Get("log_enabled"));

  s = GeneralSettingsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, s);
  EXPECT_EQ(1, s->logEnabled);
  EXPECT_EQ("pbx-", s->systemPrefix);
  EXPECT_EQ((std::list<std::string>{"G711A", "G711U", "G729"}), s->voiceCodecs);
  EXPECT_EQ("%u <%h>", s->callerIdIp);
  EXPECT_EQ(4000000000u, s->maxExtensions);
  EXPECT_EQ(65535, s->maxHoldCalls);
  EXPECT_EQ(-3, s->dialTimeout);
  EXPECT_EQ(4u, s->e1t1Interfaces);
  EXPECT_EQ(99u, s->cdrFailedFiles);
  EXPECT_EQ(180, s->parkTimeout);  // untouched values keep their defaults
  GeneralSettingsAccessor::CloseInstance();
}

TEST_F(SettingsAccessorsTest, ReloadStartsFromDefaultsAndSkipsBadNumbers) {
  root_.Write("telephony/general.cfg",
              "section pstn\n{\nfxo_ports = 8\nisdn_interfaces = two\n}\n"
              "section limits\n{\nmax_hold_calls = 70000\n}\n");
  GeneralSettingsAccessor* s = GeneralSettingsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, s);
  EXPECT_EQ(8, s->fxoPorts);
  EXPECT_EQ(1u, s->isdnInterfaces);  // "two" keeps the default
  EXPECT_EQ(5, s->maxHoldCalls);     // past 16 bits keeps the default

  root_.Write("telephony/general.cfg", "section pstn\n{\n}\n");
  s->fxoPorts = 30;
  ASSERT_TRUE(s->Reload());
  EXPECT_EQ(2, s->fxoPorts);  // the key is gone: default again

  ASSERT_EQ(0, std::remove(root_.Path("telephony/general.cfg").c_str()));
  s->fxoPorts = 30;
  EXPECT_FALSE(s->Reload());
  EXPECT_EQ(30, s->fxoPorts);  // a failed reload changes nothing
  GeneralSettingsAccessor::CloseInstance();
}

TEST_F(SettingsAccessorsTest, SaveKeepsForeignKeysAndSections) {
  root_.Write("telephony/fxs.cfg",
              "section fxs\n{\nring_voltage = 50\nimpedance = 600\n}\n"
              "section vendor\n{\nboard = x2\n}\n");
  FxsDataAccessor* fxs = FxsDataAccessor::GetInstance(false);
  ASSERT_NE(nullptr, fxs);
  EXPECT_EQ(50, fxs->ringVoltage);
  EXPECT_EQ((std::vector<unsigned long>{1000, 2500}), fxs->ringCadence);
  fxs->ringCadence = {400, 200, 400, 2000};
  ASSERT_TRUE(fxs->Save());
  FxsDataAccessor::CloseInstance();

  cfg::Document doc = ReadBack("fxs.cfg");
  EXPECT_EQ("600", doc.Find("fxs")->Get("impedance"));
  EXPECT_EQ("x2", doc.Find("vendor")->Get("board"));
  EXPECT_EQ("400,200,400,2000", doc.Find("fxs")->Get("ring_cadence"));
}

TEST_F(SettingsAccessorsTest, PathsAndLoginFlagsRoundTrip) {
  GeneralPaths* paths = GeneralPaths::GetInstance(true);
  EXPECT_EQ("", paths->regStatusFile);
  paths->regStatusFile = "reg_status_file";
  paths->cdrMissedDb = "/var/cdr/missed";
  ASSERT_TRUE(paths->Save());
  LogLoginAccessor* login = LogLoginAccessor::GetInstance(true);
  login->loginTrace = 1;
  login->loginAudit = 1;
  ASSERT_TRUE(login->Save());
  LogLoginAccessor::CloseInstance(login);
  GeneralPaths::CloseInstance();

  paths = GeneralPaths::GetInstance(false);
  ASSERT_NE(nullptr, paths);
  EXPECT_EQ("reg_status_file", paths->regStatusFile);
  EXPECT_EQ("/var/cdr/missed", paths->cdrMissedDb);
  EXPECT_EQ("", paths->cdrStatedDb);
  GeneralPaths::CloseInstance();
  login = LogLoginAccessor::GetInstance(false);
  ASSERT_NE(nullptr, login);
  EXPECT_EQ(1, login->loginAudit);
  LogLoginAccessor::CloseInstance(login);
}

TEST_F(SettingsAccessorsTest, SaveFailsWithoutTheTelephonyFolder) {
  TempRoot bare;  // no "telephony/" in this root
  FxsDataAccessor* fxs = FxsDataAccessor::GetInstance(true);
  ASSERT_NE(nullptr, fxs);
  EXPECT_FALSE(fxs->Save());
  FxsDataAccessor::CloseInstance();
}

}  // namespace
