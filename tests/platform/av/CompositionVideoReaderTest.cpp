#include <gtest/gtest.h>

#include <random>

#include "platform/av/CompositionReader.h"
#include "platform/ffmpeg/CanvasPictures.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/fixtures/TestPattern.h"

namespace korvane {
namespace {

std::filesystem::path clip() {
    return fixtures::cachedClip("reader.mov", [](const auto& to) {
        fixtures::ClipSpec spec;
        spec.video = {fixtures::VideoSpec::constantRate({30, 1}, 20.0)};
        spec.video[0].bFrames = 2;
        fixtures::writeClip(spec, to);
    });
}

struct Reel {
    std::shared_ptr<Composition> composition = std::make_shared<Composition>();
    VideoComposition video;
};

/// Ten pieces of the source in no order, on a canvas of the source's own size.
Reel reel() {
    Asset asset(clip());
    const AssetTrack track = asset.loadTracks(MediaType::video).at(0);
    Reel r;
    CompositionTrack* target = r.composition->addMutableTrack(MediaType::video);
    MediaTime at;
    for (const int second : {3, 11, 1, 17, 5, 6, 2, 15, 9, 13}) {
        const TimeRange source{{second * 600 + 7, 600}, {100 + second, 600}};
        target->insertTimeRange(source, track, at);
        at = at + source.duration;
    }
    r.video.renderSize = track.naturalSize;
    r.video.frameDuration = MediaTime(1, 30);
    r.video.instructions.push_back({{kZeroTime, at}, {{target->trackID(), {}}}});
    return r;
}

int shownAt(CompositionVideoReader& reader, MediaTime t) {
    const auto canvas = reader.render(reader.pictureAt(t));
    const CanvasPlane luma = planeOf(*canvas, 0);
    const auto number = fixtures::readFrameNumber({luma.data, luma.strideBytes, luma.width, luma.height});
    return number ? number->number : -1;
}

int expectedAt(const Reel& r, MediaTime t) {
    for (const TrackSegment& s : r.composition->tracks().at(0)->segments())
        if (s.target.contains(t))
            return static_cast<int>((s.source.start + (t - s.target.start)).toUnits(30, Rounding::down));
    return -1;
}

TEST(CompositionVideoReader, showsTheSourcePictureThatTheTimelineCallsForInAnyOrder) {
    const Reel r = reel();
    CompositionVideoReader reader(r.composition, r.video, 1.0, 2, {});
    std::mt19937 random(2);
    const auto end = r.composition->duration();
    for (MediaTime t; t < end; t = t + MediaTime(1, 30))
        ASSERT_EQ(shownAt(reader, t), expectedAt(r, t)) << t.toString();
    for (int i = 0; i < 100; ++i) {
        const MediaTime t(static_cast<std::int64_t>(random() % static_cast<unsigned>(end.toUnits(6000) - 1)),
                          6000);
        ASSERT_EQ(shownAt(reader, t), expectedAt(r, t)) << t.toString();
    }
}

TEST(CompositionVideoReader, behindTheEndTheCanvasIsBlack) {
    const Reel r = reel();
    CompositionVideoReader reader(r.composition, r.video, 1.0, 1, {});
    const auto canvas = reader.render(reader.pictureAt(r.composition->duration()));
    const CanvasPlane luma = planeOf(*canvas, 0);
    EXPECT_EQ(luma.data[40 * luma.strideBytes + 40], 16);
}

TEST(CompositionVideoReader, aSmallerCanvasShowsTheSamePictureSmaller) {
    const Reel r = reel();
    CompositionVideoReader reader(r.composition, r.video, 0.5, 1, {});
    EXPECT_EQ(reader.width(), 90);
    EXPECT_EQ(reader.height(), 160);
    for (const MediaTime t : {MediaTime(0, 1), MediaTime(1, 2), MediaTime(6, 5)})
        EXPECT_EQ(shownAt(reader, t), expectedAt(r, t)) << t.toString();
}

TEST(CompositionVideoReader, aPictureThatIsShownAgainIsTheSameAgain) {
    // Output three times as fast as the source: each picture comes three times.
    const Reel r = reel();
    CompositionVideoReader reader(r.composition, r.video, 1.0, 1, {});
    for (std::int64_t i = 0; i < 30; ++i)
        ASSERT_EQ(shownAt(reader, MediaTime(i, 90)), expectedAt(r, MediaTime(i, 90))) << i;
}

}  // namespace
}  // namespace korvane
