#include <gtest/gtest.h>

#include <QPainter>
#include <QTest>
#include <cmath>

#include "ContinuousCorner.h"
#include "Spring.h"
#include "Stage.h"
#include "Theme.h"

namespace korvane {

namespace {

constexpr int left = 20;
constexpr int top = 20;

QByteArray pill(const char* kind, const char* more = "") {
    return QByteArray(R"qml(Rectangle { color: "black"; property int clicks: 0
        Item { focus: true }
        )qml") +
           kind +
           R"qml( { objectName: "pill"; x: 20; y: 20; text: "Preview"; onClicked: parent.clicks++; )qml" +
           more + "} }";
}

QPoint middleOf(QQuickItem& item) {
    return item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint();
}

void expectNear(const QColor& seen, const QColor& wanted, int tolerance) {
    EXPECT_NEAR(seen.red(), wanted.red(), tolerance);
    EXPECT_NEAR(seen.green(), wanted.green(), tolerance);
    EXPECT_NEAR(seen.blue(), wanted.blue(), tolerance);
}

QColor mixed(const QColor& from, const QColor& to, float part) {
    return QColor::fromRgbF(from.redF() + (to.redF() - from.redF()) * part,
                            from.greenF() + (to.greenF() - from.greenF()) * part,
                            from.blueF() + (to.blueF() - from.blueF()) * part);
}

// Four points of the fill away from text and corners against the gradient along the diagonal.
void expectGradient(Stage& stage, const QColor& from, const QColor& to, float opacity = 1) {
    const QImage picture = stage.picture();
    const QQuickItem& item = stage.item("pill");
    const float w = static_cast<float>(item.width());
    const float h = static_cast<float>(item.height());
    for (const QPoint point :
         {QPoint(4, 16), QPoint(14, 2), QPoint(int(w) - 15, int(h) - 3), QPoint(int(w) - 5, 15)}) {
        const float x = static_cast<float>(point.x()) + 0.5F;
        const float y = static_cast<float>(point.y()) + 0.5F;
        const float part = (x * w + y * h) / (w * w + h * h);
        expectNear(picture.pixelColor(left + point.x(), top + point.y()),
                   mixed(Qt::black, mixed(from, to, part), opacity), 3);
    }
}

}  // namespace

TEST(Pill, primaryRunsFromTheAccentToTheLowAccent) {
    Stage stage(pill("PrimaryPill"));
    expectGradient(stage, Theme::accent(), Theme::accentLo());
}

TEST(Pill, successRunsFromGreenToDeepGreen) {
    Stage stage(pill("SuccessPill"));
    expectGradient(stage, QColor::fromRgbF(0.18F, 0.75F, 0.45F), QColor::fromRgbF(0.1F, 0.55F, 0.3F));
}

TEST(Pill, stopRunsFromHighToLowRed) {
    Stage stage(pill("StopPill"));
    expectGradient(stage, Theme::stopHi(), Theme::stopLo());
}

TEST(Pill, ghostIsAFlatVeil) {
    Stage stage(pill("GhostPill"));
    expectGradient(stage, mixed(Qt::black, Qt::white, 0.11F), mixed(Qt::black, Qt::white, 0.11F));
}

TEST(Pill, padsItsLabelByEighteenAndEight) {
    Stage stage(pill("PrimaryPill"));
    QQuickItem& item = stage.item("pill");
    EXPECT_EQ(item.property("leftPadding").toReal(), 18);
    EXPECT_EQ(item.property("rightPadding").toReal(), 18);
    EXPECT_EQ(item.property("topPadding").toReal(), 8);
    EXPECT_EQ(item.property("bottomPadding").toReal(), 8);
    const QFont font = item.property("font").value<QFont>();
    EXPECT_EQ(font.pixelSize(), 13);
    EXPECT_EQ(font.weight(), QFont::DemiBold);
    EXPECT_EQ(item.width(), std::ceil(item.property("implicitContentWidth").toReal()) + 36);
    EXPECT_GT(item.property("implicitContentWidth").toReal(), 30);
}

TEST(Pill, iconStandsBeforeTheLabelAndWidensIt) {
    Stage plain(pill("PrimaryPill"));
    Stage signedOne(pill("PrimaryPill", R"qml(iconName: "play.circle")qml"));
    EXPECT_EQ(signedOne.item("pill").width(), plain.item("pill").width() + 14 + 6);
}

TEST(Pill, cornersAreOutsideTheShape) {
    Stage stage(pill("PrimaryPill"));
    const QImage picture = stage.picture();
    EXPECT_EQ(picture.pixelColor(left, top), QColor(Qt::black));
    EXPECT_EQ(picture.pixelColor(left + 1, top + 1), QColor(Qt::black));
    EXPECT_GT(picture.pixelColor(left + 4, top + 4).blue(), 200);
}

TEST(Pill, itsCornersHaveARadiusOfTen) {
    Stage stage(pill("GhostPill", "fillFrom: \"white\"; fillTo: \"white\""));
    const QImage picture = stage.picture();
    // What each corner leaves free of its square, in points: it grows with the square of the radius.
    const auto wanted = [](qreal radius) {
        const int side = 18;
        QImage mask(side, side, QImage::Format_Grayscale8);
        mask.fill(0);
        QPainter painter(&mask);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(continuousRectangle({0, 0, 100, 100}, radius), Qt::white);
        painter.end();
        double free = 0;
        for (int i = 0; i < side * side; ++i) {
            free += 1 - qRed(mask.pixel(i % side, i / side)) / 255.0;
        }
        return free;
    };
    double free = 0;
    for (int y = 0; y < 18; ++y) {
        for (int x = 0; x < 18; ++x) {
            free += 1 - picture.pixelColor(left + x, top + y).red() / 255.0;
        }
    }
    ASSERT_GT(wanted(10.5) - wanted(9.5), 3);
    EXPECT_GT(free, wanted(9.5));
    EXPECT_LT(free, wanted(10.5));
}

TEST(Pill, springsWithAResponseOf018AndADampingOf075) {
    Stage stage(pill("PrimaryPill"));
    QQuickItem& item = stage.item("pill");
    auto* spring = item.findChild<Spring*>();
    ASSERT_NE(spring, nullptr);
    // Let go at the same instant, so that the scene's clock shows both the same time.
    Spring twin;
    twin.setProperty("response", 0.18);
    twin.setProperty("damping", 0.75);
    twin.componentComplete();
    QObject::connect(spring, &Spring::toChanged, &twin, [&] { twin.setTo(spring->to()); });
    QTest::mousePress(&stage.view(), Qt::LeftButton, Qt::NoModifier, middleOf(item));
    int inFlight = 0;
    EXPECT_TRUE(Stage::wait([&] {
        EXPECT_NEAR(item.property("looksScale").toReal(), 1 - 0.04 * twin.value(), 1e-9);
        EXPECT_NEAR(item.property("looksOpacity").toReal(), 1 - 0.22 * twin.value(), 1e-9);
        inFlight += twin.value() > 0 && twin.isMoving();
        return twin.to() == 1 && !twin.isMoving();
    }));
    EXPECT_GT(inFlight, 0);
    EXPECT_EQ(twin.value(), 1);
}

TEST(Pill, pressedIsFainterAndSmallerAndComesBackExactly) {
    Stage stage(pill("PrimaryPill"));
    QQuickItem& item = stage.item("pill");
    EXPECT_EQ(item.property("looksScale").toReal(), 1);
    EXPECT_EQ(item.property("looksOpacity").toReal(), 1);

    QTest::mousePress(&stage.view(), Qt::LeftButton, Qt::NoModifier, middleOf(item));
    EXPECT_TRUE(Stage::wait([&] { return item.property("looksScale").toReal() == 1 - 0.04; }));
    EXPECT_NEAR(item.property("looksOpacity").toReal(), 0.78, 1e-12);
    auto* ground = item.property("background").value<QQuickItem*>();
    EXPECT_NEAR(ground->scale(), 0.96, 1e-12);
    EXPECT_EQ(ground->transformOrigin(), QQuickItem::Center);

    QTest::mouseRelease(&stage.view(), Qt::LeftButton, Qt::NoModifier, middleOf(item));
    EXPECT_TRUE(Stage::wait([&] { return item.property("looksScale").toReal() == 1; }));
    EXPECT_EQ(item.property("looksOpacity").toReal(), 1);
    EXPECT_EQ(stage.root().property("clicks").toInt(), 1);
}

TEST(Pill, aPressAtTheVeryEdgeIsAClick) {
    Stage stage(pill("PrimaryPill"));
    QQuickItem& item = stage.item("pill");
    const QPoint edge = item.mapToScene(QPointF(item.width() / 2, 0.5)).toPoint();
    QTest::mousePress(&stage.view(), Qt::LeftButton, Qt::NoModifier, edge);
    EXPECT_TRUE(Stage::wait([&] { return item.property("looksScale").toReal() < 0.97; }));
    QTest::mouseRelease(&stage.view(), Qt::LeftButton, Qt::NoModifier, edge);
    EXPECT_EQ(stage.root().property("clicks").toInt(), 1);
}

TEST(Pill, disabledKeepsItsGradientFaintlyAndDoesNothing) {
    Stage stage(pill("PrimaryPill", "enabled: false"));
    expectGradient(stage, Theme::accent(), Theme::accentLo(), 0.32F);
    QQuickItem& item = stage.item("pill");
    EXPECT_EQ(item.property("looksOpacity").toReal(), 0.32);
    stage.click(middleOf(item));
    item.forceActiveFocus(Qt::TabFocusReason);
    stage.key(Qt::Key_Space);
    stage.key(Qt::Key_Return);
    EXPECT_EQ(stage.root().property("clicks").toInt(), 0);
    EXPECT_EQ(item.property("looksScale").toReal(), 1);
}

TEST(Pill, disabledUnderThePointerIsAtItsDisabledOpacityAtOnceAndStaysDownUntilItIsLetGo) {
    Stage stage(pill("PrimaryPill"));
    QQuickItem& item = stage.item("pill");
    QTest::mousePress(&stage.view(), Qt::LeftButton, Qt::NoModifier, middleOf(item));
    EXPECT_TRUE(Stage::wait([&] { return item.property("looksScale").toReal() == 1 - 0.04; }));
    item.setEnabled(false);
    EXPECT_EQ(item.property("looksOpacity").toReal(), 0.32);
    EXPECT_EQ(item.property("looksScale").toReal(), 1 - 0.04);
    EXPECT_EQ(item.findChild<Spring*>()->to(), 1) << "it is not on its way up";
    QTest::mouseRelease(&stage.view(), Qt::LeftButton, Qt::NoModifier, middleOf(item));
    EXPECT_TRUE(Stage::wait([&] { return item.property("looksScale").toReal() == 1; }));
    EXPECT_EQ(item.property("looksOpacity").toReal(), 0.32);
    EXPECT_EQ(stage.root().property("clicks").toInt(), 0);
}

TEST(Pill, disabledAfterThePointerLeftItIsUp) {
    Stage stage(pill("PrimaryPill"));
    QQuickItem& item = stage.item("pill");
    QTest::mousePress(&stage.view(), Qt::LeftButton, Qt::NoModifier, middleOf(item));
    QTest::mouseMove(&stage.view(), QPoint(250, 180));
    item.setEnabled(false);
    EXPECT_FALSE(item.property("heldDown").toBool());
    QTest::mouseRelease(&stage.view(), Qt::LeftButton, Qt::NoModifier, QPoint(250, 180));
    EXPECT_FALSE(item.property("heldDown").toBool());
}

TEST(Pill, keysPressItAndTabShowsTheRing) {
    Stage stage(pill("PrimaryPill"));
    QQuickItem& item = stage.item("pill");
    const QPoint ring(left + int(item.width()) / 2, top - 3);
    EXPECT_EQ(stage.picture().pixelColor(ring), QColor(Qt::black));
    stage.key(Qt::Key_Tab);
    EXPECT_TRUE(item.hasActiveFocus());
    expectNear(stage.picture().pixelColor(ring), Theme::accent(), 2);
    for (const int key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
        stage.key(key);
    }
    EXPECT_EQ(stage.root().property("clicks").toInt(), 3);
}

TEST(Pill, aClickShowsNoRing) {
    Stage stage(pill("PrimaryPill"));
    QQuickItem& item = stage.item("pill");
    stage.click(middleOf(item));
    EXPECT_TRUE(item.hasActiveFocus());
    EXPECT_EQ(stage.picture().pixelColor(left + int(item.width()) / 2, top - 3), QColor(Qt::black));
}

}  // namespace korvane
