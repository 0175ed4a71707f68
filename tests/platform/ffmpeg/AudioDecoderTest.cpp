#include "platform/ffmpeg/AudioDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "platform/ffmpeg/MediaError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/fixtures/AudioCode.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"

namespace korvane {
namespace {

using fixtures::AudioCode;
using fixtures::AudioSpec;
using fixtures::ClipSpec;

struct SoundCase {
    std::string name;
    std::string container;
    AudioSpec sound;
    int outputRateHz = 48'000;
    /// Containers that can't say how long the encoder's run-in is make everything sound that much later.
    int runInSamples = 0;
    double tolerance = 0.0;  ///< how far a sample may differ after a jump: codecs with lasting memory
};

void PrintTo(const SoundCase& c, std::ostream* out) {
    *out << c.name;
}

SoundCase sound(std::string name, std::string container, std::string codec, int rateHz, int outputRateHz,
                double tolerance) {
    SoundCase c{std::move(name), std::move(container), {}, outputRateHz, 0, tolerance};
    if (c.container == "mpegts" || (c.container == "matroska" && codec == "aac"))
        c.runInSamples = 1024;
    c.sound.codec = std::move(codec);
    c.sound.rateHz = rateHz;
    c.sound.durationSeconds = 12.0;
    return c;
}

// AAC fills some bands with noise that goes on from where decoding began; it lies 80 dB below full scale.
constexpr double kNoiseFill = 1e-3;

std::vector<SoundCase> soundCases() {
    SoundCase late = sound("lateAac", "mov", "aac", 48'000, 48'000, kNoiseFill);
    late.sound.startSeconds = 1.25;
    SoundCase gap = sound("gappedPcm", "matroska", "pcm_s16le", 48'000, 48'000, 1e-6);
    gap.sound.gapsSeconds = {{4.0, 6.5}};
    return {sound("aac48", "mp4", "aac", 48'000, 48'000, kNoiseFill),
            sound("aac44", "mp4", "aac", 44'100, 44'100, kNoiseFill),
            sound("aacMatroska", "matroska", "aac", 48'000, 48'000, kNoiseFill),
            sound("aacTransport", "mpegts", "aac", 44'100, 44'100, kNoiseFill),
            sound("pcm8", "mov", "pcm_s16le", 8'000, 48'000, 1e-4),
            sound("pcm96", "mov", "pcm_s16le", 96'000, 48'000, 1e-4),
            sound("pcm22To44", "mov", "pcm_s16le", 22'050, 48'000, 1e-4),
            sound("flac", "matroska", "flac", 48'000, 48'000, 1e-6),
            late,
            gap};
}

class AudioDecoding : public testing::TestWithParam<SoundCase> {
  protected:
    std::filesystem::path path() const {
        return fixtures::cachedClip("sound-" + GetParam().name + "." +
                                        (GetParam().container == "matroska" ? "mkv" : GetParam().container),
                                    [](const auto& to) {
                                        ClipSpec clip;
                                        clip.audio = {GetParam().sound};
                                        clip.container = GetParam().container;
                                        fixtures::writeClip(clip, to);
                                    });
    }
    AudioFormat format() const { return {GetParam().outputRateHz, 1}; }
    std::vector<float> everything() const {
        const auto decoder = AudioDecoder::open(path(), -1, format());
        std::vector<float> all;
        std::vector<float> block(4800);
        while (true) {
            const auto count = decoder->read(static_cast<std::int64_t>(all.size()), block);
            all.insert(all.end(), block.begin(), block.begin() + count);
            if (count < static_cast<std::int64_t>(block.size()))
                return all;
        }
    }
};

TEST_P(AudioDecoding, theSamplesOfAPositionDoNotDependOnWhatWasReadBefore) {
    const std::vector<float> all = everything();
    ASSERT_GT(all.size(), 10U * static_cast<std::size_t>(GetParam().outputRateHz));
    const auto decoder = AudioDecoder::open(path(), -1, format());
    std::mt19937 random(3);
    for (int i = 0; i < 60; ++i) {
        const auto position = static_cast<std::int64_t>(random() % (all.size() - 4000));
        std::vector<float> part(1 + random() % 3000);
        ASSERT_EQ(decoder->read(position, part), static_cast<std::int64_t>(part.size()));
        double worst = 0.0;
        for (std::size_t k = 0; k < part.size(); ++k)
            worst = std::max(
                worst, std::abs(static_cast<double>(part[k] - all[static_cast<std::size_t>(position) + k])));
        EXPECT_LE(worst, GetParam().tolerance) << "at " << position;
    }
}

TEST_P(AudioDecoding, soundStandsWhereTheTimeLinePutsIt) {
    const std::vector<float> all = everything();
    const int rate = GetParam().outputRateHz;
    const AudioCode code(GetParam().sound.seed, AudioCode::latticeFor(GetParam().sound.rateHz));
    for (const double second : {2.0, 7.0, 10.5}) {
        const auto at = static_cast<std::int64_t>(second * rate);
        const auto found = fixtures::locate(
            std::span(all).subspan(static_cast<std::size_t>(at + GetParam().runInSamples), 4096), code, rate,
            at, 200);
        EXPECT_GT(found.correlation, 0.9) << second;
        EXPECT_LT(std::abs(found.offsetSamples), 0.5 * rate / std::min(rate, GetParam().sound.rateHz))
            << second;
    }
}

TEST_P(AudioDecoding, beyondTheEndIsSilenceAndTheCountSaysSo) {
    const auto decoder = AudioDecoder::open(path(), -1, format());
    std::vector<float> part(1000, 1.0F);
    EXPECT_EQ(decoder->read(std::int64_t{3600} * GetParam().outputRateHz, part), 0);
    EXPECT_EQ(std::ranges::count(part, 0.0F), 1000);
}

INSTANTIATE_TEST_SUITE_P(Sounds, AudioDecoding, testing::ValuesIn(soundCases()),
                         [](const auto& instance) { return instance.param.name; });

TEST(AudioDecoder, aLateTrackBeginsWithSilence) {
    AudioSpec late;
    late.startSeconds = 2.0;
    ClipSpec clip;
    clip.audio = {late};
    const fixtures::ScratchFolder folder;
    fixtures::writeClip(clip, folder / "late.mov");
    const auto decoder = AudioDecoder::open(folder / "late.mov", -1, {48'000, 1});
    std::vector<float> part(48'000);
    EXPECT_EQ(decoder->read(24'000, part), 48'000);
    EXPECT_EQ(std::ranges::count(part, 0.0F), 48'000);
}

TEST(AudioDecoder, moreThanTwoChannelsMixDownWithoutClipping) {
    AudioSpec surround;
    surround.codec = "pcm_s16le";
    surround.channels = 6;
    ClipSpec clip;
    clip.audio = {surround};
    const fixtures::ScratchFolder folder;
    fixtures::writeClip(clip, folder / "surround.mov");
    const auto decoder = AudioDecoder::open(folder / "surround.mov", -1, {48'000, 2});
    std::vector<float> part(2 * 48'000);
    decoder->read(48'000, part);
    EXPECT_LT(std::abs(*std::ranges::max_element(part, {}, [](float v) { return std::abs(v); })), 1.0F);
    // The front left channel leads the left side.
    const AudioCode frontLeft(surround.seed, AudioCode::latticeFor(48'000));
    std::vector<float> left;
    for (std::size_t i = 0; i < part.size(); i += 2)
        left.push_back(part[i]);
    const auto found = fixtures::locate(std::span(left).first(4096), frontLeft, 48'000, 48'000, 50);
    EXPECT_GT(found.correlation, 0.5);
    EXPECT_NEAR(found.offsetSamples, 0.0, 0.5);
}

TEST(AudioDecoder, aStopEndsReadingAndAFileWithoutSoundIsAnError) {
    ClipSpec clip;
    clip.audio = {AudioSpec{}};
    const fixtures::ScratchFolder folder;
    fixtures::writeClip(clip, folder / "stop.mov");
    std::stop_source stop;
    const auto decoder = AudioDecoder::open(folder / "stop.mov", -1, {48'000, 1}, stop.get_token());
    stop.request_stop();
    std::vector<float> part(48'000);
    EXPECT_THROW(decoder->read(0, part), CancellationError);

    ClipSpec silent;
    silent.video = {fixtures::VideoSpec::constantRate({25, 1}, 1.0)};
    fixtures::writeClip(silent, folder / "silent.mov");
    EXPECT_THROW(AudioDecoder::open(folder / "silent.mov", -1, {48'000, 1}), MediaError);
}

}  // namespace
}  // namespace korvane
