#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <limits>
#include <vector>

#include "RangeControl.h"
#include "Stage.h"
#include "Theme.h"

namespace korvane {

namespace {

// As the style card uses it: the value is bound to a model that each move writes.
constexpr auto sizeSlider = R"qml(Item { property real model: 72
    AccentSlider { objectName: "slider"; x: 20; y: 20; from: 36; to: 120; stepSize: 2
        value: parent.model; onMoved: value => parent.model = value } })qml";
constexpr auto positionSlider = R"qml(Item { property real model: 0.85
    VerticalSlider { objectName: "slider"; x: 20; y: 20; height: 114
        value: parent.model; onChanged: value => parent.model = value } })qml";

class Slider : public Stage {
  public:
    explicit Slider(const QByteArray& qml) : Stage(qml) {
        QObject::connect(&control(), &RangeControl::moved, [this](qreal value) { moves.push_back(value); });
    }

    RangeControl& control() { return dynamic_cast<RangeControl&>(item("slider")); }
    qreal model() { return root().property("model").toReal(); }
    void setModel(qreal value) { root().setProperty("model", value); }
    /// The handle's middle at a part of its way, in the window.
    QPoint at(qreal part) {
        const QQuickItem& s = control();
        const qreal way = (s.width() > s.height() ? s.width() : s.height()) - 14;
        return s.width() > s.height()
                   ? QPoint(qRound(s.x() + 7 + part * way), qRound(s.y() + s.height() / 2))
                   : QPoint(qRound(s.x() + s.width() / 2), qRound(s.y() + 7 + (1 - part) * way));
    }
    void drag(const QPoint& from, const QPoint& to) {
        QTest::mousePress(&view(), Qt::LeftButton, Qt::NoModifier, from);
        const int steps = 40;
        for (int i = 1; i <= steps; ++i) {
            QTest::mouseMove(&view(), from + (to - from) * i / steps);
        }
        QTest::mouseRelease(&view(), Qt::LeftButton, Qt::NoModifier, to);
    }

    std::vector<qreal> moves;
};

}  // namespace

TEST(AccentSlider, draggingTheWholeWayYieldsOnlyEvenSizes) {
    Slider slider(sizeSlider);
    slider.setModel(36);
    slider.drag(slider.at(0), slider.at(1));
    ASSERT_GT(slider.moves.size(), 20U);
    EXPECT_EQ(slider.moves.back(), 120);
    for (const qreal value : slider.moves) {
        EXPECT_EQ(std::fmod(value, 2), 0) << value;
        EXPECT_GE(value, 36);
        EXPECT_LE(value, 120);
    }
    EXPECT_EQ(slider.model(), 120);
}

TEST(AccentSlider, draggingBeyondItsEndsStaysInTheRange) {
    Slider slider(sizeSlider);
    slider.drag(slider.at(0.5), QPoint(295, 30));
    EXPECT_EQ(slider.model(), 120);
    slider.drag(slider.at(1), QPoint(1, 30));
    EXPECT_EQ(slider.model(), 36);
}

TEST(AccentSlider, reportsWhileItIsDragged) {
    Slider slider(sizeSlider);
    QTest::mousePress(&slider.view(), Qt::LeftButton, Qt::NoModifier, slider.at(0.5));
    EXPECT_TRUE(slider.control().isPressed());
    QTest::mouseMove(&slider.view(), slider.at(0.75));
    EXPECT_EQ(slider.moves.size(), 1U);
    EXPECT_GT(slider.model(), 90);
    QTest::mouseRelease(&slider.view(), Qt::LeftButton, Qt::NoModifier, slider.at(0.75));
    EXPECT_FALSE(slider.control().isPressed());
}

TEST(AccentSlider, takenByTheEdgeOfItsHandleItStaysUntilItIsMoved) {
    Slider slider(sizeSlider);
    slider.setModel(78);
    slider.click(slider.at(0.5) + QPoint(5, 0));
    EXPECT_EQ(slider.model(), 78);
    slider.click(slider.at(1));
    EXPECT_EQ(slider.model(), 120);
}

TEST(AccentSlider, wheelMovesByOneStepANotch) {
    Slider slider(sizeSlider);
    slider.wheel(slider.at(0.5), 120);
    EXPECT_EQ(slider.model(), 74);
    slider.wheel(slider.at(0.5), -240);
    EXPECT_EQ(slider.model(), 70);
}

TEST(AccentSlider, fineWheelGathersWholeSteps) {
    Slider slider(sizeSlider);
    for (int i = 0; i < 7; ++i) {
        slider.wheel(slider.at(0.5), 15);
    }
    EXPECT_TRUE(slider.moves.empty());
    slider.wheel(slider.at(0.5), 15);
    EXPECT_EQ(slider.moves, std::vector<qreal>{74});
}

TEST(AccentSlider, keysMoveByStepsAndPagesAndToTheEnds) {
    Slider slider(sizeSlider);
    slider.control().forceActiveFocus(Qt::TabFocusReason);
    const struct {
        int key;
        qreal value;
    } presses[] = {{Qt::Key_Right, 74},  {Qt::Key_Up, 76},       {Qt::Key_Left, 74}, {Qt::Key_Down, 72},
                   {Qt::Key_PageUp, 80}, {Qt::Key_PageDown, 72}, {Qt::Key_End, 120}, {Qt::Key_Right, 120},
                   {Qt::Key_Home, 36},   {Qt::Key_Left, 36}};
    for (const auto& [key, value] : presses) {
        slider.key(key);
        EXPECT_EQ(slider.model(), value) << key;
    }
}

