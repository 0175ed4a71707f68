#include "platform/speech/SpeechStretches.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <limits>

#include "tests/platform/speech/SyntheticSound.h"

namespace korvane {
namespace {

using sound::rateHz;

std::vector<SpeechStretch> stretchesOf(std::span<const float> samples, std::size_t block = 4096) {
    SpeechStretches finder(rateHz);
    std::vector<SpeechStretch> found;
    const auto takeAll = [&] {
        while (auto stretch = finder.next())
            found.push_back(std::move(*stretch));
    };
    for (std::size_t begin = 0; begin < samples.size(); begin += block) {
        finder.push(samples.subspan(begin, std::min(block, samples.size() - begin)));
        takeAll();
    }
    finder.finish();
    takeAll();
    return found;
}

double seconds(std::int64_t samples) {
    return static_cast<double>(samples) / rateHz;
}

TEST(SpeechStretches, nothingAtAllHasNoStretch) {
    EXPECT_TRUE(stretchesOf({}).empty());
    EXPECT_TRUE(stretchesOf(std::vector<float>(100)).empty());
}

TEST(SpeechStretches, silenceAndSteadyNoiseHaveNoStretch) {
    EXPECT_TRUE(stretchesOf(std::vector<float>(30 * rateHz)).empty());
    for (const double db : {-80.0, -60.0, -40.0, -20.0, -10.0})
        EXPECT_TRUE(stretchesOf(sound::background(30.0, db)).empty()) << db;
}

TEST(SpeechStretches, humAndAConstantOffsetHaveNoStretch) {
    EXPECT_TRUE(stretchesOf(std::vector<float>(10 * rateHz, 0.4F)).empty());
    EXPECT_TRUE(stretchesOf(sound::tone(10.0, 50.0, -20.0)).empty());
}

TEST(SpeechStretches, aClickIsNoSpeech) {
    auto samples = sound::background(10.0, -60.0);
    samples[5 * rateHz] = 1.0F;
    EXPECT_TRUE(stretchesOf(samples).empty());
}

TEST(SpeechStretches, samplesThatAreNoNumbersAreSilence) {
    std::vector<float> samples(5 * rateHz, std::numeric_limits<float>::quiet_NaN());
    EXPECT_TRUE(stretchesOf(samples).empty());
}

TEST(SpeechStretches, aVoiceIsFoundWithAQuarterOfASecondAround) {
    for (const double db : {-100.0, -60.0, -35.0}) {
        auto samples = sound::background(10.0, db);
        sound::addVoice(samples, 4.0, 6.0, -20.0);
        const auto found = stretchesOf(samples);
        ASSERT_EQ(found.size(), 1U) << db;
        EXPECT_NEAR(seconds(found[0].begin), 3.75, 0.03) << db;
        EXPECT_NEAR(seconds(found[0].end()), 6.25, 0.03) << db;
        EXPECT_FALSE(found[0].beginsInSpeech);
        EXPECT_FALSE(found[0].endsInSpeech);
    }
}

TEST(SpeechStretches, aStretchHasTheSamplesOfItsPlace) {
    auto samples = sound::background(8.0, -60.0);
    sound::addVoice(samples, 5.0, 6.0, -20.0);
    for (const std::size_t block : {1U, 160U, 4096U, 1000000U}) {
        const auto found = stretchesOf(samples, block);
        ASSERT_EQ(found.size(), 1U);
        EXPECT_TRUE(
            std::equal(found[0].samples.begin(), found[0].samples.end(), samples.begin() + found[0].begin));
    }
}

TEST(SpeechStretches, aPauseOfAThirdOfASecondDoesNotSplit) {
    auto samples = sound::background(8.0, -60.0);
    sound::addVoice(samples, 2.0, 3.0, -20.0);
    sound::addVoice(samples, 3.31, 4.3, -20.0);
    EXPECT_EQ(stretchesOf(samples).size(), 1U);
}

TEST(SpeechStretches, twoStretchesShareAShortPauseWithoutOverlap) {
    auto samples = sound::background(8.0, -60.0);
    sound::addVoice(samples, 2.0, 3.0, -20.0);
    sound::addVoice(samples, 3.4, 4.4, -20.0);
    const auto found = stretchesOf(samples);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_LE(found[0].end(), found[1].begin);
    EXPECT_NEAR(seconds(found[0].end()), 3.2, 0.03);
    EXPECT_NEAR(seconds(found[1].begin), 3.2, 0.03);
}

TEST(SpeechStretches, aLongSpeechIsCutAtItsQuietestMomentBeforeFifteenSeconds) {
    auto samples = sound::background(40.0, -60.0);
    sound::addVoice(samples, 1.0, 35.0, -20.0);
    // A breath of 0.2 s, too short for a pause.
    std::fill(samples.begin() + 12 * rateHz, samples.begin() + 12 * rateHz + rateHz / 5, 0.0F);
    const auto found = stretchesOf(samples);
    ASSERT_GE(found.size(), 3U);
    EXPECT_NEAR(seconds(found[0].end()), 12.1, 0.1);
    EXPECT_TRUE(found[0].endsInSpeech);
    EXPECT_TRUE(found[1].beginsInSpeech);
    EXPECT_FALSE(found.back().endsInSpeech);
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_LE(seconds(static_cast<std::int64_t>(found[i].samples.size())), 15.0);
        if (i > 0) {
            EXPECT_EQ(found[i].begin, found[i - 1].end()) << "cut without losing a sample";
        }
    }
}

TEST(SpeechStretches, speechAtBothEndsOfTheRecordingStaysWithinIt) {
    auto samples = sound::background(3.0, -60.0);
    sound::addVoice(samples, 0.0, 3.0, -20.0);
    const auto found = stretchesOf(samples);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].begin, 0);
    EXPECT_LE(found[0].end(), std::ssize(samples));
    EXPECT_NEAR(seconds(found[0].end()), 3.0, 0.03);
}

