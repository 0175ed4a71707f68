#include "platform/layers/LayerEvaluation.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace korvane {
namespace {

/// A pop as subtitles have it.
KeyframeAnimation pop(double begin, double duration) {
    return {"transform.scale",
            {0.78, 1.08, 1.0},
            {0.0, 0.55, 1.0},
            {TimingFunction::easeOut(), TimingFunction::easeInEaseOut()},
            begin,
            duration};
}

BasicAnimation visibility(double begin, double duration) {
    return {"opacity", 1.0, 1.0, begin, duration};
}

std::shared_ptr<Layer> layer(Rect frame) {
    auto made = std::make_shared<Layer>();
    made->frame = frame;
    return made;
}

// Reference values from a 50-digit bisection of the two cubics.
TEST(TimingFunction, easeOutMatchesItsReferenceToABillionth) {
    const auto curve = TimingFunction::easeOut();
    EXPECT_NEAR(timingValueAt(curve, 0.01), 0.016909705333958, 1e-9);
    EXPECT_NEAR(timingValueAt(curve, 0.1), 0.160572154237533, 1e-9);
    EXPECT_NEAR(timingValueAt(curve, 0.25), 0.378138130825109, 1e-9);
    EXPECT_NEAR(timingValueAt(curve, 0.5), 0.684643187427460, 1e-9);
    EXPECT_NEAR(timingValueAt(curve, 0.75), 0.906535349281175, 1e-9);
    EXPECT_NEAR(timingValueAt(curve, 0.99), 0.999813146804537, 1e-9);
}

TEST(TimingFunction, easeInEaseOutMatchesItsReferenceToABillionth) {
    const auto curve = TimingFunction::easeInEaseOut();
    EXPECT_NEAR(timingValueAt(curve, 0.01), 0.000189819585207, 1e-9);
    EXPECT_NEAR(timingValueAt(curve, 0.25), 0.129161931047319, 1e-9);
    EXPECT_NEAR(timingValueAt(curve, 0.5), 0.5, 1e-9);
    EXPECT_NEAR(timingValueAt(curve, 0.9), 0.980277546451688, 1e-9);
}

TEST(TimingFunction, theEndsAreExactAndBeyondThemNothingMoves) {
    for (const auto& curve :
         {TimingFunction::easeOut(), TimingFunction::easeInEaseOut(), TimingFunction::linear()}) {
        EXPECT_EQ(timingValueAt(curve, 0.0), 0.0);
        EXPECT_EQ(timingValueAt(curve, 1.0), 1.0);
        EXPECT_EQ(timingValueAt(curve, -0.5), 0.0);
        EXPECT_EQ(timingValueAt(curve, 1.5), 1.0);
    }
    EXPECT_EQ(timingValueAt(TimingFunction::linear(), 0.3), 0.3);
}

TEST(Animation, aPopStartsSmallOvershootsAndSettles) {
    const Animation animation = pop(2.0, 1.0);
    EXPECT_DOUBLE_EQ(valueAt(animation, 2.0, 1.0), 0.78);
    EXPECT_NEAR(valueAt(animation, 2.1375, 1.0), 0.893441439247532, 1e-9);
    EXPECT_NEAR(valueAt(animation, 2.275, 1.0), 0.985392956228238, 1e-9);
    EXPECT_NEAR(valueAt(animation, 2.4125, 1.0), 1.051960604784352, 1e-9);
    EXPECT_NEAR(valueAt(animation, 2.55, 1.0), 1.08, 1e-9);
    EXPECT_NEAR(valueAt(animation, 2.66, 1.0), 1.070132495834027, 1e-9);
    EXPECT_NEAR(valueAt(animation, 2.775, 1.0), 1.04, 1e-9);
    EXPECT_NEAR(valueAt(animation, 2.9, 1.0), 1.008113221928983, 1e-9);
    EXPECT_EQ(valueAt(animation, 3.0, 1.0), 1.0);
    EXPECT_EQ(valueAt(animation, 1.999, 0.5), 0.5) << "the layer's own value outside";
}

TEST(Animation, aBasicOneGoesStraightFromOneValueToTheOther) {
    const Animation animation = BasicAnimation{"opacity", 0.2, 1.0, 1.0, 2.0};
    EXPECT_DOUBLE_EQ(valueAt(animation, 1.0, 0.0), 0.2);
    EXPECT_DOUBLE_EQ(valueAt(animation, 2.0, 0.0), 0.6);
    EXPECT_EQ(valueAt(animation, 3.0, 0.0), 0.0);
}

TEST(Animation, isOnAtItsBeginAndOffAtItsEnd) {
    const Animation animation = visibility(0.25, 0.5);
    EXPECT_TRUE(isActiveAt(animation, 0.25));
    EXPECT_FALSE(isActiveAt(animation, std::nextafter(0.25, 0.0)));
    EXPECT_TRUE(isActiveAt(animation, std::nextafter(0.75, 0.0)));
    EXPECT_FALSE(isActiveAt(animation, 0.75));
}

TEST(Animation, theStandInForZeroIsOnAtTimeZeroItself) {
    EXPECT_TRUE(isActiveAt(visibility(kBeginTimeAtZero, 0.001), 0.0));
    EXPECT_FALSE(isActiveAt(visibility(kBeginTimeAtZero, 0.001), 0.001));
    EXPECT_DOUBLE_EQ(valueAt(pop(kBeginTimeAtZero, 0.35), 0.0, 1.0), 0.78);
}

/// Lines that touch, at frame times of every common rate: exactly one is on.
TEST(Animation, touchingOnesNeverOverlapNorLeaveAGap) {
    for (const auto& [num, den] : {std::pair{24, 1}, {25, 1}, {30000, 1001}, {30, 1}, {60000, 1001}}) {
        for (int cut = 1; cut < 2000; ++cut) {
            const double begin = cut / 7.0;
            const double middle = static_cast<double>(cut) * den / num + begin;
            const double end = middle + 1.0 / 3.0;
            const Animation first = visibility(begin, middle - begin);
            const Animation second = visibility(middle, end - middle);
            for (const double t : {middle, middle - 1e-9, middle + 1e-9})
                EXPECT_NE(isActiveAt(first, t), isActiveAt(second, t)) << t;
        }
    }
}

TEST(Animation, oneWithoutDurationIsNeverOn) {
    EXPECT_FALSE(isActiveAt(visibility(1.0, 0.0), 1.0));
}

TEST(LayerEvaluation, anUnflippedRootHasItsOriginAtTheBottomLeft) {
    const auto root = layer({0, 0, 100, 200});
    const auto child = layer({10, 20, 30, 40});
    const std::array<const Layer*, 2> path{root.get(), child.get()};
    const auto result = evaluatedAt(path, {100, 200}, 0.0);
    EXPECT_EQ(result.center, (Point{25, 160}));
    EXPECT_FALSE(result.yGrowsDown);
}

TEST(LayerEvaluation, belowAFlippedLayerYGrowsDownFromItsTopEdge) {
    const auto root = layer({0, 0, 100, 200});
    const auto overlay = layer({0, 50, 100, 100});
    overlay->geometryFlipped = true;
    const auto child = layer({10, 20, 30, 40});
    const std::array<const Layer*, 3> path{root.get(), overlay.get(), child.get()};
    const auto result = evaluatedAt(path, {100, 200}, 0.0);
    EXPECT_EQ(result.center, (Point{25, 50 + 40}));
    EXPECT_TRUE(result.yGrowsDown);
}

TEST(LayerEvaluation, aScaleActsAboutTheLayersOwnCentre) {
    const auto root = layer({0, 0, 100, 200});
    const auto group = layer({20, 100, 40, 60});
    group->animations["grow"] = BasicAnimation{"transform.scale", 2.0, 2.0, 0.0, 1.0};
    const auto child = layer({0, 0, 10, 10});
    const std::array<const Layer*, 3> path{root.get(), group.get(), child.get()};
    const auto result = evaluatedAt(path, {100, 200}, 0.5);
    EXPECT_EQ(result.scale, 2.0);
    // The group's centre is (40, 70) of the picture; the child's stood 15 left of it and 25 below.
    EXPECT_EQ(result.center, (Point{10, 120}));
}

TEST(LayerEvaluation, opacitiesMultiplyDownTheTree) {
    const auto root = layer({0, 0, 100, 200});
    root->opacity = 0.5;
    const auto child = layer({0, 0, 10, 10});
    child->opacity = 0.0;
    child->animations["visibility"] = visibility(1.0, 1.0);
    const std::array<const Layer*, 2> path{root.get(), child.get()};
    EXPECT_EQ(evaluatedAt(path, {100, 200}, 0.5).opacity, 0.0);
    EXPECT_EQ(evaluatedAt(path, {100, 200}, 1.5).opacity, 0.5);
}

TEST(LayerEvaluation, aLayerIsNotThereBeforeItsOwnBeginTime) {
    const auto root = layer({0, 0, 100, 200});
    root->beginTime = kBeginTimeAtZero;
    const auto child = layer({0, 0, 10, 10});
    child->beginTime = 2.0;
    const std::array<const Layer*, 2> path{root.get(), child.get()};
    EXPECT_EQ(evaluatedAt(std::span(path).first(1), {100, 200}, 0.0).opacity, 1.0);
    EXPECT_EQ(evaluatedAt(path, {100, 200}, 1.9).opacity, 0.0);
    EXPECT_EQ(evaluatedAt(path, {100, 200}, 2.0).opacity, 1.0);
}

}  // namespace
}  // namespace korvane
