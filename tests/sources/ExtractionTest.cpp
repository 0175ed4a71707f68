// Takes the sound out of real files and reads what was written: where on the time line each stretch lies, and
// whether compressed sound was copied.

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "media/ProcessingError.h"
#include "media/VideoProcessor.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/fixtures/AudioCode.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipReader.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/fixtures/FileSurgery.h"
#include "tests/support/CollectingMainQueue.h"

namespace korvane::sources {
namespace {

using fixtures::AudioCode;
using fixtures::AudioSpec;
using fixtures::ClipSpec;
using fixtures::DecodedSound;
using fixtures::VideoSpec;

class Extraction : public testing::Test {
  protected:
    ~Extraction() override {
        std::error_code ignored;
        for (const auto& file : extracted_)
            std::filesystem::remove(file, ignored);
    }

    static ClipSpec clip(const AudioSpec& audio) {
        ClipSpec spec;
        spec.video.push_back(VideoSpec::constantRate({30, 1}, 4.0));
        spec.audio.push_back(audio);
        return spec;
    }

    ExtractedAudio extract(const std::filesystem::path& from, std::stop_token stop = {}) {
        const ExtractedAudio result = VideoProcessor(queue_).extractAudio(
            from, [this](double fraction) { progress_.push_back(fraction); }, std::move(stop));
        extracted_.push_back(result.url);
        queue_.runAll();
        return result;
    }

    /// Where the code of `seed` is heard around `seconds` of the file, against where it should be.
    static fixtures::Location heardAt(const DecodedSound& sound, double seconds, std::uint32_t seed = 1,
                                      int sourceRate = 48'000, int channel = 0) {
        const auto first = static_cast<std::int64_t>(std::llround(seconds * sound.rateHz));
        const auto from = static_cast<std::size_t>(first * sound.channels + channel);
        const auto size = static_cast<std::size_t>(sound.rateHz / 5 * sound.channels);
        if (from + size > sound.samples.size())
            return {};
        return locate(std::span(sound.samples).subspan(from, size),
                      AudioCode(seed, AudioCode::latticeFor(sourceRate)), sound.rateHz, first, 5'000,
                      sound.channels);
    }

    static double loudness(const DecodedSound& sound, double from, double to) {
        double sum = 0.0;
        std::int64_t count = 0;
        for (auto n = std::llround(from * sound.rateHz);
             n < std::llround(to * sound.rateHz) && n < sound.frames(); ++n, ++count) {
            const double value = sound.samples[static_cast<std::size_t>(n * sound.channels)];
            sum += value * value;
        }
        return count > 0 ? std::sqrt(sum / static_cast<double>(count)) : 0.0;
    }

