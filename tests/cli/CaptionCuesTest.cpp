#include "cli/CaptionCues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace korvane;
using namespace korvane::cli;

namespace {

using Cues = std::vector<CaptionCue>;

Cues grouped(std::vector<SpeechSegment> words, std::string language = "en-US") {
    return groupIntoCues({std::move(language), {}, std::move(words)});
}

std::vector<SpeechSegment> evenly(int count, const std::string& text, double length) {
    std::vector<SpeechSegment> words;
    for (int i = 0; i < count; ++i)
        words.emplace_back(text, i * length, (i + 1) * length);
    return words;
}

}  // namespace

TEST(CaptionCues, aFewWordsShareACue) {
    EXPECT_EQ(grouped({{"So", 0.3, 0.5}, {"we", 0.5, 0.7}, {"go", 0.8, 1.2}}),
              (Cues{{300, 1200, "So we go"}}));
}

TEST(CaptionCues, aPauseBeginsANewCue) {
    EXPECT_EQ(grouped({{"So", 0.0, 0.5}, {"then", 1.1, 1.5}}), (Cues{{0, 500, "So"}, {1100, 1500, "then"}}));
    EXPECT_EQ(grouped({{"So", 0.0, 0.5}, {"then", 1.099, 1.5}}).size(), 1u);
}

TEST(CaptionCues, theEndOfASentenceEndsTheCue) {
    EXPECT_EQ(grouped({{"Yes.", 0.0, 0.5}, {"No", 0.5, 1.0}}).size(), 2u);
    EXPECT_EQ(grouped({{"是。", 0.0, 0.5}, {"不", 0.5, 1.0}}, "zh-CN").size(), 2u);
}

TEST(CaptionCues, aCueHoldsSevenWordsAtMost) {
    const auto cues = grouped(evenly(15, "a", 0.1));
    ASSERT_EQ(cues.size(), 3u);
    EXPECT_EQ(cues[0].text, "a a a a a a a");
    EXPECT_EQ(cues[2].text, "a");
}

TEST(CaptionCues, aCueHoldsFortyTwoCharactersAtMost) {
    for (const auto& cue : grouped(evenly(20, "größere", 0.1)))
        EXPECT_EQ(cue.text, "größere größere größere größere größere");
    EXPECT_EQ(grouped({{std::string(60, 'x'), 0.0, 1.0}}).size(), 1u);
}

TEST(CaptionCues, aCueLastsFiveSecondsAtMost) {
    const auto cues = grouped(evenly(6, "a", 1.25));
    ASSERT_EQ(cues.size(), 2u);
    EXPECT_EQ(cues[0].endMs, 5000);
}

TEST(CaptionCues, chineseAndJapaneseStandWithoutBlanks) {
    EXPECT_EQ(grouped({{"日本", 0.0, 0.5}, {"語", 0.5, 1.0}}, "ja-JP")[0].text, "日本語");
    EXPECT_EQ(grouped({{"你", 0.0, 0.5}, {"好", 0.5, 1.0}}, "zh-CN")[0].text, "你好");
    EXPECT_EQ(
        grouped({{"用", 0.0, 0.5}, {"iPhone", 0.5, 1.0}, {"Pro", 1.0, 1.5}, {"吗", 1.5, 2.0}}, "zh-CN")[0]
            .text,
        "用iPhone Pro吗");
}

TEST(CaptionCues, noCueIsEmptyOrReachesIntoTheNext) {
    const auto cues = grouped({{"a.", 0.0, 3.0}, {"b.", 1.0, 1.0}, {"c.", 0.5, 4.0}, {"d", 4.0, 4.0}});
    ASSERT_EQ(cues.size(), 4u);
    for (std::size_t i = 0; i < cues.size(); ++i) {
        EXPECT_LT(cues[i].startMs, cues[i].endMs);
        if (i > 0) {
            EXPECT_LE(cues[i - 1].endMs, cues[i].startMs);
        }
    }
}

TEST(CaptionCues, wordsWithoutTextOrUsableTimeAreLeftOut) {
    const double nan = std::nan("");
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(grouped({{"", 0, 1},
                         {" \n", 0, 1},
                         {"a", nan, 1},
                         {"b", 0, infinite},
                         {"c", 2, 1},
                         {"d", -2, -1},
                         {"e", 1e300, 1e301}})
                    .empty());
}

TEST(CaptionCues, aWordThatBeginsBeforeTheVideoBeginsWithIt) {
    EXPECT_EQ(grouped({{"a", -0.5, 0.5}}), (Cues{{0, 500, "a"}}));
}

TEST(CaptionCues, lineBreaksWithinAWordBecomeBlanks) {
    EXPECT_EQ(tidyWord(" a\r\n\tb "), "a b");
    EXPECT_EQ(tidyWord("\n"), "");
}