TEST(AccentSlider, blurGoesInWholeStepsFromOneToThirtyTwo) {
    Slider slider(R"qml(Item { property real model: 8
        AccentSlider { objectName: "slider"; width: 70; from: 1; to: 32; stepSize: 1
            value: parent.model; onMoved: value => parent.model = value } })qml");
    slider.drag(slider.at(7.0 / 31), QPoint(200, 10));
    EXPECT_EQ(slider.model(), 32);
    slider.drag(slider.at(1), QPoint(0, 10));
    EXPECT_EQ(slider.model(), 1);
    for (const qreal value : slider.moves) {
        EXPECT_EQ(value, std::floor(value));
    }
}

TEST(AccentSlider, aValueOutsideTheRangeIsShownAtItsEnd) {
    Slider slider(sizeSlider);
    slider.setModel(400);
    EXPECT_EQ(slider.control().value(), 120);
    EXPECT_EQ(slider.control().position(), 1);
    slider.setModel(-3);
    EXPECT_EQ(slider.control().value(), 36);
    EXPECT_TRUE(slider.moves.empty());
}

TEST(AccentSlider, itsBindingOutlivesBeingMoved) {
    Slider slider(sizeSlider);
    slider.wheel(slider.at(0.5), 120);
    slider.setModel(40);
    EXPECT_EQ(slider.control().value(), 40);
}

TEST(AccentSlider, disabledTakesNothing) {
    Slider slider(sizeSlider);
    slider.control().setEnabled(false);
    slider.click(slider.at(1));
    slider.wheel(slider.at(0.5), 120);
    EXPECT_EQ(slider.model(), 72);
}

TEST(AccentSlider, isFilledWithTheAccentUpToItsHandle) {
    Slider slider(sizeSlider);
    const QImage picture = slider.picture();
    EXPECT_EQ(picture.pixelColor(slider.at(0.1)).rgb(), Theme::accent().rgb());
    EXPECT_LT(picture.pixelColor(slider.at(0.9)).blue(), 60);
}

TEST(VerticalSlider, isTwentyWideAndHasItsSmallestValueAtTheBottom) {
    Slider slider(positionSlider);
    EXPECT_EQ(slider.control().width(), 20);
    slider.click(slider.at(0));
    EXPECT_EQ(slider.model(), 0);
    slider.click(slider.at(1));
    EXPECT_EQ(slider.model(), 1);
    EXPECT_LT(slider.at(1).y(), slider.at(0).y());
}

TEST(VerticalSlider, isContinuous) {
    Slider slider(positionSlider);
    slider.click(QPoint(30, 20 + 7 + 33));
    EXPECT_NEAR(slider.model(), 0.67, 1e-12);
}

TEST(VerticalSlider, wheelAndKeysMoveByAHundredthAndPagesByATenth) {
    Slider slider(positionSlider);
    slider.wheel(slider.at(0.5), 120);
    EXPECT_NEAR(slider.model(), 0.86, 1e-12);
    slider.control().forceActiveFocus(Qt::TabFocusReason);
    slider.key(Qt::Key_Down);
    EXPECT_NEAR(slider.model(), 0.85, 1e-12);
    slider.key(Qt::Key_PageDown);
    EXPECT_NEAR(slider.model(), 0.75, 1e-12);
    slider.key(Qt::Key_End);
    EXPECT_EQ(slider.model(), 1);
    slider.key(Qt::Key_Up);
    EXPECT_EQ(slider.model(), 1);
    slider.key(Qt::Key_Home);
    EXPECT_EQ(slider.model(), 0);
}

TEST(VerticalSlider, aValueFromOutsideMovesItOnlyBeyondAMillionth) {
    Slider slider(positionSlider);
    QSignalSpy changes(&slider.control(), &RangeControl::valueChanged);
    slider.setModel(0.85 + 0.9e-6);
    EXPECT_EQ(slider.control().value(), 0.85);
    slider.setModel(0.85 - 0.9e-6);
    EXPECT_EQ(slider.control().value(), 0.85);
    EXPECT_EQ(changes.size(), 0);
    slider.setModel(0.85 + 1.1e-6);
    EXPECT_EQ(slider.control().value(), 0.85 + 1.1e-6);
    EXPECT_TRUE(slider.moves.empty());
}

TEST(VerticalSlider, theHandleStandsWhereTheValueIs) {
    Slider slider(positionSlider);
    slider.setModel(0.25);
    const QImage picture = slider.picture();
    EXPECT_GT(picture.pixelColor(slider.at(0.25)).red(), 200);
    EXPECT_EQ(picture.pixelColor(slider.at(0.05)).rgb(), Theme::accent().rgb());
    EXPECT_LT(picture.pixelColor(slider.at(0.6)).blue(), 60);
}

TEST(AccentSlider, arrowsWithShiftGoByThePage) {
    Slider slider(sizeSlider);
    slider.control().setProperty("page", 10);
    slider.control().forceActiveFocus(Qt::TabFocusReason);
    slider.key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(slider.model(), 82);
    slider.key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(slider.model(), 72);
    slider.key(Qt::Key_Plus, Qt::ShiftModifier);
    EXPECT_EQ(slider.model(), 74);
}

TEST(RangeControl, isNotMovedByWhatIsNoNumber) {
    for (const char* qml : {sizeSlider, positionSlider}) {
        Slider slider(qml);
        const qreal before = slider.control().value();
        slider.control().moveTo(std::numeric_limits<qreal>::quiet_NaN());
        EXPECT_TRUE(slider.moves.empty());
        EXPECT_EQ(slider.control().value(), before);
    }
}

}  // namespace korvane
