#include <gtest/gtest.h>

#include <vector>

#include "cmcfg/line_records.h"
#include "cmcfg/system_records.h"
#include "platform/base/thread_mutex.h"
#include "platform/extension/ext_params.h"
#include "tests/support/temp_root.h"

namespace {

TEST(LineSettingsTest, ClearUnbindsOnlyTheLocalPort) {
  LineSettings line;
  EXPECT_EQ(INACTIVE_PARTY, line.lineId);
  EXPECT_EQ(INACTIVE_PARTY, line.gatewayId);
  EXPECT_EQ(1, line.lineFlag);
  EXPECT_EQ(INACTIVE_PARTY, line.remote.lineId);

  line.lineId = 3;
  line.gatewayId = 1;
  line.presentationId = 7;
  line.lineFlag = 4;
  line.callQueue.size = 10;
  line.remote.isRemote = 1;
  line.remote.lineId = 2;
  line.voiceCodecs.push_back(CodecInfo());
  line.Clear(true);
  EXPECT_EQ(INACTIVE_PARTY, line.lineId);
  EXPECT_EQ(INACTIVE_PARTY, line.gatewayId);
  EXPECT_EQ(1, line.lineFlag);
  EXPECT_EQ(7u, line.presentationId);
  EXPECT_EQ(10, line.callQueue.size);
  EXPECT_EQ(1, line.remote.isRemote);
  EXPECT_EQ(1u, line.voiceCodecs.size());

  line.Clear(false);
  EXPECT_EQ(0, line.callQueue.size);
  EXPECT_EQ(1, line.remote.isRemote);

  line.callQueue.size = 10;
  line.Reset(true);
  EXPECT_EQ(10, line.callQueue.size);
  EXPECT_EQ(0, line.remote.isRemote);
  EXPECT_EQ(INACTIVE_PARTY, line.remote.lineId);
}

TEST(FaxDataTest, ToneDetectionForcingWinsOverFaxOff) {
  FaxData fax;
  EXPECT_TRUE(fax.IsStartFaxToneDetection(true, true));
  EXPECT_FALSE(fax.IsStartFaxToneDetection(false, true));
  EXPECT_FALSE(fax.IsStartFaxToneDetection(true, false));
  fax.toneDetectionForced = 1;
  EXPECT_TRUE(fax.IsStartFaxToneDetection(true, false));

  ExtServicesParams services;
  services.faxModeB = 1;
  services.faxToneDetection = 1;
  fax.faxCodecs.push_back(FaxCodecInfo());
  fax = services;
  EXPECT_EQ(1u, fax.faxCodecs.size());  // lists are not the block's
  EXPECT_TRUE(fax.IsStartFaxToneDetection(true, false));
  EXPECT_TRUE(fax.IsStartFaxToneDetection(false, false));
}

std::vector<unsigned long> DefaultCadenceWithFxs(const char* fxsCadence) {
  testing_support::TempRoot root;
  if (fxsCadence != nullptr) {
    root.Write("telephony/fxs.cfg", std::string("section fxs\n{\nring_cadence = ") + fxsCadence +
                                        "\n}\n");
  }
  _gDefRingPattern.Init();
  MutexLock lock(_gDefRingPattern.mutex);
  return _gDefRingPattern.cadence;
}

TEST(DefaultRingpatternTest, ShortFxsCadenceFallsBack) {
  const std::vector<unsigned long> fallback = {1000, 2500};
  EXPECT_EQ(fallback, DefaultCadenceWithFxs("800"));
  EXPECT_EQ((std::vector<unsigned long>{500, 500, 500, 2000}),
            DefaultCadenceWithFxs("500,500,500,2000"));
  EXPECT_EQ(fallback, DefaultCadenceWithFxs(nullptr));
}

TEST(PasswordDataTest, DigitsAndStarBecomeKeys) {
  ExtPersonalInfoParams params;
  params.password = "12*#9a";
  params.passwordPolicy = 1;
  PasswordData password;
  password.keys = {1, 2, 3};
  password = params;
  EXPECT_EQ((std::vector<KeypadButton>{257, 258, 298, 265}), password.keys);
  EXPECT_EQ(1, password.setting);
}

}  // namespace
