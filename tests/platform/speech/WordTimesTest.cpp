#include "platform/speech/WordTimes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/platform/speech/SyntheticSound.h"

namespace korvane {
namespace {

using sound::rateHz;

std::int64_t at(double seconds) {
    return std::llround(seconds * rateHz);
}

double seconds(const SpeechStretch& stretch) {
    return static_cast<double>(stretch.samples.size()) / rateHz;
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

TEST(WordTimes, edgesInConnectedSpeechStay) {
    const auto stretch = stretchWith({{1.0, 1.42}, {1.47, 2.0}});
    const auto found = refineWordTimes({word("a", 1.0, 1.43), word("b", 1.43, 2.0)}, stretch, rateHz, 0);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].end, at(11.43)) << "a dip as short as the closure of a consonant is no pause";
    EXPECT_EQ(found[1].begin, at(11.43));
}

TEST(WordTimes, aPauseThatTheRecogniserSawEndsWhereItIsHeard) {
    const auto stretch = stretchWith({{1.0, 1.4}, {1.5, 2.0}});
    for (const double early : {-0.03, 0.0, 0.02, 0.04}) {
        const auto found =
            refineWordTimes({word("a", 1.0, 1.44 + early), word("b", 1.47 + early, 2.0)}, stretch, rateHz, 0);
        ASSERT_EQ(found.size(), 2U);
        expectNear(found[0], 1.0, 1.4);
        expectNear(found[1], 1.5, 2.0);
    }
}

TEST(WordTimes, aPauseThatTheRecogniserMissedIsFoundFromATenthOfASecondOn) {
    for (const double edge : {1.38, 1.4, 1.45, 1.53}) {
        const auto longer = stretchWith({{1.0, 1.4}, {1.53, 2.0}});
        const auto found = refineWordTimes({word("a", 1.0, edge), word("b", edge, 2.0)}, longer, rateHz, 0);
        ASSERT_EQ(found.size(), 2U);
        expectNear(found[0], 1.0, 1.4);
        expectNear(found[1], 1.53, 2.0);
    }
    const auto shorter = stretchWith({{1.0, 1.4}, {1.48, 2.0}});
    const auto kept = refineWordTimes({word("a", 1.0, 1.43), word("b", 1.43, 2.0)}, shorter, rateHz, 0);
    EXPECT_EQ(kept[0].end, at(11.43));
}

TEST(WordTimes, noPauseIsFoundInABackgroundThatHidesWeakSounds) {
    const auto stretch = stretchWith({{1.0, 1.4}, {1.6, 2.0}}, -45.0);
    const auto kept = refineWordTimes({word("a", 1.0, 1.5), word("b", 1.5, 2.0)}, stretch, rateHz, 0);
    EXPECT_EQ(kept[0].end, at(11.5));
    const auto told = refineWordTimes({word("a", 1.0, 1.45), word("b", 1.55, 2.0)}, stretch, rateHz, 0);
    expectNear(told[0], 1.0, 1.4);
    expectNear(told[1], 1.6, 2.0);
}

TEST(WordTimes, aClosureWithinAWordIsNotTakenForThePauseBesideIt) {
    // "st" after a pause: a hiss, 60 ms of nothing, then the rest.
    const auto stretch = stretchWith({{0.5, 1.0}, {1.3, 1.38}, {1.44, 2.0}});
    const auto found = refineWordTimes({word("a", 0.5, 1.02), word("stop", 1.28, 2.0)}, stretch, rateHz, 0);
    expectNear(found[0], 0.5, 1.0);
    expectNear(found[1], 1.3, 2.0);
}

TEST(WordTimes, twoEdgesMovingTowardsEachOtherNeverCross) {
    // The recogniser missed the middle of one sound that goes on.
    const auto stretch = stretchWith({{1.0, 2.0}});
    const auto found = refineWordTimes({word("a", 1.0, 1.40), word("b", 1.49, 2.0)}, stretch, rateHz, 0);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_LE(found[0].end, found[1].begin);
}

TEST(WordTimes, theSearchEndsAHundredAndTwentyOutwardsAndFourHundredInwards) {
    const auto stretch = stretchWith({{1.0, 2.0}});
    const auto nearBy = refineWordTimes({word("a", 1.11, 1.89)}, stretch, rateHz, 0);
    expectNear(nearBy[0], 1.0, 2.0);
    // Beyond that the edge stays where the recogniser put it.
    const auto tooShort = refineWordTimes({word("a", 1.2, 1.8)}, stretch, rateHz, 0);
    EXPECT_EQ(tooShort[0], word("a", 1.2, 1.8));
    const auto tooLong = refineWordTimes({word("a", 0.65, 2.35)}, stretch, rateHz, 0);
    expectNear(tooLong[0], 1.0, 2.0);
    const auto farTooLong = refineWordTimes({word("a", 0.5, 2.5)}, stretch, rateHz, 0);
    expectNear(farTooLong[0], 0.9, 2.1);
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
    EXPECT_EQ(cut[0], word("a", 0.02, 3.95));
    stretch.beginsInSpeech = false;
    stretch.endsInSpeech = false;
    const auto paused = refineWordTimes({word("a", 0.02, 3.95)}, stretch, rateHz, 0);
    expectNear(paused[0], 0.1, 3.9);
}

TEST(WordTimes, aWordThatWasGivenThePauseBehindItEndsWhereItIsHeard) {
    const auto stretch = stretchWith({{1.0, 1.4}, {1.7, 3.75}});
    const auto found = refineWordTimes({word("a", 1.0, 1.7), word("b", 1.7, 9.0)}, stretch, rateHz, 0);
    ASSERT_EQ(found.size(), 2U);
    expectNear(found[0], 1.0, 1.4);
    expectNear(found[1], 1.7, 3.75);
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
    ASSERT_EQ(found.size(), 4U);
    EXPECT_EQ(found[0].text + found[1].text + found[2].text + found[3].text, "abcd");
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_LT(found[i].begin, found[i].end);
        if (i > 0) {
            EXPECT_LE(found[i - 1].end, found[i].begin);
        }
    }
}

