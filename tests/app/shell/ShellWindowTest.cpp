// The whole window as the program makes it, without a display.
#include <gtest/gtest.h>

#include <QDropEvent>
#include <QMimeData>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QTemporaryDir>
#include <QTest>
#include <fstream>

#include "app/AppDelegate.h"
#include "app/ViewController.h"

using namespace korvane;

namespace {

class ShellWindow : public testing::Test {
  protected:
    void SetUp() override {
        controller.viewDidLoad();
        controller.viewDidAppear();
        window = controller.window();
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    }

    /// What answers to a name, as for people who hear the screen.
    QQuickItem* named(const char* accessibleName) const {
        return find(window->contentItem(), QLatin1String(accessibleName));
    }
    static QQuickItem* find(QQuickItem* item, QLatin1String label) {
        if (item->property("label").toString() == label)
            return item;
        for (auto* child : item->childItems())
            if (auto* found = find(child, label))
                return found;
        return nullptr;
    }
    QPoint middleOf(QQuickItem* item) const {
        return item->mapToScene({item->width() / 2, item->height() / 2}).toPoint();
    }
    /// \return whether the window takes what hovers over it.
    bool dragOver(const QMimeData& data) {
        QDragEnterEvent enter({400, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &enter);
        return enter.isAccepted();
    }
    void drop(const QMimeData& data) {
        QDropEvent event({400, 300}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(window, &event);
    }
    std::string makeClip(const char* name) {
        const auto path = std::filesystem::path(folder.path().toStdString()) / name;
        std::ofstream(path) << "not really";
        return path.string();
    }
    static QList<QUrl> urls(const std::vector<std::string>& paths) {
        QList<QUrl> list;
        for (const auto& path : paths)
            list << QUrl::fromLocalFile(QString::fromStdString(path));
        return list;
    }

    QTemporaryDir folder;
    ViewController controller;
    QQuickWindow* window = nullptr;
};

TEST(ViewControllerAlone, stylingWithoutAWindowDoesNothing) {
    ViewController controller;
    controller.viewDidAppear();
    EXPECT_EQ(controller.window(), nullptr);
}

TEST(AppDelegateAlone, letsItsStateBeRestoredSecurely) {
    EXPECT_TRUE(AppDelegate().applicationSupportsSecureRestorableState());
}

TEST_F(ShellWindow, isNamedFramelessAndOfAComfortableSize) {
    EXPECT_EQ(window->title(), QStringLiteral("Korvane"));
    EXPECT_TRUE(window->flags().testFlag(Qt::FramelessWindowHint));
    EXPECT_LE(window->minimumWidth(), 960);
    EXPECT_LE(window->minimumHeight(), 680);
    EXPECT_LE(window->width(), 1180);
}

TEST_F(ShellWindow, titleButtonsAct) {
    auto* maximise = named("Maximise");
    ASSERT_NE(maximise, nullptr);
    QTest::mouseClick(window, Qt::LeftButton, {}, middleOf(maximise));
    EXPECT_TRUE(window->windowStates().testFlag(Qt::WindowMaximized));
    auto* restore = named("Restore");
    ASSERT_NE(restore, nullptr);
    QTest::mouseClick(window, Qt::LeftButton, {}, middleOf(restore));
    EXPECT_FALSE(window->windowStates().testFlag(Qt::WindowMaximized));
    ASSERT_NE(named("Minimise"), nullptr);
    QTest::mouseClick(window, Qt::LeftButton, {}, middleOf(named("Close")));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ShellWindow, aDoubleClickOnTheStripMaximisesAndRestores) {
    const QPoint strip(window->width() / 2, 18);
    QTest::mouseDClick(window, Qt::LeftButton, {}, strip);
    EXPECT_TRUE(window->windowStates().testFlag(Qt::WindowMaximized));
    QTest::mouseDClick(window, Qt::LeftButton, {}, strip);
    EXPECT_FALSE(window->windowStates().testFlag(Qt::WindowMaximized));
}

TEST_F(ShellWindow, draggingTheGroundMovesIt) {
    window->setPosition(20, 20);
    const QPoint grip(window->width() / 2, 18);
    QTest::mousePress(window, Qt::LeftButton, {}, grip);
    QTest::mouseMove(window, grip + QPoint(30, 10));
    EXPECT_EQ(window->position(), QPoint(50, 30));
    QTest::mouseRelease(window, Qt::LeftButton, {}, grip);
}

TEST_F(ShellWindow, draggingAnEdgeResizesIt) {
    window->setGeometry(0, 0, 1000, 700);
    const QPoint grip(2, 350);
    QTest::mousePress(window, Qt::LeftButton, {}, grip);
    QTest::mouseMove(window, grip + QPoint(25, 0));
    EXPECT_EQ(window->geometry(), QRect(25, 0, 975, 700));
    QTest::mouseRelease(window, Qt::LeftButton, {}, grip);
}

TEST_F(ShellWindow, aTitleButtonIsNoGround) {
    window->setPosition(20, 20);
    const QPoint grip = middleOf(named("Minimise"));
    QTest::mousePress(window, Qt::LeftButton, {}, grip);
    QTest::mouseMove(window, grip + QPoint(0, 60));
    QTest::mouseRelease(window, Qt::LeftButton, {}, grip + QPoint(0, 60));
    EXPECT_EQ(window->position(), QPoint(20, 20));
}

TEST_F(ShellWindow, takesOneDroppedFile) {
    const auto clip = makeClip("clip.mp4");
    QMimeData data;
    data.setUrls(urls({clip}));
    EXPECT_TRUE(dragOver(data));
    drop(data);
    EXPECT_EQ(controller.contentView()->selectedURL(), clip);
}

TEST_F(ShellWindow, takesNeitherSeveralFilesNorNone) {
    QMimeData two;
    two.setUrls(urls({makeClip("a.mp4"), makeClip("b.mp4")}));
    EXPECT_FALSE(dragOver(two));
    QMimeData text;
    text.setText(QStringLiteral("/home/someone/clip.mp4"));
    EXPECT_FALSE(dragOver(text));
    QMimeData web;
    web.setUrls({QUrl(QStringLiteral("https://example.org/clip.mp4"))});
    EXPECT_FALSE(dragOver(web));
}

TEST_F(ShellWindow, opensTheVideoOfTheCommandLine) {
    const auto clip = makeClip("clip.mov");
    controller.openVideo(clip);
    EXPECT_EQ(controller.contentView()->selectedURL(), clip);
}

TEST_F(ShellWindow, aVideoThatIsNotThereIsRefusedOnTheScreen) {
    controller.openVideo("nowhere/clip.mp4");
    EXPECT_FALSE(controller.contentView()->hasVideo());
    EXPECT_TRUE(controller.contentView()->hasError());
}

TEST_F(ShellWindow, theKeyboardFillsTheScreenLeavesItAndCloses) {
    window->requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_F11);
    EXPECT_TRUE(window->windowStates().testFlag(Qt::WindowFullScreen));
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_FALSE(window->windowStates().testFlag(Qt::WindowFullScreen));
    QTest::keyClick(window, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
}

}  // namespace
