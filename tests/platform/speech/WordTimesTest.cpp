#include "platform/speech/WordTimes.h"

#include <gtest/gtest.h>

#include "tests/platform/speech/SyntheticSound.h"

namespace korvane {
namespace {

using sound::rateHz;

std::int64_t at(double seconds) {
    return std::llround(seconds * rateHz);
}

/// A stretch of 4 s from second 10 of a recording on, with voices at the given seconds of the stretch.
SpeechStretch stretchWith(std::initializer_list<std::pair<double, double>> voices, double floorDb = -70.0) {
    SpeechStretch stretch;
    stretch.begin = at(10.0);
    stretch.samples = sound::background(4.0, floorDb);
    for (const auto& [from, to] : voices) {
        for (auto i = at(from); i < at(to); ++i)
            stretch.samples[static_cast<std::size_t>(i)] +=
                static_cast<float>(0.1 * std::sin(0.2 * static_cast<double>(i)));
    }
    stretch.floorDb = floorDb;
    return stretch;
}

TimedWord word(const char* text, double from, double to) {
    return {text, at(10.0 + from), at(10.0 + to)};
}

void expectNear(const TimedWord& found, double from, double to) {
    EXPECT_NEAR(static_cast<double>(found.begin) / rateHz - 10.0, from, 0.0101) << found.text;
    EXPECT_NEAR(static_cast<double>(found.end) / rateHz - 10.0, to, 0.0101) << found.text;
}

TEST(WordTimes, noWordsStayNoWords) {
    EXPECT_TRUE(refineWordTimes({}, stretchWith({}), rateHz, 0).empty());
}

TEST(WordTimes, anIsolatedWordGetsTheEdgesThatAreHeard) {
    const auto stretch = stretchWith({{1.0, 1.5}});
    for (const double early : {-0.04, 0.0, 0.05, 0.14}) {
        for (const double late : {-0.05, 0.0, 0.05, 0.14}) {
            const auto found = refineWordTimes({word("so", 1.0 - early, 1.5 + late)}, stretch, rateHz, 0);
            ASSERT_EQ(found.size(), 1U);
            expectNear(found[0], 1.0, 1.5);
        }
    }
}

TEST(WordTimes, edgesInConnectedSpeechMoveByEightMillisecondsOnly) {
    const auto stretch = stretchWith({{1.0, 2.0}});
    const auto found = refineWordTimes({word("a", 1.0, 1.43), word("b", 1.43, 2.0)}, stretch, rateHz, 0);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].end, at(11.438));
    EXPECT_EQ(found[1].begin, at(11.438));
}

TEST(WordTimes, aGapShorterThanEightyMillisecondsLeavesTheEdges) {
    const auto stretch = stretchWith({{1.0, 1.4}, {1.5, 2.0}});
    const auto narrow = refineWordTimes({word("a", 1.0, 1.43), word("b", 1.50, 2.0)}, stretch, rateHz, 0);
    EXPECT_EQ(narrow[0].end, at(11.438));
    const auto wide = refineWordTimes({word("a", 1.0, 1.42), word("b", 1.51, 2.0)}, stretch, rateHz, 0);
    expectNear(wide[0], 1.0, 1.4);
    expectNear(wide[1], 1.5, 2.0);
}

TEST(WordTimes, twoEdgesMovingTowardsEachOtherNeverCross) {
    // The recogniser missed the middle of one sound that goes on.
    const auto stretch = stretchWith({{1.0, 2.0}});
    const auto found = refineWordTimes({word("a", 1.0, 1.40), word("b", 1.49, 2.0)}, stretch, rateHz, 0);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_LE(found[0].end, found[1].begin);
}

TEST(WordTimes, theSearchEndsSixtyOutwardsAndAHundredAndSixtyInwards) {
    const auto stretch = stretchWith({{1.0, 2.0}});
    const auto short1 = refineWordTimes({word("a", 1.2, 1.8)}, stretch, rateHz, 0);
    expectNear(short1[0], 1.2 + 0.008 - 0.06, 1.8 + 0.008 + 0.06);
    // Nothing is heard within reach: the edge stays where the recogniser put it.
    const auto far = refineWordTimes({word("a", 0.5, 2.0)}, stretch, rateHz, 0);
    EXPECT_EQ(far[0].begin, at(10.508));
}

TEST(WordTimes, noiseIsNotTakenForTheWord) {
    const auto stretch = stretchWith({{1.0, 1.5}}, -50.0);
    const auto found = refineWordTimes({word("a", 0.95, 1.58)}, stretch, rateHz, 0);
    expectNear(found[0], 1.0, 1.5);
}

TEST(WordTimes, anEdgeAtACutStaysAndAnEdgeAtAPauseMoves) {
    auto stretch = stretchWith({{0.1, 3.9}});
    stretch.beginsInSpeech = true;
    stretch.endsInSpeech = true;
    const auto cut = refineWordTimes({word("a", 0.02, 3.95)}, stretch, rateHz, 0);
    EXPECT_EQ(cut[0].begin, at(10.028));
    stretch.beginsInSpeech = false;
    stretch.endsInSpeech = false;
    const auto paused = refineWordTimes({word("a", 0.02, 3.95)}, stretch, rateHz, 0);
    expectNear(paused[0], 0.1, 3.9);
}

TEST(WordTimes, nothingReachesBeyondTheStretchOrBeforeTheWordBefore) {
    const auto stretch = stretchWith({{0.0, 4.0}});
    const auto found = refineWordTimes({word("a", 0.0, 4.0)}, stretch, rateHz, at(10.3));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].begin, at(10.3));
    EXPECT_EQ(found[0].end, stretch.end());
}

TEST(WordTimes, overlappingAndEmptyWordsComeOutApartAndInOrder) {
    const auto stretch = stretchWith({{0.0, 4.0}});
    const auto found = refineWordTimes(
        {word("a", 1.0, 1.5), word("b", 1.4, 1.45), word("c", 1.45, 2.0), word("d", 2.0, 2.0)}, stretch,
        rateHz, 0);
    ASSERT_EQ(found.size(), 3U) << "the one inside another has no room";
    EXPECT_EQ(found[0].text + found[1].text + found[2].text, "acd");
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_LT(found[i].begin, found[i].end);
        if (i > 0) {
            EXPECT_LE(found[i - 1].end, found[i].begin);
        }
    }
}

TEST(WordTimes, inSecondsNeighboursNeverOverlapByARoundingError) {
    for (std::int64_t edge = 1; edge < 200000; edge += 7) {
        const TimedWord first{"a", edge / 3, edge};
        const auto seconds = WordSeconds::of(first, rateHz);
        ASSERT_GT(seconds.duration, 0.0);
        ASSERT_LE(seconds.start + seconds.duration, static_cast<double>(edge) / rateHz);
        ASSERT_NEAR(seconds.start + seconds.duration, static_cast<double>(edge) / rateHz, 1e-12);
    }
}

}  // namespace
}  // namespace korvane
