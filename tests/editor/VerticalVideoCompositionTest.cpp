#include <gtest/gtest.h>

#include <limits>

#include "tests/editor/EditorFixture.h"

namespace korvane {
namespace {

constexpr AffineTransform kUpright{};
constexpr AffineTransform kQuarterTurn{0.0, 1.0, -1.0, 0.0, 1080.0, 0.0};

struct VerticalVideoCompositionTest : testing::Test {
    EditorFixture fixture;
    CompositionTrack track{7, MediaType::video};

    VideoComposition make(Size naturalSize, const AffineTransform& transform = kUpright, float rate = 30.0F) {
        return fixture.editor.makeVideoComposition(track, naturalSize, transform, rate, MediaTime(1950, 600));
    }
    AffineTransform transformOf(Size naturalSize, const AffineTransform& transform = kUpright) {
        return make(naturalSize, transform).instructions.at(0).layerInstructions.at(0).transform;
    }
};

TEST_F(VerticalVideoCompositionTest, aWidePictureFillsTheHeightAndLosesItsSides) {
    const AffineTransform placed = transformOf({1920.0, 1080.0});
    const double scale = 1920.0 / 1080.0;
    EXPECT_DOUBLE_EQ(placed.a, scale);
    EXPECT_DOUBLE_EQ(placed.d, scale);
    EXPECT_DOUBLE_EQ(placed.tx, (1080.0 - 1920.0 * scale) / 2.0);
    EXPECT_NEAR(placed.tx, -1166.6667, 1e-4);
    EXPECT_DOUBLE_EQ(placed.ty, 0.0);
    EXPECT_EQ(placed.b, 0.0);
    EXPECT_EQ(placed.c, 0.0);
}

TEST_F(VerticalVideoCompositionTest, aPictureOfTheCanvasSizeStaysAsItIs) {
    EXPECT_EQ(transformOf({1080.0, 1920.0}), AffineTransform{});
}

TEST_F(VerticalVideoCompositionTest, aTurnedPhonePictureStandsUprightAndFillsTheCanvas) {
    const AffineTransform placed = transformOf({1920.0, 1080.0}, kQuarterTurn);
    EXPECT_EQ(placed, kQuarterTurn);
    EXPECT_EQ(placed.apply({0.0, 0.0}), (Point{1080.0, 0.0}));
    EXPECT_EQ(placed.apply({1920.0, 1080.0}), (Point{0.0, 1920.0}));
}

TEST_F(VerticalVideoCompositionTest, aSmallUprightPictureIsScaledUpExactly) {
    EXPECT_EQ(transformOf({720.0, 1280.0}), (AffineTransform{1.5, 0.0, 0.0, 1.5, 0.0, 0.0}));
}

TEST_F(VerticalVideoCompositionTest, aSquareIsCentred) {
    EXPECT_EQ(transformOf({1000.0, 1000.0}), (AffineTransform{1.92, 0.0, 0.0, 1.92, -420.0, 0.0}));
}

TEST_F(VerticalVideoCompositionTest, aTallPictureLosesTopAndBottom) {
    EXPECT_EQ(transformOf({540.0, 1920.0}), (AffineTransform{2.0, 0.0, 0.0, 2.0, 0.0, -960.0}));
}

TEST_F(VerticalVideoCompositionTest, orientationComesFirstThenScaleThenShift) {
    const AffineTransform quarterTurnOfSmall{0.0, 1.0, -1.0, 0.0, 720.0, 0.0};
    const AffineTransform placed = transformOf({1280.0, 720.0}, quarterTurnOfSmall);
    EXPECT_EQ(placed.apply({0.0, 0.0}), (Point{1080.0, 0.0}));
    EXPECT_EQ(placed.apply({0.0, 720.0}), (Point{0.0, 0.0}));
    EXPECT_EQ(placed.apply({1280.0, 720.0}), (Point{0.0, 1920.0}));
}

TEST_F(VerticalVideoCompositionTest, oneInstructionCoversTheWholeTimelineAndItsTrack) {
    const VideoComposition made = make({1920.0, 1080.0});
    EXPECT_EQ(made.renderSize, (Size{1080.0, 1920.0}));
    EXPECT_EQ(made.renderSize, fixture.editor.targetSize);
    ASSERT_EQ(made.instructions.size(), 1U);
    EXPECT_EQ(made.instructions[0].timeRange, (TimeRange{kZeroTime, MediaTime(1950, 600)}));
    ASSERT_EQ(made.instructions[0].layerInstructions.size(), 1U);
    EXPECT_EQ(made.instructions[0].layerInstructions[0].trackID, 7);
    EXPECT_FALSE(made.animationTool.has_value());
}

TEST_F(VerticalVideoCompositionTest, framesPerSecondAreTheNearestWholeNumberAndAtLeastOne) {
    const struct {
        float rate;
        int framesPerSecond;
    } cases[] = {{0.0F, 1},   {0.5F, 1},     {-5.0F, 1},   {1.0F, 1},    {1.5F, 2},     {2.5F, 3},
                 {24.0F, 24}, {23.976F, 24}, {29.97F, 30}, {59.94F, 60}, {119.88F, 120}};
    for (const auto& [rate, framesPerSecond] : cases) {
        const MediaTime frame = make({1920.0, 1080.0}, kUpright, rate).frameDuration;
        EXPECT_EQ(frame.value(), 1) << rate;
        EXPECT_EQ(frame.timescale(), framesPerSecond) << rate;
    }
}

TEST_F(VerticalVideoCompositionTest, logsWhatItWorkedOut) {
    make({1000.0, 1000.0}, kUpright, 29.97F);
    EXPECT_EQ(text(fixture.log), text({
                                     "🎬 [VC] displaySize=(1000.0,1000.0) scale=1.92 tx=-420.0 ty=0.0",
                                     "🎬 [VC] renderSize=(1080.0, 1920.0) frameDuration=0.03333333333333333s",
                                 }));
}

TEST_F(VerticalVideoCompositionTest, aPictureOfNoSizeIsNotGuardedAgainst) {
    make({0.0, 0.0});
    EXPECT_EQ(fixture.log.front(), "🎬 [VC] displaySize=(0.0,0.0) scale=inf tx=nan ty=nan");
}

using VerticalVideoCompositionDeathTest = VerticalVideoCompositionTest;

TEST_F(VerticalVideoCompositionDeathTest, aRateThatIsNoNumberStopsTheProgram) {
    EXPECT_DEATH(make({1920.0, 1080.0}, kUpright, std::numeric_limits<float>::quiet_NaN()),
                 "Float value cannot be converted to Int32 because it is either infinite or NaN");
    EXPECT_DEATH(make({1920.0, 1080.0}, kUpright, std::numeric_limits<float>::infinity()),
                 "Float value cannot be converted to Int32 because it is either infinite or NaN");
}

TEST_F(VerticalVideoCompositionDeathTest, aRateBeyondThirtyTwoBitsStopsTheProgram) {
    EXPECT_DEATH(
        make({1920.0, 1080.0}, kUpright, 3e9F),
        "Float value cannot be converted to Int32 because the result would be greater than Int32.max");
}

}  // namespace
}  // namespace korvane
