#include <gtest/gtest.h>

#include <cstdio>
#include <list>
#include <string>
#include <tuple>

#include "platform/base/document_store.h"
#include "tests/platform/blocks/all_accessors.h"
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

auto Values(const GeneralSettingsAccessor& s) {
  return std::make_tuple(s.logEnabled, s.systemPrefix, s.voiceCodecs, s.callerIdIp, s.maxExtensions,
                         s.maxHoldCalls, s.dialTimeout, s.e1t1Interfaces, s.cdrFailedFiles,
                         s.parkTimeout);
}

TEST_F(SettingsAccessorsTest, SettingsSurviveSaveAndReopen) {
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
  auto saved = Values(*s);
  GeneralPaths* paths = GeneralPaths::GetInstance(true);
  paths->cdrMissedDb = "/var/cdr/missed";
  ASSERT_TRUE(paths->Save());
  LogLoginAccessor* login = LogLoginAccessor::GetInstance(true);
  login->loginAudit = 1;
  ASSERT_TRUE(login->Save());
  LogLoginAccessor::CloseInstance(login);
  blocks_testing::CloseAll();

  EXPECT_EQ("G711A,G711U,G729", ReadBack("general.cfg").Find("system")->Get("voice_codecs"));
  s = GeneralSettingsAccessor::GetInstance(false);
  paths = GeneralPaths::GetInstance(false);
  login = LogLoginAccessor::GetInstance(false);
  ASSERT_TRUE(s && paths && login);
  EXPECT_EQ(saved, Values(*s));
  EXPECT_EQ("/var/cdr/missed", paths->cdrMissedDb);
  EXPECT_EQ("", paths->cdrStatedDb);
  EXPECT_EQ(1, login->loginAudit);
  LogLoginAccessor::CloseInstance(login);
  blocks_testing::CloseAll();
}

TEST_F(SettingsAccessorsTest, ReloadStartsFromDefaultsAndSkipsBadNumbers) {
  root_.Write("telephony/general.cfg",
              "section pstn\n{\nfxo_ports = 8\nisdn_interfaces = two\n}\n"
              "section limits\n{\nmax_hold_calls = 70000\n}\n");
  GeneralSettingsAccessor* s = GeneralSettingsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, s);
  EXPECT_EQ(std::make_tuple(8, 1u, 5),
            std::make_tuple(s->fxoPorts, s->isdnInterfaces, static_cast<int>(s->maxHoldCalls)));

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

TEST_F(SettingsAccessorsTest, SaveWritesOnlyWhatChangedHere) {
  root_.Write("telephony/fxs.cfg",
              "section fxs\n{\nring_voltage = 50\nimpedance = 600\n}\n"
              "section vendor\n{\nboard = x2\n}\n");
  FxsDataAccessor* fxs = FxsDataAccessor::GetInstance(false);
  ASSERT_NE(nullptr, fxs);
  EXPECT_EQ(50, fxs->ringVoltage);
  root_.Write("telephony/fxs.cfg",  // another program's save meanwhile
              "section fxs\n{\nring_voltage = 60\nimpedance = 600\nflash_time_max = long\n}\n"
              "section vendor\n{\nboard = x2\n}\n");
  fxs->ringCadence = {400, 200, 400, 2000};
  ASSERT_TRUE(fxs->Save());
  FxsDataAccessor::CloseInstance();

  cfg::Document doc = ReadBack("fxs.cfg");
  EXPECT_EQ("60", doc.Find("fxs")->Get("ring_voltage"));
  EXPECT_EQ("long", doc.Find("fxs")->Get("flash_time_max"));
  EXPECT_EQ("600", doc.Find("fxs")->Get("impedance"));
  EXPECT_EQ("x2", doc.Find("vendor")->Get("board"));
  EXPECT_EQ("400,200,400,2000", doc.Find("fxs")->Get("ring_cadence"));
}

TEST_F(SettingsAccessorsTest, ACodecNameWithACommaIsRefusedWholeSave) {
  const char kFile[] = "section system\n{\nvoice_codecs = G711A,G729\n}\n";
  root_.Write("telephony/general.cfg", kFile);
  GeneralSettingsAccessor* s = GeneralSettingsAccessor::GetInstance(false);
  ASSERT_NE(nullptr, s);
  s->maxHoldCalls = 9;  // a good change in the same save is not written either
  s->voiceCodecs = {"G711U", "G7,23"};
  EXPECT_FALSE(s->Save());
  EXPECT_EQ(kFile, root_.Read("telephony/general.cfg"));
  ASSERT_TRUE(s->Reload());
  EXPECT_EQ((std::list<std::string>{"G711A", "G729"}), s->voiceCodecs);
  EXPECT_EQ(5, s->maxHoldCalls);

  s->extraVoiceCodecs = {"G723", "iLBC"};  // names without a comma are saved
  EXPECT_TRUE(s->Save());
  GeneralSettingsAccessor::CloseInstance();
  EXPECT_EQ("G723,iLBC", ReadBack("general.cfg").Find("system")->Get("extra_voice_codecs"));
}

}  // namespace
