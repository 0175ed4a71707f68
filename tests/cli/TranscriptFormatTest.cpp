#include "cli/TranscriptFormat.h"

#include <gtest/gtest.h>

using namespace korvane::cli;

namespace {

const Transcript talk{"en-US",
                      3700.0,
                      {{"So", 0.31, 0.52},
                       {"we", 0.52, 0.7},
                       {"<go>", 0.75, 1.1},
                       {"Tom", 2.0, 2.4},
                       {"&", 2.4, 2.5},
                       {"Ann", 3661.0, 3661.9996}}};

}  // namespace

TEST(TranscriptFormat, textHasALineForEachStretchBetweenPauses) {
    EXPECT_EQ(formatText(talk), "So we <go>\nTom &\nAnn\n");
    EXPECT_EQ(formatText({}), "");
    EXPECT_EQ(formatText({"ja-JP", {}, {{"日本", 0, 1}, {"語", 1, 2}}}), "日本語\n");
    EXPECT_EQ(formatText({"ja-JP", {}, {{"New", 0, 1}, {"York", 1, 2}, {"へ", 2, 3}}}), "New Yorkへ\n");
}

TEST(TranscriptFormat, subRipNumbersItsCuesAndUsesCommas) {
    EXPECT_EQ(formatSrt(talk),
              "1\n00:00:00,310 --> 00:00:01,100\nSo we <go>\n\n"
              "2\n00:00:02,000 --> 00:00:02,500\nTom &\n\n"
              "3\n01:01:01,000 --> 01:01:02,000\nAnn\n");
    EXPECT_EQ(formatSrt({}), "");
}

TEST(TranscriptFormat, webVttHasItsHeaderUsesDotsAndEscapes) {
    EXPECT_EQ(formatVtt(talk),
              "WEBVTT\n\n00:00:00.310 --> 00:00:01.100\nSo we &lt;go&gt;\n\n"
              "00:00:02.000 --> 00:00:02.500\nTom &amp;\n\n"
              "01:01:01.000 --> 01:01:02.000\nAnn\n");
    EXPECT_EQ(formatVtt({}), "WEBVTT\n");
}

TEST(TranscriptFormat, formatsAreKnownByNameAndEnding) {
    EXPECT_EQ(transcriptFormatNamed("WebVTT"), TranscriptFormat::vtt);
    EXPECT_EQ(transcriptFormatNamed("txt"), TranscriptFormat::text);
    EXPECT_FALSE(transcriptFormatNamed("mp4"));
    EXPECT_EQ(transcriptFormatOf("a/b.JSON"), TranscriptFormat::json);
    EXPECT_FALSE(transcriptFormatOf("json"));
    EXPECT_FALSE(transcriptFormatOf(".srt"));
}
