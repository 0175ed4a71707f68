#include "ContinuousRectangle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "ContinuousCorner.h"
#include "Stage.h"
#include "Theme.h"

namespace korvane {

namespace {

// The turn at each point of an outline, by the length around it: its curvature.
std::vector<double> curvatures(const QPainterPath& path) {
    std::vector<QPointF> points;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPointF point = path.elementAt(i);
        if (points.empty() ||
            std::hypot(point.x() - points.back().x(), point.y() - points.back().y()) > 1e-6) {
            points.push_back(point);
        }
    }
    std::vector<double> result;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        const QPointF a = points[i] - points[i - 1];
        const QPointF b = points[i + 1] - points[i];
        const double la = std::hypot(a.x(), a.y());
        const double lb = std::hypot(b.x(), b.y());
        const double turn = std::atan2(a.x() * b.y() - a.y() * b.x(), a.x() * b.x() + a.y() * b.y());
        // Along an edge the long side counts as the next corner's first step.
        result.push_back(turn / std::min(la, lb));
    }
    return result;
}

}  // namespace

TEST(ContinuousCorner, curvatureRisesAndFallsWithoutAJump) {
    const std::vector<double> bends = curvatures(continuousRectangle({0, 0, 400, 300}, 50));
    double highest = 0;
    for (std::size_t i = 1; i < bends.size(); ++i) {
        // A plain arc of 50 jumps from 0 to 1/50 at once.
        EXPECT_LT(std::abs(bends[i] - bends[i - 1]), 0.35 / 50);
        highest = std::max(highest, bends[i]);
    }
    EXPECT_NEAR(highest, 1.0 / 50, 0.02 / 50);
}

TEST(ContinuousCorner, takesTheSameOfBothEdges) {
    const QPainterPath path = continuousRectangle({0, 0, 100, 80}, 10);
    EXPECT_NEAR(path.boundingRect().width(), 100, 1e-6);
    EXPECT_NEAR(path.boundingRect().height(), 80, 1e-6);
    const double extent = continuousCornerExtent(10);
    EXPECT_GT(extent, 10);
    EXPECT_LT(extent, 16);
    const QPointF first = path.elementAt(0);
    EXPECT_NEAR(first.x(), 100 - extent, 1e-6);
    EXPECT_EQ(first.y(), 0);
    EXPECT_TRUE(path.contains(QPointF(50, 40)));
    EXPECT_FALSE(path.contains(QPointF(1.5, 1.5)));
}

TEST(ContinuousCorner, aRectangleTooSmallBecomesAPill) {
    const QPainterPath path = continuousRectangle({0, 0, 100, 20}, 40);
    EXPECT_NEAR(path.boundingRect().width(), 100, 1e-6);
    EXPECT_NEAR(path.boundingRect().height(), 20, 1e-6);
    EXPECT_FALSE(path.contains(QPointF(1, 2)));
    EXPECT_TRUE(path.contains(QPointF(1, 10)));
    EXPECT_TRUE(continuousRectangle({0, 0, 0, 20}, 4).isEmpty());
}

TEST(ContinuousRectangle, fillsItsShapeAndBordersItInside) {
    Stage stage(R"qml(Item { ContinuousRectangle { x: 20; y: 20; width: 90; height: 24; radius: 6
        color: Theme.faded(Theme.accent, 0.28); borderColor: Theme.faded(Theme.accent, 0.55); borderWidth: 1 } })qml");
    const QImage picture = stage.picture();
    const int fill = qRound(255 * 0.28);
    const int border = qRound(255 * (0.28 * 0.45 + 0.55));
    for (const int x : {40, 65, 95}) {  // left end, stretched middle, right end
        EXPECT_NEAR(picture.pixelColor(x, 32).blue(), fill, 2) << x;
        EXPECT_NEAR(picture.pixelColor(x, 20).blue(), border, 2) << x;
        EXPECT_NEAR(picture.pixelColor(x, 43).blue(), border, 2) << x;
        EXPECT_EQ(picture.pixelColor(x, 19).blue(), 0) << x;
        EXPECT_EQ(picture.pixelColor(x, 44).blue(), 0) << x;
    }
    EXPECT_NEAR(picture.pixelColor(20, 32).blue(), border, 2);
    EXPECT_NEAR(picture.pixelColor(109, 32).blue(), border, 2);
    EXPECT_EQ(picture.pixelColor(110, 32).blue(), 0);
    EXPECT_NEAR(picture.pixelColor(20, 20).blue(), 0, 12);
}

TEST(ContinuousRectangle, followsItsColorAndSize) {
    Stage stage(
        R"qml(Item { ContinuousRectangle { objectName: "box"; width: 60; height: 24; radius: 6; color: "red" } })qml");
    EXPECT_EQ(stage.picture().pixelColor(30, 12), QColor(Qt::red));
    stage.item("box").setProperty("color", QColor(Qt::green));
    EXPECT_EQ(stage.picture().pixelColor(30, 12), QColor(Qt::green));
    stage.item("box").setWidth(200);
    EXPECT_EQ(stage.picture().pixelColor(190, 12), QColor(Qt::green));
    stage.item("box").setHeight(0);
    EXPECT_EQ(stage.picture().pixelColor(30, 12), QColor(Qt::black));
    stage.item("box").setHeight(60);
    EXPECT_EQ(stage.picture().pixelColor(30, 50), QColor(Qt::green));
}

TEST(ContinuousRectangle, ofAFractionalSizeAndPlaceHasSharpEdges) {
    Stage stage(
        R"qml(Item { ContinuousRectangle { x: 20.4; y: 20.6; width: 59.7; height: 24.2; radius: 6; color: "white" } })qml");
    const QImage picture = stage.picture();
    for (int x = 0; x < 100; ++x) {
        const int level = picture.pixelColor(x, 33).red();
        EXPECT_TRUE(level == 0 || level == 255) << x;
    }
    for (int y = 0; y < 60; ++y) {
        const int level = picture.pixelColor(50, y).red();
        EXPECT_TRUE(level == 0 || level == 255) << y;
    }
}

}  // namespace korvane
