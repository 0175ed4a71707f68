#include <gtest/gtest.h>

#include <limits>
#include <variant>

#include "tests/editor/EditorFixture.h"

namespace korvane {
namespace {

struct AnimationLayersTest : testing::Test {
    EditorFixture fixture;
    SubtitleSettings settings;

    AnimationTool build(const std::vector<SubtitleEntry>& entries) {
        return fixture.editor.buildAnimationLayer(entries, settings);
    }
    const Layer& overlayOf(const AnimationTool& tool) { return *tool.parentLayer->sublayers.at(1); }
    Layer lineOf(const SubtitleEntry& entry) { return *overlayOf(build({entry})).sublayers.at(0); }
    BasicAnimation visibilityOf(const SubtitleEntry& entry) {
        return std::get<BasicAnimation>(lineOf(entry).animations.at("visibility"));
    }
    KeyframeAnimation popOf(const SubtitleEntry& entry) {
        return std::get<KeyframeAnimation>(lineOf(entry).animations.at("pop"));
    }
};

TEST_F(AnimationLayersTest, noLinesStillMakeTheWholeTree) {
    const AnimationTool tool = build({});
    const Rect canvas{0.0, 0.0, 1080.0, 1920.0};
    ASSERT_EQ(tool.parentLayer->sublayers.size(), 2U);
    EXPECT_EQ(tool.parentLayer->sublayers[0], tool.videoLayer);
    EXPECT_EQ(tool.parentLayer->frame, canvas);
    EXPECT_EQ(tool.parentLayer->beginTime, kBeginTimeAtZero);
    EXPECT_FALSE(tool.parentLayer->geometryFlipped);
    EXPECT_EQ(tool.videoLayer->frame, canvas);
    EXPECT_FALSE(tool.videoLayer->beginTime.has_value());
    EXPECT_TRUE(tool.videoLayer->sublayers.empty());
    EXPECT_EQ(overlayOf(tool).frame, canvas);
    EXPECT_TRUE(overlayOf(tool).geometryFlipped);
    EXPECT_FALSE(overlayOf(tool).beginTime.has_value());
    EXPECT_TRUE(overlayOf(tool).sublayers.empty());
    EXPECT_EQ(fixture.log, (std::vector<std::string>{"🎬 [CA] Building 0 subtitle layers  boxY=1336.8"}));
}

TEST_F(AnimationLayersTest, linesStandInTheirOrderAndAreCountedInTheLog) {
    const AnimationTool tool = build({{0.25, 1.0, "one two"}, {1.0, 2.0, "three"}});
    ASSERT_EQ(overlayOf(tool).sublayers.size(), 2U);
    EXPECT_EQ(overlayOf(tool).sublayers[0]->text->text, "one two");
    EXPECT_EQ(overlayOf(tool).sublayers[1]->text->text, "three");
    EXPECT_EQ(fixture.log.back(), "🎬 [CA] Building 2 subtitle layers  boxY=1336.8");
}

TEST_F(AnimationLayersTest, theBoxFollowsFontSizeAndVerticalPosition) {
    settings.fontSize = 64.0;
    settings.verticalPosition = 0.5;
    const Rect box = lineOf({0.0, 1.0, "w"}).frame;
    EXPECT_DOUBLE_EQ(box.x, 75.6);
    EXPECT_DOUBLE_EQ(box.y, 832.0);
    EXPECT_DOUBLE_EQ(box.width, 928.8);
    EXPECT_DOUBLE_EQ(box.height, 256.0);
    EXPECT_EQ(fixture.log.back(), "🎬 [CA] Building 1 subtitle layers  boxY=832.0");
}

TEST_F(AnimationLayersTest, theBoxKeepsItsMarginsAtBothEnds) {
    settings.verticalPosition = 0.0;
    EXPECT_DOUBLE_EQ(lineOf({0.0, 1.0, "w"}).frame.y, 72.0);
    settings.verticalPosition = 1.0;
    const Rect box = lineOf({0.0, 1.0, "w"}).frame;
    EXPECT_DOUBLE_EQ(box.y + box.height, 1920.0 - 72.0);
}

TEST_F(AnimationLayersTest, aLineCarriesTextFontAndColour) {
    settings.fontPostscriptName = "Inter-Bold";
    settings.fontSize = 50.0;
    settings.textColorR = 1.0;
    settings.textColorG = 0.5;
    settings.textColorB = 0.25;
    const TextContent text = *lineOf({0.0, 1.0, "Zwölf Boxkämpfer"}).text;
    EXPECT_EQ(text.text, "Zwölf Boxkämpfer");
    EXPECT_EQ(text.fontPostScriptName, "Inter-Bold");
    EXPECT_EQ(text.fontSize, 50.0);
    EXPECT_EQ(text.foregroundColor, (Color{1.0, 0.5, 0.25, 1.0}));
    EXPECT_EQ(text.alignment, TextAlignment::center);
    EXPECT_TRUE(text.wrapped);
    EXPECT_EQ(text.contentsScale, 1.0);
}

TEST_F(AnimationLayersTest, aShadowHasTheStylesColourAndRadius) {
    settings.hasShadow = true;
    settings.shadowColorR = 0.1;
    settings.shadowColorG = 0.2;
    settings.shadowColorB = 0.3;
    settings.shadowRadius = 12.0;
    const auto shadow = lineOf({0.0, 1.0, "w"}).shadow;
    ASSERT_TRUE(shadow.has_value());
    EXPECT_EQ(shadow->color, (Color{0.1, 0.2, 0.3, 1.0}));
    EXPECT_EQ(shadow->opacity, 0.85);
    EXPECT_EQ(shadow->radius, 12.0);
    EXPECT_EQ(shadow->offset, (Point{0.0, -2.0}));
}

TEST_F(AnimationLayersTest, withoutShadowNothingOfItIsSet) {
    settings.hasShadow = false;
    EXPECT_FALSE(lineOf({0.0, 1.0, "w"}).shadow.has_value());
}

TEST_F(AnimationLayersTest, aLineIsOpaqueInItsTimeAndInvisibleOtherwise) {
    EXPECT_EQ(lineOf({0.25, 1.5, "w"}).opacity, 0.0);
    const BasicAnimation visibility = visibilityOf({0.25, 1.5, "w"});
    EXPECT_EQ(visibility.keyPath, "opacity");
    EXPECT_EQ(visibility.fromValue, 1.0);
    EXPECT_EQ(visibility.toValue, 1.0);
    EXPECT_EQ(visibility.beginTime, 0.25);
    EXPECT_EQ(visibility.duration, 1.25);
    EXPECT_EQ(visibility.fillMode, FillMode::removed);
    EXPECT_FALSE(visibility.removedOnCompletion);
}

TEST_F(AnimationLayersTest, aLineAtTimeZeroBeginsWithTheFirstFrame) {
    EXPECT_EQ(visibilityOf({0.0, 1.0, "w"}).beginTime, kBeginTimeAtZero);
    EXPECT_EQ(visibilityOf({-1.0, 1.0, "w"}).beginTime, kBeginTimeAtZero);
    EXPECT_EQ(popOf({0.0, 1.0, "w"}).beginTime, kBeginTimeAtZero);
    EXPECT_EQ(visibilityOf({0.001, 1.0, "w"}).beginTime, 0.001);
}

TEST_F(AnimationLayersTest, aLineOfNoLengthIsShownForAMillisecond) {
    EXPECT_EQ(visibilityOf({2.0, 2.0, "w"}).duration, 0.001);
    EXPECT_EQ(visibilityOf({2.0, 1.0, "w"}).duration, 0.001);
    EXPECT_EQ(popOf({2.0, 2.0, "w"}).duration, 0.001);
}

TEST_F(AnimationLayersTest, thePopOvershootsAndSettles) {
    settings.hasPopAnimation = true;
    const KeyframeAnimation pop = popOf({0.25, 1.5, "w"});
    EXPECT_EQ(pop.keyPath, "transform.scale");
    EXPECT_EQ(pop.values, (std::vector{0.78, 1.08, 1.0}));
    EXPECT_EQ(pop.keyTimes, (std::vector{0.0, 0.55, 1.0}));
    EXPECT_EQ(pop.timingFunctions, (std::vector{TimingFunction::easeOut(), TimingFunction::easeInEaseOut()}));
    EXPECT_EQ(pop.beginTime, 0.25);
    EXPECT_EQ(pop.duration, 0.35);
    EXPECT_EQ(pop.fillMode, FillMode::removed);
    EXPECT_FALSE(pop.removedOnCompletion);
}

TEST_F(AnimationLayersTest, thePopOfAShortLineLastsAsLongAsTheLine) {
    EXPECT_EQ(popOf({1.0, 1.25, "w"}).duration, 0.25);
}

TEST_F(AnimationLayersTest, withoutPopThereIsOnlyTheVisibility) {
    settings.hasPopAnimation = false;
    const Layer line = lineOf({0.0, 1.0, "w"});
    EXPECT_EQ(line.animations.size(), 1U);
    EXPECT_TRUE(line.animations.contains("visibility"));
}

TEST_F(AnimationLayersTest, aColourWithoutDeviceFormComesOutWhite) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(VideoEditor::cgColor({nan, 0.0, 0.0, 0.5}), Color::white());
    EXPECT_EQ(VideoEditor::cgColor({0.1, 0.2, 0.3, 0.5}), (Color{0.1, 0.2, 0.3, 0.5}));
    settings.textColorG = nan;
    EXPECT_EQ(lineOf({0.0, 1.0, "w"}).text->foregroundColor, Color::white());
}

}  // namespace
}  // namespace korvane
