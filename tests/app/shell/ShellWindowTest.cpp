// The whole window as the program makes it, without a display.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QDropEvent>
#include <QMimeData>
#include <QPalette>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <fstream>
#include <functional>
#include <utility>

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
        return firstWhere(window->contentItem(), [=](QQuickItem* item) {
            return item->property("label").toString() == QLatin1String(accessibleName);
        });
    }
    /// The first item of a type, whose name has the beginning given.
    QQuickItem* ofType(const char* beginning) const {
        return firstWhere(window->contentItem(), [=](QQuickItem* item) {
            return QByteArrayView(item->metaObject()->className()).contains(beginning);
        });
    }
    QQuickItem* saying(const char* text) const {
        return firstWhere(window->contentItem(), [=](QQuickItem* item) {
            return item->property("text").toString() == QLatin1String(text);
        });
    }
    static QQuickItem* firstWhere(QQuickItem* item, const std::function<bool(QQuickItem*)>& isIt) {
        if (isIt(item))
            return item;
        for (auto* child : item->childItems())
            if (auto* found = firstWhere(child, isIt))
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

TEST_F(ShellWindow, groundAndScreenFillItAndFollowItsSize) {
    for (const QSize size : {window->size(), QSize(1012, 707)}) {
        window->resize(size);
        const auto* ground = ofType("WindowBackground");
        const auto* screen = ofType("Screen_QMLTYPE");
        ASSERT_TRUE(ground && screen);
        EXPECT_TRUE(QTest::qWaitFor([&] { return ground->size() == size; }));
        EXPECT_EQ(ground->mapToScene({0, 0}), QPointF(0, 0));
        // A strip above, the gap of the cards on the other sides.
        EXPECT_EQ(QRectF(screen->mapToScene({0, 0}), screen->size()),
                  QRectF(12, 36, size.width() - 24, size.height() - 48));
    }
}

TEST_F(ShellWindow, theKeyboardComesToTheContentFirstAndToTheTitleButtonsLast) {
    window->requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, Qt::Key_Tab);
    ASSERT_NE(window->activeFocusItem(), nullptr);
    EXPECT_EQ(window->activeFocusItem()->property("name").toString(), QStringLiteral("Spoken language"));
    for (const char* label : {"Close", "Maximize", "Minimize"}) {
        QTest::keyClick(window, Qt::Key_Backtab, Qt::ShiftModifier);
        EXPECT_EQ(window->activeFocusItem()->property("label").toString(), QLatin1String(label));
    }
}

TEST_F(ShellWindow, titleButtonsArePressedByReturnEnterAndSpace) {
    window->requestActivate();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    auto* button = named("Maximize");
    ASSERT_NE(button, nullptr);
    bool isMaximized = false;
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        button->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(window, key);
        isMaximized = !isMaximized;
        EXPECT_EQ(window->windowStates().testFlag(Qt::WindowMaximized), isMaximized) << key;
    }
}

TEST_F(ShellWindow, titleButtonsAct) {
    auto* maximize = named("Maximize");
    ASSERT_NE(maximize, nullptr);
    QTest::mouseClick(window, Qt::LeftButton, {}, middleOf(maximize));
    EXPECT_TRUE(window->windowStates().testFlag(Qt::WindowMaximized));
    auto* restore = named("Restore");
    ASSERT_NE(restore, nullptr);
    QTest::mouseClick(window, Qt::LeftButton, {}, middleOf(restore));
    EXPECT_FALSE(window->windowStates().testFlag(Qt::WindowMaximized));
    ASSERT_NE(named("Minimize"), nullptr);
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
    const QPoint grip = middleOf(named("Minimize"));
    QTest::mousePress(window, Qt::LeftButton, {}, grip);
    QTest::mouseMove(window, grip + QPoint(0, 60));
    QTest::mouseRelease(window, Qt::LeftButton, {}, grip + QPoint(0, 60));
    EXPECT_EQ(window->position(), QPoint(20, 20));
}

TEST_F(ShellWindow, aControlThatIsSwitchedOffIsNoGround) {
    window->setPosition(20, 20);
    auto* transcribe = saying("Transcribe");
    ASSERT_NE(transcribe, nullptr);
    ASSERT_FALSE(transcribe->isEnabled());
    const QPoint grip = middleOf(transcribe);
    QTest::mousePress(window, Qt::LeftButton, {}, grip);
    QTest::mouseMove(window, grip + QPoint(30, 10));
    QTest::mouseRelease(window, Qt::LeftButton, {}, grip + QPoint(30, 10));
    EXPECT_EQ(window->position(), QPoint(20, 20));
}

TEST_F(ShellWindow, saysWhatADropWillDoWhileItHovers) {
    auto* sign = saying("Drop the video to load it");
    ASSERT_NE(sign, nullptr);
    EXPECT_FALSE(sign->isVisible());
    QMimeData data;
    data.setUrls(urls({makeClip("clip.mp4")}));
    ASSERT_TRUE(dragOver(data));
    EXPECT_TRUE(sign->isVisible());
    drop(data);
    EXPECT_FALSE(sign->isVisible());
}

TEST_F(ShellWindow, thePanelIsAsDarkAsTheWindow) {
    QPalette palette;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        auto* panel = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (panel == nullptr)
            return;
        palette = panel->palette();
        panel->reject();
    });
    timer.start(1);
    controller.contentView()->openFilePicker();
    for (const auto& [ground, text] :
         {std::pair(QPalette::Window, QPalette::WindowText), std::pair(QPalette::Base, QPalette::Text),
          std::pair(QPalette::Button, QPalette::ButtonText),
          std::pair(QPalette::Highlight, QPalette::HighlightedText)}) {
        EXPECT_GT(palette.color(text).lightness(), 200) << text;
        EXPECT_LT(palette.color(ground).lightness(), 130) << ground;
    }
    for (const auto text : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        EXPECT_LT(palette.color(QPalette::Disabled, text).lightness(), palette.color(text).lightness() - 80)
            << text;
}

TEST_F(ShellWindow, takesOneDroppedFile) {
    const auto clip = makeClip("clip.mp4");
    QMimeData data;
    data.setUrls(urls({clip}));
    EXPECT_TRUE(dragOver(data));
    drop(data);
    EXPECT_EQ(controller.contentView()->selectedURL(), clip);
}

TEST_F(ShellWindow, refusesSeveralFilesAloud) {
    QMimeData two;
    two.setUrls(urls({makeClip("a.mp4"), makeClip("b.mp4")}));
    EXPECT_TRUE(dragOver(two));
    drop(two);
    EXPECT_FALSE(controller.contentView()->hasVideo());
    EXPECT_TRUE(controller.contentView()->hasError());
}

TEST_F(ShellWindow, doesNotTakeWhatIsNoLocalFile) {
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
