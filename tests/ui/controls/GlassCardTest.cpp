#include <gtest/gtest.h>

#include "Stage.h"
#include "Theme.h"

namespace korvane {

namespace {

// `over` at its opacity on an opaque ground.
QColor on(const QColor& ground, const QColor& over) {
    const float a = over.alphaF();
    const auto mix = [a](float below, float above) { return below * (1 - a) + above * a; };
    return QColor::fromRgbF(mix(ground.redF(), over.redF()), mix(ground.greenF(), over.greenF()),
                            mix(ground.blueF(), over.blueF()));
}

void expectNear(const QColor& seen, const QColor& wanted, int tolerance = 2) {
    EXPECT_NEAR(seen.red(), wanted.red(), tolerance);
    EXPECT_NEAR(seen.green(), wanted.green(), tolerance);
    EXPECT_NEAR(seen.blue(), wanted.blue(), tolerance);
}

}  // namespace

TEST(GlassCard, withoutArgumentsPadsFourteenAboveAndSixteenBeside) {
    Stage stage(
        R"qml(Item { GlassCard { objectName: "card"; Item { objectName: "content"; implicitWidth: 50; implicitHeight: 20 } } })qml");
    EXPECT_EQ(stage.item("card").property("verticalPadding").toReal(), 14);
    EXPECT_EQ(stage.item("card").property("horizontalPadding").toReal(), 16);
    EXPECT_EQ(stage.item("card").width(), 50 + 2 * 16);
    EXPECT_EQ(stage.item("card").height(), 20 + 2 * 14);
    EXPECT_EQ(stage.item("content").mapToItem(&stage.item("card"), QPointF()), QPointF(16, 14));
}

TEST(GlassCard, takesOtherPaddings) {
    Stage stage(R"qml(Item { GlassCard { objectName: "card"; verticalPadding: 3; horizontalPadding: 5
        Item { objectName: "content"; width: 40; height: 20; implicitWidth: 50 } } })qml");
    EXPECT_EQ(stage.item("card").width(), 60);
    EXPECT_EQ(stage.item("card").height(), 26);
    EXPECT_EQ(stage.item("content").mapToItem(&stage.item("card"), QPointF()), QPointF(5, 3));
}

TEST(GlassCard, contentMayFillACardOfGivenSize) {
    Stage stage(
        R"qml(Item { GlassCard { width: 200; height: 100; Item { objectName: "content"; anchors.fill: parent } } })qml");
    EXPECT_EQ(stage.item("content").width(), 200 - 2 * 16);
    EXPECT_EQ(stage.item("content").height(), 100 - 2 * 14);
}

TEST(GlassCard, laysVeilAndTintAndBorderOverTheGround) {
    Stage stage(
        R"qml(Rectangle { color: Theme.bgTop; GlassCard { x: 20; y: 20; width: 200; height: 100 } })qml");
    const QImage picture = stage.picture();
    const QColor veiled = on(Theme::bgTop(), Theme::white(0.05));
    const QColor tinted = on(veiled, Theme::faded(Theme::cardFill(), 0.45));
    expectNear(picture.pixelColor(120, 70), tinted);
    expectNear(picture.pixelColor(20, 70), on(tinted, Theme::white(0.09)));
    expectNear(picture.pixelColor(219, 70), on(tinted, Theme::white(0.09)));
    expectNear(picture.pixelColor(21, 70), tinted);
    expectNear(picture.pixelColor(19, 70), Theme::bgTop());
}

TEST(GlassCard, hasCornersOfSixteen) {
    Stage stage(
        R"qml(Rectangle { color: Theme.bgTop; GlassCard { x: 20; y: 20; width: 200; height: 100 } })qml");
    const QImage picture = stage.picture();
    // On the diagonal an arc of 16 begins 16 (1 - 1/√2) = 4.7 from the corner.
    expectNear(picture.pixelColor(23, 23), Theme::bgTop());
    EXPECT_GT(picture.pixelColor(26, 26).green(), Theme::bgTop().green() + 5);
    expectNear(picture.pixelColor(20, 28), Theme::bgTop(), 4);
    EXPECT_GT(picture.pixelColor(20, 38).green(), Theme::bgTop().green() + 5);
}

}  // namespace korvane
