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

TEST(DefaultTonesTest, RowsOfEachKind) {
  ToneTypeReader reader;
  const ToneType& silence = reader.GetDefaultTone(DeviceTone_Silence);
  EXPECT_TRUE(SameTone(ToneType("0,1000", 0, 0, 0), silence));
  EXPECT_TRUE(silence.is_play_wav_on);
  EXPECT_TRUE(SameTone(ToneType("1500,3500", 0, 400, -6), reader.GetDefaultTone(DeviceTone_InsideDial)));
  EXPECT_TRUE(SameTone(ToneType("2500,4500", 0, 440, -6), reader.GetDefaultTone(DeviceTone_OutsideDial)));
  EXPECT_TRUE(SameTone(ToneType("400,100", 1, 620, -6), reader.GetDefaultTone(DeviceTone_Alerting)));
  EXPECT_TRUE(SameTone(ToneType("400,8000", 0, 450, -6), reader.GetDefaultTone(DeviceTone_CallWaiting)));
  EXPECT_TRUE(SameTone(ToneType("300,300", 1, 350, -6), reader.GetDefaultTone(DeviceTone_NewUserInQueue)));
  EXPECT_TRUE(SameTone(ToneType("100,200", 1, 2600, -6), reader.GetDefaultTone(DeviceTone_2600HZ)));
  EXPECT_TRUE(SameTone(ToneType("100,200", 1, 0, 0), reader.GetDefaultTone(DeviceTone_NoTone)));
  EXPECT_EQ(&reader.GetDefaultTone(DeviceTone_Hold), &ToneTypeReader().GetDefaultTone(DeviceTone_Hold));

  // Table-wide properties that catch a shifted or mistyped row.
  std::set<std::string> names;
  int modeOne = 0;
  for (int t = 0; t < kDeviceToneCount; ++t) {
    const ToneType& tone = reader.GetDefaultTone(static_cast<DeviceTone>(t));
    names.insert(DeviceToneNames[t]);
    EXPECT_EQ(0, tone.frequency_2) << DeviceToneNames[t];
    EXPECT_EQ(tone.frequency_1 == 0 ? 0 : -6, tone.tone_level_1) << DeviceToneNames[t];
    modeOne += tone.mode == 1;
  }
  EXPECT_EQ(static_cast<size_t>(kDeviceToneCount), names.size());
  EXPECT_EQ(37, modeOne);
  EXPECT_STREQ("DeviceTone_PSTN_DialTone", DeviceToneNames[DeviceTone_PSTN_DialTone]);
  EXPECT_STREQ("DeviceTone_NoTone", DeviceToneNames[65]);
}

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

TEST_F(ToneFileTest, MissingKeysTakeTheDefaultBadNumbersGiveZero) {
  ToneType tone = InsideDial("frequency_1 = 425\n");
  ToneType expected = reader_.GetDefaultTone(DeviceTone_InsideDial);
  expected.frequency_1 = 425;
  EXPECT_TRUE(SameTone(expected, tone));

  tone = InsideDial("frequency_1 = abc\nfrequency_2 = 350Hz\ntone_level_1 =\nis_play_wav_on = 0\n");
  EXPECT_EQ(0, tone.frequency_1);
  EXPECT_EQ(350, tone.frequency_2);
  EXPECT_EQ(-6, tone.tone_level_1);
  EXPECT_FALSE(tone.is_play_wav_on);
}

TEST_F(ToneFileTest, CadenceFromDurations) {
  EXPECT_EQ("300,200", InsideDial("tone_duration = 300\nsilence_duration = 200\n").pattern);
  EXPECT_EQ("0,200,300", InsideDial("mode = 1\ntone_duration = 300\nsilence_duration = 200\n").pattern);
  EXPECT_EQ("300", InsideDial("mode = 1\ntone_duration = 300\nsilence_duration = 0\n").pattern);
  EXPECT_EQ("100,100,100,600",
            InsideDial("pattern = 100,100,100,600\ntone_duration = 1\nsilence_duration = 2\n").pattern);
  EXPECT_EQ("1500,3500", InsideDial("pattern =\ntone_duration = 1\nsilence_duration = 2\n").pattern);
  EXPECT_EQ("500", InsideDial("silence_duration = 500\n").pattern);
  EXPECT_EQ("1500,3500", InsideDial("tone_duration = 500\n").pattern);
}

TEST_F(ToneFileTest, OnlyKnownSectionsAreRead) {
  root_.Write(kToneFile,
              "section DeviceTone_Unknown\n{\nfrequency_1 = 1\n}\n"
              "section DeviceTone_LineBusy\n{\nfrequency_1 = 425\npattern = 500,500\n}\n"
              "garbage \x01\x02 line\n"
              "section DeviceTone_Hold\n{\nfrequency_1 = 399\n");  // never closed
  ToneType tones[kDeviceToneCount];
  ASSERT_TRUE(reader_.Load(tones));
  EXPECT_EQ(425, tones[DeviceTone_LineBusy].frequency_1);
  EXPECT_EQ("500,500", tones[DeviceTone_LineBusy].pattern);
  EXPECT_EQ(399, tones[DeviceTone_Hold].frequency_1);
  EXPECT_TRUE(SameTone(reader_.GetDefaultTone(DeviceTone_Reorder), tones[DeviceTone_Reorder]));
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

TEST_F(ToneFileTest, GarbageFileGivesTheDefaults) {
  static const char kGarbage[] = "\x7f" "ELF\0\0\x01{{}}=\n=#\n}\nsection\n{\nsection DeviceTone_Zip";
  root_.Write(kToneFile, std::string(kGarbage, sizeof(kGarbage) - 1));
  ToneType tones[kDeviceToneCount];
  ASSERT_TRUE(reader_.Load(tones));
  for (int t = 0; t < kDeviceToneCount; ++t)
    EXPECT_TRUE(SameTone(reader_.GetDefaultTone(static_cast<DeviceTone>(t)), tones[t])) << t;

  ToneType copy("1,1", 1, 1, 1);
  ToneType& same = copy;
  copy = same;
  EXPECT_EQ("1,1", copy.pattern);
}

}  // namespace
