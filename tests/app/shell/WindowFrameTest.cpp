#include "app/WindowFrame.h"

#include <gtest/gtest.h>

#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include "tests/app/shell/MadeUpDesktop.h"

using namespace korvane;

namespace {

class WindowFrameTest : public testing::Test {
  protected:
    void SetUp() override {
        frame.setWindow(&window);
        window.setMinimumSize({300, 200});
        window.setGeometry(50, 60, 400, 300);
        window.show();
    }

    MadeUpDesktop desktop;
    bool hasCompositor = true;
    int questions = 0;
    WindowFrame frame{desktop.settings(), [this] {
                          ++questions;
                          return hasCompositor;
                      }};
    QWindow window;
};

TEST(WindowFrameAlone, withoutAWindowNothingHappens) {
    MadeUpDesktop desktop;
    WindowFrame frame(desktop.settings(), [] { return true; });
    frame.setWindow(nullptr);
    frame.close();
    frame.minimize();
    frame.toggleMaximized();
    frame.toggleFullScreen();
    frame.pressGround({0, 0});
    frame.pressEdge(Qt::LeftEdge, {0, 0});
    frame.movePointer({100, 100});
    frame.release();
    EXPECT_FALSE(frame.isMaximized());
    EXPECT_FALSE(frame.canResize());
}

TEST(WindowFrameAlone, theButtonsStandWhereTheDesktopHasThem) {
    MadeUpDesktop desktop("close,maximize:menu");
    const WindowFrame frame(desktop.settings(), [] { return true; });
    EXPECT_TRUE(frame.buttonsOnLeft());
    EXPECT_EQ(frame.buttons(),
              (QStringList{QStringLiteral("close"), QStringLiteral("maximize"), QStringLiteral("minimize")}));
}

TEST(WindowFrameAlone, theMiddleButtonSaysWhatItWillDo) {
    const QString maximize = QStringLiteral("maximize");
    EXPECT_EQ(WindowFrame::buttonLabel(maximize, false), QStringLiteral("Maximize"));
    EXPECT_EQ(WindowFrame::buttonLabel(maximize, true), QStringLiteral("Restore"));
    EXPECT_NE(WindowFrame::buttonIcon(maximize, false), WindowFrame::buttonIcon(maximize, true));
}

TEST_F(WindowFrameTest, theWindowHasNoFrameOfTheDesktop) {
    EXPECT_TRUE(window.flags().testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(window.flags().testFlag(Qt::WindowMinMaxButtonsHint));
}

TEST_F(WindowFrameTest, cornersAreRoundOnlyInTheOpenAndWithACompositor) {
    EXPECT_EQ(frame.cornerRadius(), 12);
    frame.toggleMaximized();
    EXPECT_TRUE(frame.isMaximized());
    EXPECT_EQ(frame.cornerRadius(), 0);
    frame.toggleMaximized();
    EXPECT_EQ(frame.cornerRadius(), 12);
    frame.toggleFullScreen();
    EXPECT_TRUE(frame.isFullScreen());
    EXPECT_EQ(frame.cornerRadius(), 0);
    frame.toggleFullScreen();
    hasCompositor = false;
    window.hide();
    EXPECT_TRUE(QTest::qWaitFor([this] { return frame.cornerRadius() == 0; }));
}

TEST_F(WindowFrameTest, movingAndResizingAskNobodyForTheCompositor) {
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    const int before = questions;
    ASSERT_GT(before, 0);
    const QSignalSpy told(&window, &QWindow::heightChanged);
    window.setGeometry(80, 90, 500, 350);
    EXPECT_TRUE(QTest::qWaitFor([&] { return told.count() > 0; }));
    EXPECT_EQ(questions, before);
}

TEST_F(WindowFrameTest, aWindowFromEdgeToEdgeLosesItsCornersWithoutAQuestion) {
    const QRect free = window.screen()->availableGeometry();
    window.setGeometry(free.x(), free.y(), free.width() / 2, free.height());
    EXPECT_TRUE(QTest::qWaitFor([this] { return frame.cornerRadius() == 0; }));
    window.setGeometry(50, 60, 400, 300);
    EXPECT_TRUE(QTest::qWaitFor([this] { return frame.cornerRadius() == 12; }));
}

TEST_F(WindowFrameTest, minimisingKeepsItMaximised) {
    frame.toggleMaximized();
    frame.minimize();
    EXPECT_TRUE(window.windowStates().testFlag(Qt::WindowMinimized));
    EXPECT_TRUE(frame.isMaximized());
}

TEST_F(WindowFrameTest, aTremblingHandDoesNotMoveIt) {
    frame.pressGround({200, 200});
    frame.movePointer({204, 204});
    EXPECT_EQ(window.position(), QPoint(50, 60));
    frame.movePointer({200, 206});
    EXPECT_EQ(window.position(), QPoint(50, 66));
}

TEST_F(WindowFrameTest, whereTheDesktopMovesNothingItFollowsThePointer) {
    frame.pressGround({200, 200});
    frame.movePointer({230, 190});
    EXPECT_EQ(window.position(), QPoint(80, 50));
    frame.movePointer({203, 201});  // back within the threshold: it has been moving already
    EXPECT_EQ(window.position(), QPoint(53, 61));
    frame.release();
    frame.movePointer({300, 300});
    EXPECT_EQ(window.position(), QPoint(53, 61));
}

TEST_F(WindowFrameTest, itsEdgesFollowThePointerDownToTheSmallestSize) {
    frame.pressEdge(Qt::LeftEdge | Qt::TopEdge, {50, 60});
    frame.movePointer({40, 55});
    EXPECT_EQ(window.geometry(), QRect(40, 55, 410, 305));
    frame.movePointer({400, 400});
    EXPECT_EQ(window.geometry(), QRect(150, 160, 300, 200));
    frame.release();
}

TEST_F(WindowFrameTest, aWindowThatFillsTheScreenHasNoEdges) {
    frame.toggleMaximized();
    const QRect before = window.geometry();
    frame.pressEdge(Qt::RightEdge, {400, 100});
    frame.movePointer({300, 100});
    frame.pressGround({200, 200});
    frame.movePointer({260, 200});
    frame.movePointer({300, 200});
    EXPECT_EQ(window.geometry(), before);
}

TEST_F(WindowFrameTest, closingHidesIt) {
    frame.close();
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
