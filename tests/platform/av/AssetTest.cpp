#include "platform/av/Asset.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "platform/ffmpeg/MediaError.h"
#include "platform/tasks/Cancellation.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/fixtures/FileSurgery.h"

namespace korvane {
namespace {

TEST(Asset, tellsTracksInTheFilesOrderWithoutTheCoverPicture) {
    const fixtures::ScratchFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({30000, 1001}, 2.0)};
    clip.audio = {fixtures::AudioSpec{}, fixtures::AudioSpec{}};
    clip.audio[1].channels = 2;
    clip.coverPicture = true;
    clip.container = "mp4";
    fixtures::writeClip(clip, folder / "clip.mp4");
    Asset asset(folder / "clip.mp4");
    EXPECT_TRUE(asset.isReadable());
    EXPECT_TRUE(asset.isPlayable());
    const auto video = asset.loadTracks(MediaType::video);
    ASSERT_EQ(video.size(), 1U);
    EXPECT_EQ(video[0].naturalSize, (Size{180, 320}));
    EXPECT_NEAR(video[0].nominalFrameRate, 29.97, 0.01);
    const auto audio = asset.loadTracks(MediaType::audio);
    ASSERT_EQ(audio.size(), 2U);
    EXPECT_EQ(audio[0].channels, 1);
    EXPECT_EQ(audio[1].channels, 2);
    EXPECT_NEAR(asset.loadDuration().seconds(), 4.0, 0.05);
}

TEST(Asset, soundThatCannotBeDecodedIsATrackOnlyWhereThereIsNoOther) {
    const fixtures::ScratchFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({30, 1}, 1.0)};
    clip.audio = {fixtures::AudioSpec{}};
    clip.audio[0].codec = "pcm_s16le";
    fixtures::writeClip(clip, folder / "one.mov");
    fixtures::setSampleFormat(folder / "one.mov", 1, "apac");
    Asset one(folder / "one.mov");
    EXPECT_EQ(one.loadTracks(MediaType::audio).size(), 1U);
    EXPECT_TRUE(one.isReadable());
    EXPECT_FALSE(one.isPlayable());

    clip.audio.push_back(fixtures::AudioSpec{});
    fixtures::writeClip(clip, folder / "two.mov");
    fixtures::setSampleFormat(folder / "two.mov", 1, "apac");
    Asset two(folder / "two.mov");
    const auto audio = two.loadTracks(MediaType::audio);
    ASSERT_EQ(audio.size(), 1U);
    EXPECT_EQ(audio[0].streamIndex, 2);
    EXPECT_TRUE(two.isPlayable());
}

TEST(Asset, aFileThatIsNoVideoIsNotReadableAndSaysWhyWhenItLoads) {
    const fixtures::ScratchFolder folder;
    Asset none(folder / "none.mp4");
    EXPECT_FALSE(none.isReadable());
    EXPECT_FALSE(none.isPlayable());
    EXPECT_THROW(none.loadTracks(MediaType::video), MediaError);
    EXPECT_THROW(none.loadDuration(), MediaError);
}

TEST(Asset, aStopEndsItsLoading) {
    std::stop_source stop;
    stop.request_stop();
    const fixtures::ScratchFolder folder;
    Asset asset(folder / "any.mp4", stop.get_token());
    EXPECT_THROW(asset.loadDuration(), CancellationError);
}

TEST(Asset, pixelsThatAreNotSquareCountInTheNaturalSize) {
    const fixtures::ScratchFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 1.0)};
    clip.video[0].pixelAspect = {4, 3};
    fixtures::writeClip(clip, folder / "wide.mov");
    Asset asset(folder / "wide.mov");
    EXPECT_NEAR(asset.loadTracks(MediaType::video).at(0).naturalSize.width, 240.0, 0.01);
}

TEST(Asset, everyOrientationStandsAtTheOrigin) {
    const fixtures::ScratchFolder folder;
    for (int orientation = 1; orientation <= 8; ++orientation) {
        fixtures::ClipSpec clip;
        clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 1.0)};
        clip.video[0].orientation = orientation;
        fixtures::writeClip(clip, folder / "turned.mov");
        Asset asset(folder / "turned.mov");
        const AssetTrack track = asset.loadTracks(MediaType::video).at(0);
        const auto m =
            fixtures::orientationMatrix(orientation, track.naturalSize.width, track.naturalSize.height);
        const AffineTransform expected{double(m.a), double(m.b), double(m.c), double(m.d), m.tx, m.ty};
        EXPECT_EQ(track.preferredTransform, expected) << orientation;
    }
}

TEST(Asset, aTiltedPictureStandsAsTheNearestQuarterTurnSays) {
    const fixtures::ScratchFolder folder;
    fixtures::ClipSpec clip;
    clip.video = {fixtures::VideoSpec::constantRate({25, 1}, 1.0)};
    // Which way each is seen: signs of a, b, c, d, and where the corner stands.
    const std::pair<double, AffineTransform> cases[] = {
        {0.0, {1.0, 0.0, 0.0, 1.0, 0.0, 0.0}},         {3.0, {1.0, 0.0, 0.0, 1.0, 0.0, 0.0}},
        {90.0, {0.0, 1.0, -1.0, 0.0, 320.0, 0.0}},     {60.0, {0.0, 1.0, -1.0, 0.0, 320.0, 0.0}},
        {170.0, {-1.0, 0.0, 0.0, -1.0, 180.0, 320.0}}, {-80.0, {0.0, -1.0, 1.0, 0.0, 0.0, 180.0}},
    };
    for (const auto& [degrees, upright] : cases) {
        fixtures::writeClip(clip, folder / "tilted.mov");
        fixtures::setRotation(folder / "tilted.mov", 0, degrees);
        Asset asset(folder / "tilted.mov");
        const AffineTransform t = asset.loadTracks(MediaType::video).at(0).preferredTransform;
        const double size = std::abs(t.a) + std::abs(t.b);
        EXPECT_NEAR(t.a / size, upright.a, 1e-9) << degrees;
        EXPECT_NEAR(t.b / size, upright.b, 1e-9) << degrees;
        EXPECT_NEAR(t.c / size, upright.c, 1e-9) << degrees;
        EXPECT_NEAR(t.d / size, upright.d, 1e-9) << degrees;
        EXPECT_NEAR(t.tx / size, upright.tx, 1e-6) << degrees;
        EXPECT_NEAR(t.ty / size, upright.ty, 1e-6) << degrees;
    }
}

}  // namespace
}  // namespace korvane
