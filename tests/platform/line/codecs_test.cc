#include "platform/line/codecs.h"

#include <gtest/gtest.h>

#include "tests/support/temp_root.h"

namespace {

TEST(CodecTable, NamesMapToDistinctDspCodecs) {
  EXPECT_NE(GetDspCodecByName("G729"), GetDspCodecByName("G729a"));
  EXPECT_EQ(GetRtpCodecByDspCodec(GetDspCodecByName("G729")),
            GetRtpCodecByDspCodec(GetDspCodecByName("G729a")));
  EXPECT_EQ(8, GetRtpCodecByDspCodec(GetDspCodecByName("G711A")));
  EXPECT_EQ(0, GetRtpCodecByDspCodec(GetDspCodecByName("G711U")));
  EXPECT_EQ(16000, GetSamplingRate(GetDspCodecByName("G722")));
  EXPECT_EQ(-1, GetDspCodecByName("T38"));    // a fax relay encoding
  EXPECT_EQ(-1, GetDspCodecByName("g711a"));  // names are exact
  EXPECT_EQ(0, GetRtpCodecByDspCodec(-1));
  EXPECT_EQ(0, GetSamplingRate(999));
}

TEST(EncodingManager, ReadsElevenValuesPerEncoding) {
  testing_support::TempRoot root;
  root.Write("fax.cfg",
             "section T38\n{\nversion = 3\nmax_bit_rate = 14400\ntranscoding_jbig = 1\n"
             "max_buffer = junk\n}\nsection T38-ECM\n{\nerror_correction = 2\n}\n");
  EncodingManager encodings("", root.Path("fax.cfg"), false);
  const FaxEncoding* t38 = encodings.GetFaxEncoding("T38", true);
  ASSERT_NE(nullptr, t38);
  EXPECT_EQ(3u, t38->values[0]);
  EXPECT_EQ(14400u, t38->values[1]);
  EXPECT_EQ(0u, t38->values[3]);  // not a number
  EXPECT_EQ(1u, t38->values[10]);
  EXPECT_EQ(nullptr, encodings.GetFaxEncoding("t38", true));
  EXPECT_EQ(t38, encodings.GetFaxEncoding("t38", false));
  EXPECT_EQ(2u, encodings.GetFaxEncoding("T38-ECM", true)->values[5]);

  EncodingManager none("", root.Path("missing.cfg"), true);
  EXPECT_EQ(nullptr, none.GetFaxEncoding("T38", true));
}

}  // namespace