TEST(SpeechStretches, quietSpeechIsFoundToo) {
    auto samples = sound::background(6.0, -85.0);
    sound::addVoice(samples, 2.0, 3.0, -55.0);
    EXPECT_EQ(stretchesOf(samples).size(), 1U);
}

TEST(SpeechStretches, aVoiceOverMusicIsCutIntoPiecesNeverLost) {
    auto samples = sound::background(60.0, -40.0);
    // Notes of changing loudness without a rest.
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / rateHz;
        samples[i] += static_cast<float>(0.05 * (1.2 + std::sin(9.0 * t)) * std::sin(2764.6 * t));
    }
    sound::addVoice(samples, 20.0, 24.0, -10.0);
    const auto found = stretchesOf(samples);
    std::int64_t covered = 0;
    for (const auto& stretch : found)
        covered += std::max<std::int64_t>(0, std::min<std::int64_t>(stretch.end(), 24 * rateHz) -
                                                 std::max<std::int64_t>(stretch.begin, 20 * rateHz));
    EXPECT_GE(seconds(covered), 3.9);
}

TEST(SpeechStretches, aVoiceOverMusicThatIsNearlyAsLoudIsHeardToo) {
    for (const double above : {10.0, 6.0, 3.0}) {
        auto samples = sound::music(40.0, -20.0 - above);
        sound::addVoice(samples, 10.0, 30.0, -20.0);
        std::int64_t covered = 0;
        for (const auto& stretch : stretchesOf(samples))
            covered += std::max<std::int64_t>(0, std::min<std::int64_t>(stretch.end(), 30 * rateHz) -
                                                     std::max<std::int64_t>(stretch.begin, 10 * rateHz));
        EXPECT_GE(seconds(covered), 19.5) << above;
    }
}

TEST(SpeechStretches, anHourTakesNoMoreMemoryThanAMinute) {
    SpeechStretches finder(rateHz);
    auto minute = sound::background(60.0, -60.0);
    sound::addVoice(minute, 1.0, 40.0, -20.0);
    const auto peakKilobytes = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    std::size_t found = 0;
    long afterFirst = 0;
    for (int i = 0; i < 60; ++i) {
        for (std::size_t begin = 0; begin < minute.size(); begin += 8000) {
            finder.push(std::span(minute).subspan(begin, 8000));
            while (finder.next())
                ++found;
        }
        if (i == 0)
            afterFirst = peakKilobytes();
    }
    EXPECT_GE(found, 180U);
#ifdef __SANITIZE_ADDRESS__
    constexpr long allowed = 1024 * 1024;  // it keeps what was freed
#else
    constexpr long allowed = 8 * 1024;
#endif
    EXPECT_LT(peakKilobytes() - afterFirst, allowed);
}

}  // namespace
}  // namespace korvane
