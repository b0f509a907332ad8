#include "cmcfg/tone_type_reader.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/support/temp_root.h"

namespace {

const char kToneFile[] = "telephony/regional/tonetypes.cfg";

bool SameTone(const ToneType& a, const ToneType& b) {
  return a.pattern == b.pattern && a.mode == b.mode && a.frequency_1 == b.frequency_1 &&
         a.frequency_2 == b.frequency_2 && a.tone_level_1 == b.tone_level_1 &&
         a.tone_level_2 == b.tone_level_2 && a.is_play_wav_on == b.is_play_wav_on;
}

// What the reader makes of each key is pinned by the tool's root cases;
// here, the reader's own calls.
class ToneFileTest : public ::testing::Test {
 protected:
  // The InsideDial tone read from a file holding `body` as its section.
  ToneType InsideDial(const std::string& body) {
    root_.Write(kToneFile, "section DeviceTone_InsideDial\n{\n" + body + "}\n");
    ToneType tone;
    EXPECT_TRUE(reader_.Load(DeviceTone_InsideDial, tone));
    return tone;
  }

  testing_support::TempRoot root_;
  ToneTypeReader reader_;
};

TEST_F(ToneFileTest, NoFileGivesTheDefaults) {
  ToneType tones[kDeviceToneCount];
  tones[DeviceTone_Hold].pattern = "stale";
  ASSERT_TRUE(reader_.Load(tones));
  for (int t = 0; t < kDeviceToneCount; ++t)
    EXPECT_TRUE(SameTone(reader_.GetDefaultTone(static_cast<DeviceTone>(t)), tones[t])) << t;
}

TEST_F(ToneFileTest, EachLoadReadsTheFileAfresh) {
  EXPECT_EQ(425, InsideDial("frequency_1 = 425\n").frequency_1);
  EXPECT_EQ(350, InsideDial("frequency_1 = 350\n").frequency_1);

  // A record that is loaded again is overwritten whole, not merged.
  ToneType tone = InsideDial("frequency_2 = 100\nis_play_wav_on = 0\npattern = 1,2\n");
  root_.Write(kToneFile, "# nothing for the dial tone\n");
  ASSERT_TRUE(reader_.Load(DeviceTone_InsideDial, tone));
  EXPECT_TRUE(SameTone(reader_.GetDefaultTone(DeviceTone_InsideDial), tone));

  // Alerting is a mode-1 tone; a bad mode reads as 0 and the cadence is then
  // composed as for mode 0.
  root_.Write(kToneFile, "section DeviceTone_Alerting\n{\nmode = x\ntone_duration = 300\n"
                         "silence_duration = 200\n}\n");
  ASSERT_TRUE(reader_.Load(DeviceTone_Alerting, tone));
  EXPECT_EQ(0u, tone.mode);
  EXPECT_EQ("300,200", tone.pattern);
  EXPECT_EQ(1u, InsideDial("mode = 1junk\n").mode);
}

}  // namespace