TEST(WordTimes, whateverTimesComeInThoseThatComeOutAreInOrderAndApart) {
    std::mt19937 random(5);
    const auto uniform = [&](double from, double to) {
        return std::uniform_real_distribution<double>(from, to)(random);
    };
    int complete = 0;
    for (int round = 0; round < 150; ++round) {
        SpeechStretch stretch;
        stretch.begin = at(uniform(0.0, 20.0));
        stretch.samples = sound::background(uniform(0.0, 2.0), uniform(-100.0, -20.0));
        for (double t = 0.0; t < 2.0; t += uniform(0.01, 0.5))
            sound::addVoice(stretch.samples, t, std::min(t + uniform(0.0, 0.4), seconds(stretch)), -20.0);
        stretch.floorDb = uniform(-100.0, -10.0);
        stretch.beginsInSpeech = uniform(0.0, 1.0) < 0.3;
        stretch.endsInSpeech = uniform(0.0, 1.0) < 0.3;
        const auto notBefore = stretch.begin + at(uniform(-1.0, 0.5));
        std::vector<TimedWord> words;
        for (int i = round % 9; i > 0; --i) {
            const auto begin = stretch.begin + at(uniform(-0.2, 2.2));
            words.push_back(
                {std::string(1, static_cast<char>('a' + i)), begin, begin + at(uniform(-0.1, 0.6))});
        }
        if (round % 2 == 0)
            std::sort(words.begin(), words.end(),
                      [](const auto& a, const auto& b) { return a.begin < b.begin; });
        const auto found = refineWordTimes(words, stretch, rateHz, notBefore);
        auto from = std::max(notBefore, stretch.begin);
        auto given = words.begin();
        if (stretch.end() - from >= std::ssize(words)) {
            ASSERT_EQ(found.size(), words.size()) << round;
            ++complete;
        }
        for (const auto& word : found) {
            ASSERT_GE(word.begin, from) << round;
            ASSERT_GT(word.end, word.begin) << round;
            ASSERT_LE(word.end, stretch.end()) << round;
            from = word.end;
            given = std::find_if(given, words.end(), [&](const auto& w) { return w.text == word.text; });
            ASSERT_NE(given, words.end()) << "in the order that they came in";
        }
        EXPECT_EQ(refineWordTimes(words, stretch, rateHz, notBefore), found);
    }
    EXPECT_GT(complete, 100);
}

TEST(WordTimes, wordsAtTheEndOfAStretchAreGivenTimeByThoseBefore) {
    auto stretch = stretchWith({{0.0, 4.0}});
    stretch.endsInSpeech = true;
    std::vector<TimedWord> words{word("a", 3.0, 3.99)};
    for (int i = 0; i < 9; ++i)
        words.push_back(word("b", i < 5 ? 4.0 : 4.5, 5.0));
    const auto found = refineWordTimes(words, stretch, rateHz, 0);
    ASSERT_EQ(found.size(), 10U);
    EXPECT_EQ(found[0], word("a", 3.0, 3.82));
    EXPECT_EQ(found[1], word("b", 3.82, 3.84));
    EXPECT_EQ(found[9], word("b", 3.98, 4.0));
}

TEST(WordTimes, whereThereIsNoRoomForTwentyMillisecondsEachIsGivenAnEqualPart) {
    const auto stretch = stretchWith({{0.0, 4.0}});
    const auto found = refineWordTimes({word("a", 0.0, 4.0), word("b", 1.0, 4.0), word("c", 1.0, 2.0)},
                                       stretch, rateHz, stretch.end() - 30);
    ASSERT_EQ(found.size(), 3U);
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_EQ(found[i].end - found[i].begin, 10);
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