    const fixtures::ScratchFolder folder_;
    CollectingMainQueue queue_;
    std::vector<double> progress_;
    std::vector<std::filesystem::path> extracted_;
};

TEST_F(Extraction, aacIsCopiedPacketByPacketAndKeepsItsPlace) {
    fixtures::writeClip(clip({}), folder_ / "clip.mp4");
    const ExtractedAudio audio = extract(folder_ / "clip.mp4");
    EXPECT_EQ(audio.url.extension(), ".m4a");
    EXPECT_NEAR(audio.duration, 4.0, 0.025);
    const auto source = fixtures::readFacts(folder_ / "clip.mp4");
    const auto copy = fixtures::readFacts(audio.url);
    ASSERT_TRUE(copy.first("audio"));
    EXPECT_EQ(copy.streams.size(), 1U);
    EXPECT_EQ(copy.first("audio")->codec, "aac");
    EXPECT_EQ(copy.first("audio")->packets, source.first("audio")->packets);
    const DecodedSound sound = fixtures::readSound(audio.url);
    for (const double seconds : {0.1, 2.0, 3.7}) {
        EXPECT_NEAR(heardAt(sound, seconds).offsetSamples, 0.0, 0.3) << seconds;
        EXPECT_GT(heardAt(sound, seconds).correlation, 0.99) << seconds;
    }
}

TEST_F(Extraction, aLateTrackIsSilentUntilItStarts) {
    AudioSpec late;
    late.startSeconds = 0.7;
    late.durationSeconds = 3.0;
    fixtures::writeClip(clip(late), folder_ / "clip.mov");
    const DecodedSound sound = fixtures::readSound(extract(folder_ / "clip.mov").url);
    EXPECT_LT(loudness(sound, 0.0, 0.66), 0.001);
    EXPECT_NEAR(heardAt(sound, 0.8).offsetSamples, 0.0, 1.0);
    EXPECT_NEAR(heardAt(sound, 3.2).offsetSamples, 0.0, 1.0);
    EXPECT_GT(heardAt(sound, 3.2).correlation, 0.98);
}

TEST_F(Extraction, whatLiesBeforeTimeZeroIsLeftOut) {
    AudioSpec early;
    early.startSeconds = -0.4;
    fixtures::writeClip(clip(early), folder_ / "clip.mov");
    const DecodedSound sound = fixtures::readSound(extract(folder_ / "clip.mov").url);
    EXPECT_NEAR(heardAt(sound, 0.05).offsetSamples, 0.0, 1.0);
    EXPECT_NEAR(heardAt(sound, 3.2).offsetSamples, 0.0, 1.0);
    EXPECT_GT(heardAt(sound, 0.05).correlation, 0.98);
}

TEST_F(Extraction, anEditListThatCutsTheSoundIsFollowed) {
    fixtures::writeClip(clip({}), folder_ / "clip.mov");
    fixtures::setEditList(folder_ / "clip.mov", 1, {{0.5, std::nullopt}, {2.0, 1.0 + 1'024.0 / 48'000}});
    const DecodedSound sound = fixtures::readSound(extract(folder_ / "clip.mov").url);
    // 1 s in the source's own time is heard at 0.5 s: half a second early.
    const auto first = static_cast<std::int64_t>(48'000);
    const auto found =
        locate(std::span(sound.samples).subspan(48'000, 9'600), AudioCode(1), 48'000, first + 24'000, 5'000);
    EXPECT_NEAR(found.offsetSamples, 0.0, 1.0);
    EXPECT_GT(found.correlation, 0.98);
    EXPECT_LT(loudness(sound, 0.0, 0.47), 0.001);
}

TEST_F(Extraction, aGapIsSilenceAndWhatFollowsKeepsItsPlace) {
    AudioSpec gapped;
    gapped.gapsSeconds = {{1.5, 2.5}};
    fixtures::writeClip(clip(gapped), folder_ / "clip.mov");
    const DecodedSound sound = fixtures::readSound(extract(folder_ / "clip.mov").url);
    EXPECT_NEAR(heardAt(sound, 1.0).offsetSamples, 0.0, 1.0);
    EXPECT_LT(loudness(sound, 1.6, 2.4), 0.001);
    EXPECT_NEAR(heardAt(sound, 2.7).offsetSamples, 0.0, 1.0);
    EXPECT_GT(heardAt(sound, 2.7).correlation, 0.98);
}

TEST_F(Extraction, otherCodecsAreEncodedInPlace) {
    for (const int rate : {8'000, 44'100, 48'000, 96'000}) {
        AudioSpec plain;
        plain.codec = "pcm_s16le";
        plain.rateHz = rate;
        fixtures::writeClip(clip(plain), folder_ / "clip.mov");
        const ExtractedAudio audio = extract(folder_ / "clip.mov");
        EXPECT_EQ(fixtures::readFacts(audio.url).first("audio")->codec, "aac");
        const DecodedSound sound = fixtures::readSound(audio.url);
        EXPECT_NEAR(heardAt(sound, 2.0, 1, rate).offsetSamples, 0.0, 1.0) << rate;
        EXPECT_GT(heardAt(sound, 2.0, 1, rate).correlation, 0.95) << rate;
    }
}

TEST_F(Extraction, severalTracksAreMixed) {
    ClipSpec spec = clip({});
    spec.audio.push_back(spec.audio[0]);
    spec.audio[1].seed = 50;
    fixtures::writeClip(spec, folder_ / "clip.mov");
    const ExtractedAudio audio = extract(folder_ / "clip.mov");
    EXPECT_EQ(fixtures::readFacts(audio.url).streams.size(), 1U);
    const DecodedSound sound = fixtures::readSound(audio.url);
    for (const std::uint32_t seed : {1U, 50U}) {
        EXPECT_NEAR(heardAt(sound, 2.0, seed).offsetSamples, 0.0, 1.0) << seed;
        EXPECT_GT(heardAt(sound, 2.0, seed).correlation, 0.5) << seed;
    }
}

TEST_F(Extraction, matroskaAndTransportStreamsKeepTheirSoundBesideTheirPictures) {
    for (const auto& [container, name] :
         {std::pair{"matroska", "clip.mkv"}, std::pair{"mpegts", "clip.ts"}}) {
        ClipSpec spec = clip({});
        spec.container = container;
        fixtures::writeClip(spec, folder_ / name);
        const auto facts = fixtures::readFacts(folder_ / name);
        const double shift = facts.first("video")->presentationTimes.front() - facts.startSeconds;
        const DecodedSound sound = fixtures::readSound(extract(folder_ / name).url);
        EXPECT_NEAR(heardAt(sound, 2.0).offsetSamples, shift * sound.rateHz, 50.0) << container;
        EXPECT_GT(heardAt(sound, 2.0).correlation, 0.97) << container;
    }
}

TEST_F(Extraction, progressRisesThroughTheMainQueueToExactlyOne) {
    AudioSpec plain;
    plain.codec = "pcm_s16le";
    plain.durationSeconds = 60.0;
    fixtures::writeClip(clip(plain), folder_ / "clip.mov");
    extract(folder_ / "clip.mov");
    ASSERT_GT(progress_.size(), 3U);
    EXPECT_TRUE(std::is_sorted(progress_.begin(), progress_.end()));
    EXPECT_GE(progress_.front(), 0.0);
    EXPECT_EQ(progress_.back(), 1.0);
}

TEST_F(Extraction, aVideoWithoutSoundIsRefusedInWords) {
    ClipSpec spec = clip({});
    spec.audio.clear();
    fixtures::writeClip(spec, folder_ / "clip.mov");
    try {
        extract(folder_ / "clip.mov");
        FAIL() << "a silent video has no sound to take out";
    } catch (const ProcessingError& error) {
        EXPECT_STREQ(error.what(), "The selected video has no audio track.");
    }
    EXPECT_TRUE(progress_.empty());
}

TEST_F(Extraction, encryptedSoundIsRefusedInsteadOfCopied) {
    ClipSpec spec = clip({});
    spec.container = "mp4";
    spec.muxerOptions = {{"encryption_scheme", "cenc-aes-ctr"},
                         {"encryption_key", "00112233445566778899aabbccddeeff"},
                         {"encryption_kid", "00112233445566778899aabbccddee01"}};
    fixtures::writeClip(spec, folder_ / "locked.mp4");
    try {
        extract(folder_ / "locked.mp4");
        FAIL() << "nothing was thrown";
    } catch (const MediaError& error) {
        EXPECT_NE(std::string(error.what()).find("is encrypted"), std::string::npos) << error.what();
    }
}

TEST_F(Extraction, twoRunsWriteTwoFiles) {
    fixtures::writeClip(clip({}), folder_ / "clip.mov");
    const auto first = extract(folder_ / "clip.mov").url;
    const auto second = extract(folder_ / "clip.mov").url;
    EXPECT_NE(first, second);
    EXPECT_TRUE(std::filesystem::exists(first));
    EXPECT_TRUE(std::filesystem::exists(second));
    EXPECT_EQ(first.parent_path(), std::filesystem::temp_directory_path());
}

TEST_F(Extraction, aStopEndsItAsCancelled) {
    fixtures::writeClip(clip({}), folder_ / "clip.mov");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(extract(folder_ / "clip.mov", stop.get_token()), CancellationError);
    queue_.runAll();
    EXPECT_TRUE(progress_.empty());
}

}  // namespace
}  // namespace korvane::sources

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
