#include "platform/ffmpeg/VideoDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "platform/ffmpeg/MediaError.h"
#include "platform/ffmpeg/MediaProbe.h"
#include "platform/tasks/Cancellation.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"

namespace korvane {
namespace {

using fixtures::ClipSpec;
using fixtures::VideoSpec;

struct DecoderCase {
    std::string name;
    ClipSpec clip;
};

void PrintTo(const DecoderCase& c, std::ostream* out) {
    *out << c.name;
}

DecoderCase constantRate(const std::string& name, fixtures::Ratio rate, int gop, int bFrames,
                         const std::string& container) {
    VideoSpec video = VideoSpec::constantRate(rate, 8.0);
    video.widthPx = 90;
    video.heightPx = 160;
    video.gopFrames = gop;
    video.bFrames = bFrames;
    ClipSpec clip;
    clip.video = {video};
    clip.container = container;
    return {name, clip};
}

/// Times with stretches in which nothing moves, as screen recorders write them.
DecoderCase variableRate() {
    DecoderCase c = constantRate("variable", {30, 1}, 40, 3, "mov");
    VideoSpec& video = c.clip.video.front();
    video.timeBase = {1, 1000};
    std::mt19937 random(5);
    std::int64_t t = 0;
    for (std::int64_t& time : video.presentationTimes) {
        time = t;
        t += random() % 5 == 0 ? 300 + random() % 900 : 10 + random() % 40;
    }
    return c;
}

std::vector<DecoderCase> decoderCases() {
    return {constantRate("everyFrameKey", {25, 1}, 1, 0, "mov"),
            constantRate("longGroups", {30, 1}, 250, 3, "mp4"),
            constantRate("shortGroups", {30000, 1001}, 15, 2, "mov"),
            constantRate("matroska", {30, 1}, 60, 2, "matroska"),
            constantRate("transport", {30, 1}, 30, 0, "mpegts"),
            variableRate()};
}

class VideoDecoding : public testing::TestWithParam<DecoderCase> {
  protected:
    std::filesystem::path path() const {
        return fixtures::cachedClip("decoder-" + GetParam().name + "." + extension(),
                                    [](const auto& to) { fixtures::writeClip(GetParam().clip, to); });
    }
    static std::string extension() {
        const std::string& c = GetParam().clip.container;
        return c == "matroska" ? "mkv" : c == "mpegts" ? "ts" : c;
    }
    const VideoSpec& video() const { return GetParam().clip.video.front(); }

