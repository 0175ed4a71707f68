#include "platform/speech/NoiseReduction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/speech/BackgroundSound.h"
#include "platform/speech/ShortSpectra.h"
#include "tests/platform/speech/SyntheticSound.h"

namespace korvane {
namespace {

using sound::rateHz;

double levelOf(std::span<const float> samples, double from, double to) {
    double sum = 0.0;
    const auto begin = static_cast<std::size_t>(from * rateHz);
    const auto end = static_cast<std::size_t>(to * rateHz);
    for (std::size_t i = begin; i < end; ++i)
        sum += static_cast<double>(samples[i]) * samples[i];
    return 10.0 * std::log10(sum / static_cast<double>(end - begin));
}

/// The level of what `changed` has and `wanted` hasn't.
double differenceOf(std::span<const float> changed, std::span<const float> wanted, double from, double to) {
    std::vector<float> difference(changed.size());
    for (std::size_t i = 0; i < changed.size(); ++i)
        difference[i] = changed[i] - wanted[i];
    return levelOf(difference, from, to);
}

std::vector<float> voiceOver(double backgroundDb) {
    auto samples = sound::background(5.0, backgroundDb);
    sound::addVoice(samples, 2.0, 4.0, -20.0);
    return samples;
}

BackgroundSound backgroundOf(std::span<const float> samples) {
    ShortSpectra spectra(samples, rateHz);
    return BackgroundSound::of(spectra);
}

TEST(ShortSpectra, giveTheSoundBackAsItWas) {
    for (const std::size_t count : {0U, 1U, 127U, 128U, 511U, 512U, 16001U}) {
        auto samples = sound::background(1.1, -20.0);
        samples.resize(count);
        const auto back = ShortSpectra(samples, rateHz).sound();
        ASSERT_EQ(back.size(), count);
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_NEAR(back[i], samples[i], 1e-5) << i << " of " << count;
    }
}

TEST(ShortSpectra, aToneStandsInItsBand) {
    const auto samples = sound::tone(1.0, 1000.0, -20.0);
    ShortSpectra spectra(samples, rateHz);
    const auto middle = spectra.at(spectra.moments() / 2);
    std::size_t loudest = 0;
    for (std::size_t band = 1; band < spectra.bands(); ++band)
        if (std::norm(middle[band]) > std::norm(middle[loudest]))
            loudest = band;
    EXPECT_EQ(loudest, 32U) << "of 31.25 Hz each";
}

TEST(NoiseReduction, aSteadyNoiseBecomesWeakerWhereNobodySpeaks) {
    const auto noisy = voiceOver(-45.0);
    const auto better = withoutNoise(noisy, rateHz);
    ASSERT_EQ(better.size(), noisy.size());
    EXPECT_LT(levelOf(better, 0.5, 1.8), levelOf(noisy, 0.5, 1.8) - 9.0);
    EXPECT_GT(levelOf(better, 0.5, 1.8), levelOf(noisy, 0.5, 1.8) - 13.0) << "a little is left on purpose";
}

TEST(NoiseReduction, theVoiceIsLeftAndNotMoved) {
    auto voice = std::vector<float>(5 * rateHz);
    sound::addVoice(voice, 2.0, 4.0, -20.0);
    const auto noisy = voiceOver(-45.0);
    const auto better = withoutNoise(noisy, rateHz);
    EXPECT_NEAR(levelOf(better, 2.0, 4.0), levelOf(voice, 2.0, 4.0), 0.5);
    // One sample too late or too early would make 15 dB of it.
    EXPECT_LT(differenceOf(better, voice, 2.0, 4.0), levelOf(voice, 2.0, 4.0) - 18.0);
}

TEST(NoiseReduction, aCleanRecordingStaysAsItIs) {
    const auto clean = voiceOver(-80.0);
    EXPECT_EQ(withoutNoise(clean, rateHz), clean);
    EXPECT_TRUE(withoutNoise({}, rateHz).empty());
    EXPECT_EQ(withoutNoise(std::vector<float>(10), rateHz), std::vector<float>(10));
}

TEST(NoiseReduction, aVoiceOverMusicStaysAsItIs) {
    auto samples = sound::music(5.0, -35.0);
    sound::addVoice(samples, 2.0, 4.0, -15.0);
    EXPECT_EQ(withoutNoise(samples, rateHz), samples);
}

TEST(NoiseReduction, samplesThatAreNoNumbersAreSilence) {
    auto noisy = voiceOver(-45.0);
    noisy[rateHz] = std::numeric_limits<float>::quiet_NaN();
    noisy[rateHz + 1] = std::numeric_limits<float>::infinity();
    for (const float sample : withoutNoise(noisy, rateHz))
        ASSERT_TRUE(std::isfinite(sample));
}

TEST(BackgroundSound, noiseOfAnyLengthIsNoise) {
    for (const double seconds : {0.6, 2.0, 15.0})
        EXPECT_TRUE(backgroundOf(sound::background(seconds, -30.0)).isAudibleNoise()) << seconds;
}

TEST(BackgroundSound, musicOfAnyLevelIsNone) {
    for (const double db : {-50.0, -30.0, -12.0})
        EXPECT_FALSE(backgroundOf(sound::music(10.0, db)).isAudibleNoise()) << db;
}

}  // namespace
}  // namespace korvane
