#include "Spring.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <algorithm>
#include <vector>

#include "Stage.h"

namespace korvane {

namespace {

Spring& springOf(Stage& stage) {
    return dynamic_cast<Spring&>(stage.object("spring"));
}

}  // namespace

TEST(Spring, startsAtRestAtItsTarget) {
    Stage stage(R"qml(Item { Spring { objectName: "spring"; to: 0.96 } })qml");
    EXPECT_EQ(springOf(stage).value(), 0.96);
    EXPECT_FALSE(springOf(stage).isMoving());
}

TEST(Spring, startsFromWhereItIsToldAndEndsExactlyAtTheTarget) {
    Stage stage(
        R"qml(Item { Spring { objectName: "spring"; from: 0.78; to: 1; response: 0.35; damping: 0.45 } })qml");
    Spring& spring = springOf(stage);
    EXPECT_EQ(spring.value(), 0.78);
    double highest = 0;
    QObject::connect(&spring, &Spring::valueChanged, [&] { highest = std::max(highest, spring.value()); });
    EXPECT_TRUE(Stage::wait([&] { return !spring.isMoving(); }));
    EXPECT_EQ(spring.value(), 1);
    EXPECT_GT(highest, 1.02);
    EXPECT_LT(highest, 1.05);  // 0.22 * 0.2054
}

TEST(Spring, aNewTargetInMidFlightKeepsPlaceAndSpeed) {
    Stage stage(R"qml(Item { Spring { objectName: "spring"; to: 0; response: 0.6; damping: 0.75 } })qml");
    Spring& spring = springOf(stage);
    std::vector<double> values;
    QObject::connect(&spring, &Spring::valueChanged, [&] { values.push_back(spring.value()); });
    spring.setTo(1000);
    EXPECT_TRUE(Stage::wait([&] { return spring.value() > 300; }));
    const double before = spring.value();
    spring.setTo(0);
    EXPECT_EQ(spring.value(), before);
    EXPECT_TRUE(Stage::wait([&] { return !spring.isMoving(); }));
    // It had speed upwards, so it went on a little before it turned.
    EXPECT_GT(*std::max_element(values.begin(), values.end()), before + 10);
    EXPECT_EQ(spring.value(), 0);
}

TEST(Spring, disabledFollowsAtOnce) {
    Stage stage(R"qml(Item { Spring { objectName: "spring"; to: 0; enabled: false } })qml");
    springOf(stage).setTo(5);
    EXPECT_EQ(springOf(stage).value(), 5);
    EXPECT_FALSE(springOf(stage).isMoving());
}

TEST(Spring, jumpGoesThereAndRests) {
    Stage stage(R"qml(Item { Spring { objectName: "spring"; from: 0; to: 1 } })qml");
    springOf(stage).jump(0.5);
    EXPECT_EQ(springOf(stage).value(), 0.5);
    EXPECT_FALSE(springOf(stage).isMoving());
    springOf(stage).replay();
    EXPECT_TRUE(springOf(stage).isMoving());
    EXPECT_EQ(springOf(stage).value(), 0);
}

}  // namespace korvane