    /// The number of the frame that must be shown at `t`: the last one at or before, else the first.
    int expected(MediaTime t) const {
        int shown = 0;
        for (std::size_t i = 0; i < video().presentationTimes.size(); ++i) {
            const MediaTime at(video().presentationTimes[i] * video().timeBase.num, video().timeBase.den);
            if (at <= t)
                shown = static_cast<int>(i);
        }
        return shown;
    }
};

/// Ticks of every picture of the file, by walking through it in small steps.
std::vector<std::int64_t> ticksInOrder(VideoDecoder& decoder, const VideoSpec& video) {
    std::vector<std::int64_t> ticks;
    for (std::int64_t time : video.presentationTimes)
        ticks.push_back(
            decoder.pictureAt(MediaTime(time * video.timeBase.num, video.timeBase.den) + MediaTime(1, 2000))
                .ticks);
    return ticks;
}

TEST_P(VideoDecoding, everyPictureIsFoundOnceOnTheWayForward) {
    const auto decoder = VideoDecoder::open(path(), 0, 2, {});
    const auto ticks = ticksInOrder(*decoder, video());
    EXPECT_TRUE(std::ranges::is_sorted(ticks));
    // Not the last one: the muxer gives it no length, so the file's edit list may leave it out.
    for (std::size_t i = 1; i + 1 < ticks.size(); ++i)
        EXPECT_NE(ticks[i - 1], ticks[i])
            << "picture " << i << " of " << ticks.size() << " at " << video().presentationTimes[i];
}

TEST_P(VideoDecoding, thePictureAtATimeDoesNotDependOnWhatWasAskedBefore) {
    const auto forward = VideoDecoder::open(path(), 0, 1, {});
    const auto ticks = ticksInOrder(*forward, video());
    const auto decoder = VideoDecoder::open(path(), 0, 2, {});
    std::mt19937 random(11);
    const double end =
        static_cast<double>(video().presentationTimes.back()) * video().timeBase.num / video().timeBase.den;
    std::uniform_real_distribution<double> anywhere(0.0, end + 0.5);
    double t = 0.0;
    for (int i = 0; i < 150; ++i) {
        // Short steps forward and jumps, as words come. Half a millisecond off every stamp that a coarse
        // clock rounds.
        t = random() % 3 == 0 ? anywhere(random)
                              : std::min(end, t + 0.02 * static_cast<double>(random() % 20));
        const MediaTime time = MediaTime::fromSeconds(std::floor(t * 600) / 600) + MediaTime(1, 1700);
        EXPECT_EQ(decoder->pictureAt(time).ticks, ticks[static_cast<std::size_t>(expected(time))])
            << time.toString();
    }
}

TEST_P(VideoDecoding, whatIsKnownOfAFileChangesNothingInItsPictures) {
    const auto known = probeMedia(path()).streams.at(0).known;
    const auto ticks = ticksInOrder(*VideoDecoder::open(path(), 0, 2, {}), video());
    EXPECT_EQ(ticksInOrder(*VideoDecoder::open(path(), 0, 2, {}, known), video()), ticks);
    for (std::size_t i = ticks.size(); i-- > 0; i -= std::min<std::size_t>(i, 30)) {
        const MediaTime time(video().presentationTimes[i] * video().timeBase.num, video().timeBase.den);
        EXPECT_EQ(VideoDecoder::open(path(), 0, 2, {}, known)->pictureAt(time + MediaTime(1, 2000)).ticks,
                  ticks[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, VideoDecoding, testing::ValuesIn(decoderCases()),
                         [](const auto& instance) { return instance.param.name; });

TEST(VideoDecoder, beforeTheFirstPictureStandsTheFirstAndBehindTheLastTheLast) {
    ClipSpec clip = constantRate("late", {30, 1}, 30, 0, "mov").clip;
    for (std::int64_t& time : clip.video.front().presentationTimes)
        time += 45;  // 1.5 s
    const fixtures::ScratchFolder folder;
    fixtures::writeClip(clip, folder / "late.mov");
    const auto decoder = VideoDecoder::open(folder / "late.mov", 0, 1, {});
    const auto first = decoder->pictureAt(MediaTime(3, 2)).ticks;
    EXPECT_EQ(decoder->pictureAt(kZeroTime).ticks, first);
    const auto last = decoder->pictureAt(MediaTime(100, 1)).ticks;
    EXPECT_GT(last, first);
    EXPECT_EQ(decoder->pictureAt(MediaTime(1000, 1)).ticks, last);
    EXPECT_EQ(decoder->pictureAt(kZeroTime).ticks, first);
}

TEST(VideoDecoder, aPictureIsShownFromItsVeryTimeOn) {
    const fixtures::ScratchFolder folder;
    fixtures::writeClip(constantRate("exact", {30000, 1001}, 30, 2, "mov").clip, folder / "exact.mov");
    const auto decoder = VideoDecoder::open(folder / "exact.mov", 0, 1, {});
    const MediaTime tenth(10 * 1001, 30000);
    const auto at = decoder->pictureAt(tenth).ticks;
    EXPECT_NE(decoder->pictureAt(tenth - MediaTime(1, 1'000'000)).ticks, at);
    EXPECT_EQ(decoder->pictureAt(tenth + MediaTime(1000, 30000)).ticks, at);
    EXPECT_NE(decoder->pictureAt(tenth + MediaTime(1001, 30000)).ticks, at);
}

TEST(VideoDecoder, aStopEndsTheSearch) {
    const fixtures::ScratchFolder folder;
    fixtures::writeClip(constantRate("stop", {30, 1}, 250, 2, "mov").clip, folder / "stop.mov");
    std::stop_source stop;
    const auto decoder = VideoDecoder::open(folder / "stop.mov", 0, 1, stop.get_token());
    decoder->pictureAt(kZeroTime);
    stop.request_stop();
    EXPECT_THROW(decoder->pictureAt(MediaTime(6, 1)), CancellationError);
}

TEST(VideoDecoder, aTrackThatIsNotThereIsAnError) {
    const fixtures::ScratchFolder folder;
    fixtures::writeClip(constantRate("tracks", {30, 1}, 30, 0, "mov").clip, folder / "tracks.mov");
    EXPECT_THROW(VideoDecoder::open(folder / "tracks.mov", 7, 1, {}), MediaError);
}

}  // namespace
}  // namespace korvane
