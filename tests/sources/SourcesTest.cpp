// One reel out of each odd source, judged by reading the written file alone: which frames, which way up,
// which colours, which sound, and what the streams say about themselves.

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <vector>

#include "editor/VideoEditor.h"
#include "tests/exactness/ReelModel.h"
#include "tests/fixtures/AudioCode.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipReader.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/fixtures/FileSurgery.h"
#include "tests/sources/SourceCase.h"
#include "tests/support/CollectingMainQueue.h"

namespace korvane::sources {
namespace {

using exactness::ReelModel;
using fixtures::DecodedPicture;
using fixtures::FileFacts;
using fixtures::Rgb;
using fixtures::StreamFacts;

class Sources : public testing::TestWithParam<SourceCase> {
  protected:
    void makeReel();
    std::vector<double> sourceTimes() const;
    double zeroSeconds(const FileFacts& facts) const;
    void checkStreams(const FileFacts& reel) const;
    void checkPictures(int rate) const;
    void checkColors(const DecodedPicture& picture) const;
    void checkSound() const;
    void checkTrack(const fixtures::DecodedSound& sound, const fixtures::AudioSpec& track) const;
    bool isIsoMedia() const { return source().clip.container == "mov" || source().clip.container == "mp4"; }

    const SourceCase& source() const { return GetParam(); }
    const fixtures::ScratchFolder folder_;
    const std::filesystem::path clip_ = folder_ / GetParam().fileName;
    const std::filesystem::path reel_ = folder_ / "reel.mp4";
    std::vector<SpeechSegment> words_;
};

void Sources::makeReel() {
    fixtures::writeClip(source().clip, clip_);
    if (source().surgery)
        source().surgery(clip_);
    for (const auto& [start, end] : source().words)
        words_.emplace_back("word", start, end);
    SubtitleSettings settings;
    CollectingMainQueue queue;
    VideoEditor(queue, silentLog()).exportVideo(clip_, words_, settings, reel_, [](double) {}, {});
}

void Sources::checkStreams(const FileFacts& reel) const {
    const StreamFacts* video = reel.first("video");
    ASSERT_TRUE(video);
    EXPECT_EQ(video->codec, "h264");
    EXPECT_EQ(video->profile, "High");
    EXPECT_EQ(video->pixelFormat, "yuv420p");
    EXPECT_EQ(video->widthPx, 1080);
    EXPECT_EQ(video->heightPx, 1920);
    EXPECT_EQ(video->matrix, "bt709");
    EXPECT_EQ(video->primaries, "bt709");
    EXPECT_EQ(video->transfer, "bt709");
    EXPECT_EQ(video->range, "tv");
    EXPECT_TRUE(video->closedGops);
    if (source().outputRate > 0) {
        EXPECT_DOUBLE_EQ(video->averageRate.value(), source().outputRate);
    }
    EXPECT_EQ(reel.streams.size(), source().clip.audio.empty() ? 1U : 2U);
    if (source().clip.audio.empty())
        return;
    const StreamFacts* audio = reel.first("audio");
    ASSERT_TRUE(audio);
    EXPECT_EQ(audio->codec, "aac");
    EXPECT_EQ(audio->channels, source().outputChannels);
    const int rate = source().clip.audio[0].rateHz;
    if (rate == 44'100 || rate == 48'000) {
        EXPECT_EQ(audio->rateHz, rate);
    }
    EXPECT_TRUE(audio->rateHz == 44'100 || audio->rateHz == 48'000) << audio->rateHz;
}

/// Where time 0 lies on the container's own time line: a file that starts later starts with its first packet.
double Sources::zeroSeconds(const FileFacts& facts) const {
    return isIsoMedia() ? 0.0 : std::max(0.0, facts.startSeconds);
}

/// When each frame of the source is shown, by the times that the file's own packets have.
std::vector<double> Sources::sourceTimes() const {
    const FileFacts facts = fixtures::readFacts(clip_);
    const StreamFacts& video = *facts.first("video");
    const fixtures::VideoSpec& spec = source().clip.video[0];
    std::vector<double> times = video.presentationTimes;
    if (times.size() != spec.presentationTimes.size()) {
        // Program streams don't stamp every picture.
        times.clear();
        for (const std::int64_t time : spec.presentationTimes)
            times.push_back(video.startSeconds + static_cast<double>(time - spec.presentationTimes.front()) *
                                                     spec.timeBase.value());
    }
    for (double& time : times)
        time -= zeroSeconds(facts);
    return times;
}

void Sources::checkPictures(int rate) const {
    const ReelModel model(words_);
    const std::vector<double> times = sourceTimes();
    const auto frameAt = [&](double seconds) -> std::optional<int> {
        if (source().frameAt)
            return source().frameAt(seconds);
        const auto next = std::upper_bound(times.begin(), times.end(), seconds + 1e-6);
        return std::max(0, static_cast<int>(next - times.begin()) - 1);
    };
    int count = 0;
    int wrong = 0;
    fixtures::readPictures(reel_, [&](const DecodedPicture& picture) {
        const int frame = count++;
        if (frame >= model.frameCount(rate))
            return true;
        const double seconds = model.sourceSeconds(frame, rate);
        const auto wanted = frameAt(seconds);
        const auto seen = fixtures::readFrameNumber(picture.luma);
        EXPECT_TRUE(seen) << "frame " << frame << " has no readable number";
        if (wanted && seen && seen->number != *wanted && ++wrong <= 5)
            ADD_FAILURE() << "frame " << frame << " at source time " << seconds << " shows source frame "
                          << seen->number << " instead of " << *wanted;
        if (frame == model.frameCount(rate) / 2)
            checkColors(picture);
        return true;
    });
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(count, model.frameCount(rate));
}

void Sources::checkColors(const DecodedPicture& picture) const {
    for (const fixtures::Corner corner : fixtures::kCorners) {
        const Rgb seen = fixtures::meanRgb709(picture, fixtures::cornerRect(corner));
        const Rgb wanted = fixtures::cornerColor(corner);
        const auto text = [&] {
            return "corner " + std::to_string(static_cast<int>(corner)) + " is " + std::to_string(seen.red) +
                   " " + std::to_string(seen.green) + " " + std::to_string(seen.blue);
        };
        switch (source().colors) {
            case ColorCheck::exact:
                EXPECT_NEAR(seen.red, wanted.red * 255.0, source().colorTolerance) << text();
                EXPECT_NEAR(seen.green, wanted.green * 255.0, source().colorTolerance) << text();
                EXPECT_NEAR(seen.blue, wanted.blue * 255.0, source().colorTolerance) << text();
                break;
            case ColorCheck::grey: {
                const double level =
                    255.0 * (0.2126 * wanted.red + 0.7152 * wanted.green + 0.0722 * wanted.blue);
                EXPECT_NEAR(seen.red, level, source().colorTolerance) << text();
                EXPECT_NEAR(seen.green, level, source().colorTolerance) << text();
                EXPECT_NEAR(seen.blue, level, source().colorTolerance) << text();
                break;
            }
            case ColorCheck::plausible: {
                // Each component that is on stands clearly above each that is off.
                const double on[] = {seen.red, seen.green, seen.blue};
                const bool isOn[] = {wanted.red > 0.5, wanted.green > 0.5, wanted.blue > 0.5};
                for (int i = 0; i < 3; ++i)
                    for (int k = 0; k < 3; ++k)
                        if (isOn[i] && !isOn[k]) {
                            EXPECT_GT(on[i], on[k] + 50.0) << text();
                        }
                break;
            }
        }
    }
    const double white = fixtures::innerMean(picture.luma, fixtures::codeCellRect(0));
    const double black = fixtures::innerMean(picture.luma, fixtures::codeCellRect(1));
    if (source().colors == ColorCheck::plausible) {
        EXPECT_GT(white, 160.0);
        EXPECT_LT(black, 32.0);
        return;
    }
    EXPECT_NEAR(white, 235.0, 3.0);
    EXPECT_NEAR(black, 16.0, 3.0);
}

/// Left and right of a track's sound in the reel, word by word.
void Sources::checkTrack(const fixtures::DecodedSound& sound, const fixtures::AudioSpec& track) const {
    const ReelModel model(words_);
    const FileFacts facts = fixtures::readFacts(clip_);
    // Containers that can't start before 0 move pictures and sound alike.
    const double shift = isIsoMedia()
                             ? 0.0
                             : facts.first("video")->startSeconds - zeroSeconds(facts) -
                                   static_cast<double>(source().clip.video[0].presentationTimes.front()) *
                                       source().clip.video[0].timeBase.value();
    for (std::size_t i = 0; i < model.words().size(); ++i) {
        const double start = static_cast<double>(model.words()[i].source) / 600.0;
        const double length = static_cast<double>(model.words()[i].length) / 600.0;
        if (start < source().soundFrom || start + length > source().soundTo)
            continue;
        const std::int64_t first = model.firstSample(i, sound.rateHz);
        const std::int64_t expected = model.firstSourceSample(i, sound.rateHz) -
                                      std::llround((shift + source().soundDelaySeconds) * sound.rateHz);
        const auto size =
            static_cast<std::size_t>(length * sound.rateHz) * static_cast<std::size_t>(sound.channels);
        const auto ramp = static_cast<std::size_t>(sound.rateHz / 40);
        for (int channel = 0; channel < sound.channels; ++channel) {
            const auto from = static_cast<std::size_t>(first * sound.channels + channel);
            ASSERT_LE(from + size, sound.samples.size() + 2'048U * static_cast<std::size_t>(sound.channels));
            const auto heard =
                std::span(sound.samples).subspan(from, std::min(size, sound.samples.size() - from));
            const fixtures::AudioCode code(
                track.seed + static_cast<std::uint32_t>(track.channels > 1 ? channel : 0),
                fixtures::AudioCode::latticeFor(track.rateHz));
            const auto found = locate(heard, code, sound.rateHz, expected, 3'000, sound.channels);
            EXPECT_NEAR(found.offsetSamples, 0.0, source().soundToleranceSamples)
                << "word " << i << ", channel " << channel;
            const bool alone = track.channels <= 2 && source().clip.audio.size() == 1;
            EXPECT_GT(found.correlation, alone ? 0.9 : 0.5) << "word " << i << ", channel " << channel;
            if (alone) {
                const auto inside =
                    heard.subspan(ramp * static_cast<std::size_t>(sound.channels),
                                  heard.size() - 2 * ramp * static_cast<std::size_t>(sound.channels));
                const auto louder = locate(inside, code, sound.rateHz,
                                           expected + static_cast<std::int64_t>(ramp), 100, sound.channels);
                // MP3 comes out of its encoder 5 % softer.
                EXPECT_NEAR(louder.gain, 1.0, 0.07) << "word " << i << ", channel " << channel;
            }
        }
    }
}

void Sources::checkSound() const {
    if (source().clip.audio.empty())
        return;
    const fixtures::DecodedSound sound = fixtures::readSound(reel_);
    for (const fixtures::AudioSpec& track : source().clip.audio)
        checkTrack(sound, track);
    EXPECT_NEAR(static_cast<double>(sound.frames()) / sound.rateHz, ReelModel(words_).reelSeconds(), 0.025);
}

TEST_P(Sources, makesAReelOfTheRightFramesColoursAndSound) {
    ASSERT_NO_THROW(makeReel());
    const FileFacts facts = fixtures::readFacts(reel_);
    checkStreams(facts);
    const double rate = facts.first("video")->averageRate.value();
    ASSERT_EQ(rate, std::floor(rate));
    checkPictures(static_cast<int>(rate));
    checkSound();
    const auto boxes = fixtures::topLevelBoxes(reel_);
    EXPECT_LT(std::find(boxes.begin(), boxes.end(), "moov"), std::find(boxes.begin(), boxes.end(), "mdat"));
}

const auto nameOf = [](const auto& parameter) { return parameter.param.name; };
INSTANTIATE_TEST_SUITE_P(Pictures, Sources, testing::ValuesIn(pictureCases()), nameOf);
INSTANTIATE_TEST_SUITE_P(Codecs, Sources, testing::ValuesIn(codecCases()), nameOf);
INSTANTIATE_TEST_SUITE_P(Times, Sources, testing::ValuesIn(timeCases()), nameOf);
INSTANTIATE_TEST_SUITE_P(Sounds, Sources, testing::ValuesIn(soundCases()), nameOf);

}  // namespace
}  // namespace korvane::sources

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
