#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "platform/av/CompositionReader.h"
#include "tests/fixtures/AudioCode.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"

namespace korvane {
namespace {

using fixtures::AudioCode;

constexpr int kRate = 48'000;
// Two steps of 16-bit samples.
constexpr double kQuantum = 2.0 / 32768;

std::filesystem::path clip(int tracks, int channels = 1, int rateHz = kRate) {
    return fixtures::cachedClip("mix-" + std::to_string(tracks) + "x" + std::to_string(channels) + "-" +
                                    std::to_string(rateHz) + ".mov",
                                [=](const auto& to) {
                                    fixtures::ClipSpec spec;
                                    for (int i = 0; i < tracks; ++i) {
                                        fixtures::AudioSpec sound;
                                        sound.codec = "pcm_s16le";
                                        sound.rateHz = rateHz;
                                        sound.channels = channels;
                                        sound.seed = static_cast<std::uint32_t>(1 + 10 * i);
                                        sound.durationSeconds = 20.0;
                                        spec.audio.push_back(sound);
                                    }
                                    fixtures::writeClip(spec, to);
                                });
}

struct Cut {
    TimeRange source;
    MediaTime at;
};

/// Random words of the source, end to end.
std::vector<Cut> words(int count) {
    std::mt19937 random(4);
    std::vector<Cut> cuts;
    MediaTime at;
    for (int i = 0; i < count; ++i) {
        const TimeRange source{{static_cast<std::int64_t>(random() % 11'000), 600},
                               {static_cast<std::int64_t>(1 + random() % 300), 600}};
        cuts.push_back({source, at});
        at = at + source.duration;
    }
    return cuts;
}

std::shared_ptr<Composition> composed(const std::filesystem::path& path, const std::vector<Cut>& cuts) {
    Asset asset(path);
    auto composition = std::make_shared<Composition>();
    for (const AssetTrack& track : asset.loadTracks(MediaType::audio)) {
        CompositionTrack* target = composition->addMutableTrack(MediaType::audio);
        for (const Cut& cut : cuts)
            target->insertTimeRange(cut.source, track, cut.at);
    }
    return composition;
}

TEST(CompositionAudioReader, everyCutLiesOnItsSampleAndNothingDrifts) {
    const auto cuts = words(300);
    const auto composition = composed(clip(1), cuts);
    CompositionAudioReader reader(composition, std::nullopt, {kRate, 1}, {});
    const AudioCode code(1, AudioCode::latticeFor(kRate));
    const std::int64_t total = composition->duration().toUnits(kRate);
    std::vector<float> all(static_cast<std::size_t>(total));
    for (std::int64_t p = 0; p < total; p += 1600)
        reader.read(
            p, std::span(all).subspan(static_cast<std::size_t>(p),
                                      static_cast<std::size_t>(std::min<std::int64_t>(1600, total - p))));
    for (const Cut& cut : cuts) {
        const std::int64_t from = cut.at.toUnits(kRate);
        const std::int64_t to = (cut.at + cut.source.duration).toUnits(kRate);
        const auto expected = code.samples(cut.source.start.toUnits(kRate), kRate, to - from);
        for (std::int64_t i = 0; i < to - from; ++i)
            ASSERT_NEAR(all[static_cast<std::size_t>(from + i)], expected[static_cast<std::size_t>(i)],
                        kQuantum)
                << "sample " << i << " of the word at " << cut.at.toString();
    }
}

TEST(CompositionAudioReader, anyPositionGivesTheSameAsReadingOn) {
    const auto composition = composed(clip(1), words(40));
    CompositionAudioReader forward(composition, std::nullopt, {kRate, 1}, {});
    const std::int64_t total = composition->duration().toUnits(kRate);
    std::vector<float> all(static_cast<std::size_t>(total));
    forward.read(0, all);
    CompositionAudioReader jumping(composition, std::nullopt, {kRate, 1}, {});
    std::mt19937 random(8);
    for (int i = 0; i < 50; ++i) {
        const auto position = static_cast<std::int64_t>(random() % static_cast<unsigned>(total - 5000));
        std::vector<float> part(4000);
        jumping.read(position, part);
        EXPECT_TRUE(std::equal(part.begin(), part.end(), all.begin() + position)) << position;
    }
}

TEST(CompositionAudioReader, rampsAreLinearAndTheLastValueHolds) {
    const std::vector<Cut> one = {{{{600, 600}, {1200, 600}}, kZeroTime}};
    const auto composition = composed(clip(1), one);
    AudioMix mix;
    mix.inputParameters.push_back({1, {}});
    mix.inputParameters[0].setVolumeRamp(1.0, 0.0, {{300, 600}, {882, 44100}});
    mix.inputParameters[0].setVolumeRamp(0.0, 1.0, {{600, 600}, {150, 600}});
    CompositionAudioReader with(composition, mix, {kRate, 1}, {});
    CompositionAudioReader without(composition, std::nullopt, {kRate, 1}, {});
    std::vector<float> ramped(2 * kRate);
    std::vector<float> plain(2 * kRate);
    with.read(0, ramped);
    without.read(0, plain);
    for (int n = 0; n < 2 * kRate; ++n) {
        const double t = static_cast<double>(n) / kRate;
        const double volume = t < 0.5    ? 1.0
                              : t < 0.52 ? 1.0 - (t - 0.5) / 0.02
                              : t < 1.0  ? 0.0
                              : t < 1.25 ? (t - 1.0) / 0.25
                                         : 1.0;
        ASSERT_NEAR(ramped[static_cast<std::size_t>(n)], plain[static_cast<std::size_t>(n)] * volume, 1e-5)
            << t;
    }
}

TEST(CompositionAudioReader, severalTracksAreAddedUp) {
    const std::vector<Cut> one = {{{{1200, 600}, {600, 600}}, kZeroTime}};
    CompositionAudioReader reader(composed(clip(2), one), std::nullopt, {kRate, 1}, {});
    std::vector<float> sum(10'000);
    reader.read(0, sum);
    const auto first = AudioCode(1, AudioCode::latticeFor(kRate)).samples(2 * kRate, kRate, 10'000);
    const auto second = AudioCode(11, AudioCode::latticeFor(kRate)).samples(2 * kRate, kRate, 10'000);
    for (std::size_t i = 0; i < sum.size(); ++i)
        ASSERT_NEAR(sum[i], std::clamp(first[i] + second[i], -1.0F, 1.0F), 2 * kQuantum);
}

TEST(CompositionAudioReader, theFormatFollowsTheSource) {
    const std::vector<Cut> one = {{{{0, 600}, {600, 600}}, kZeroTime}};
    EXPECT_EQ(CompositionAudioReader::preferredFormat(*composed(clip(1), one)), (AudioFormat{48'000, 1}));
    EXPECT_EQ(CompositionAudioReader::preferredFormat(*composed(clip(1, 2, 44'100), one)),
              (AudioFormat{44'100, 2}));
    EXPECT_EQ(CompositionAudioReader::preferredFormat(*composed(clip(1, 1, 16'000), one)),
              (AudioFormat{48'000, 1}));
    EXPECT_EQ(CompositionAudioReader::preferredFormat(Composition()), std::nullopt);
}

TEST(CompositionAudioReader, beyondTheEndAndInGapsIsSilence) {
    const std::vector<Cut> apart = {{{{600, 600}, {300, 600}}, kZeroTime},
                                    {{{900, 600}, {300, 600}}, {900, 600}}};
    CompositionAudioReader reader(composed(clip(1), apart), std::nullopt, {kRate, 1}, {});
    std::vector<float> part(24'000);
    reader.read(30'000, part);  // the gap
    EXPECT_EQ(std::ranges::count(part, 0.0F), 24'000);
    reader.read(kRate * 10, part);
    EXPECT_EQ(std::ranges::count(part, 0.0F), 24'000);
}

}  // namespace
}  // namespace korvane
