#include <QClipboard>
#include <QElapsedTimer>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QWheelEvent>

#include "ShownCard.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

/// Twelve lines that are all longer than the window is wide, the last one with an end of its own.
QString longMessage() {
    QString lines;
    for (int i = 1; i <= 12; ++i)
        lines += QStringLiteral("Line %1 of what went wrong.\n").arg(i);
    return lines + QStringLiteral("The end.");
}

class ErrorCard : public testing::Test {
  protected:
    ShownCard shown_{"ErrorCard", {{QStringLiteral("message"), QString()}, {QStringLiteral("shown"), false}}};
    QQuickItem& text_ = shown_.named("errorText");
    QQuickItem& sign_ = shown_.with("name", QStringLiteral("exclamationmark.triangle.fill"));
    QQuickItem& area_ = shown_.where([](const QQuickItem& item) { return item.inherits("QQuickFlickable"); });
    /// The visible piece, of which a card that is still opening shows a part.
    QQuickItem& glass_ =
        shown_.where([](const QQuickItem& item) { return item.property("verticalPadding").isValid(); });

    /// As the screen does it: the words first, or both gone at once.
    void show(const QString& message) {
        shown_.set("message", message);
        shown_.set("shown", true);
        EXPECT_TRUE(shown_.wait([&] { return isOpen(); }));
    }
    bool isOpen() const { return shown_.card->opacity() == 1 && shown_.card->height() == glass_.height(); }
    void hide() {
        shown_.set("message", QString());
        shown_.set("shown", false);
    }
    QElapsedTimer sinceStart_;

    ErrorCard() { sinceStart_.start(); }
    double scrolled() const { return area_.property("contentY").toDouble(); }
    double furthest() const { return area_.property("contentHeight").toDouble() - area_.height(); }
    void wheel(int eighths) {
        const QPointF at = shown_.place(area_).center();
        QWheelEvent event(at, shown_.window.mapToGlobal(at), QPoint(), QPoint(0, eighths), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        event.setTimestamp(static_cast<quint64>(sinceStart_.elapsed()));  // speeds are told from it
        QCoreApplication::sendEvent(&shown_.window, &event);
    }
};

/// The heights that an item takes from now on.
class Heights {
  public:
    explicit Heights(QQuickItem& item) {
        QObject::connect(&item, &QQuickItem::heightChanged, &scope_,
                         [this, &item] { values.push_back(item.height()); });
    }
    /// Points of the largest step between two of them.
    double largestStep(double from) const {
        double largest = 0;
        for (const double value : values) {
            largest = std::max(largest, std::abs(value - from));
            from = value;
        }
        return largest;
    }
    std::vector<double> values;

  private:
    QObject scope_;
};

TEST_F(ErrorCard, withoutAnErrorIsNotThere) {
    EXPECT_EQ(shown_.card->height(), 0);
    EXPECT_FALSE(shown_.card->isVisible());
    EXPECT_FALSE(text_.isVisible());
    shown_.key(Qt::Key_Tab);
    EXPECT_FALSE(text_.hasActiveFocus());
}

TEST_F(ErrorCard, showsTheMessageBesideAWarning) {
    show(QStringLiteral("The source video has no audio track."));
    EXPECT_EQ(text(text_), QStringLiteral("The source video has no audio track."));
    EXPECT_TRUE(text_.isVisible());
    EXPECT_TRUE(sign_.isVisible());
    EXPECT_EQ(sign_.size(), QSizeF(16, 16));
    EXPECT_EQ(colorOf(sign_), nameOf(Theme::orange()));
    EXPECT_LT(shown_.place(sign_).right(), shown_.place(text_).left());
    EXPECT_TRUE(shown_.place(*shown_.card).contains(shown_.place(sign_)));
    EXPECT_TRUE(shown_.place(*shown_.card).contains(shown_.place(text_)));
}

TEST_F(ErrorCard, messagesWithMarksOfMarkupAreShownAsTheyAre) {
    show(QStringLiteral("Could not open “<b>a</b> & b.mp4”."));
    EXPECT_EQ(text(text_), QStringLiteral("Could not open “<b>a</b> & b.mp4”."));
    EXPECT_EQ(text_.property("textFormat").toInt(), Qt::PlainText);
}

TEST_F(ErrorCard, opensSmoothly) {
    Heights heights(*shown_.card);
    show(longMessage());
    ASSERT_GE(heights.values.size(), 4u);
    EXPECT_TRUE(std::is_sorted(heights.values.begin(), heights.values.end()));
    EXPECT_LT(heights.values.front(), glass_.height() / 2);
    EXPECT_EQ(heights.values.back(), glass_.height());
}

TEST_F(ErrorCard, closesSmoothlyAndLeavesNothing) {
    show(longMessage());
    const double open = shown_.card->height();
    Heights heights(*shown_.card);
    hide();
    EXPECT_GT(shown_.card->height(), open / 2);
    ASSERT_TRUE(shown_.wait([&] { return shown_.card->height() == 0; }));
    EXPECT_GE(heights.values.size(), 4u);
    EXPECT_TRUE(std::is_sorted(heights.values.rbegin(), heights.values.rend()));
    EXPECT_FALSE(shown_.card->isVisible());
    EXPECT_TRUE(shown_.wait([&] { return shown_.card->opacity() == 0; }));
}

TEST_F(ErrorCard, keepsItsWordsWhileItCloses) {
    show(longMessage());
    const double open = glass_.height();
    hide();
    EXPECT_EQ(glass_.height(), open);
    EXPECT_EQ(text(text_), longMessage());
}

TEST_F(ErrorCard, anErrorDuringTheClosingOpensItAgain) {
    show(longMessage());
    hide();
    ASSERT_TRUE(shown_.wait([&] { return shown_.card->height() < glass_.height() / 2; }));
    show(QStringLiteral("Again."));
    EXPECT_EQ(text(text_), QStringLiteral("Again."));
    EXPECT_TRUE(shown_.card->isVisible());
}

TEST_F(ErrorCard, aLongMessageIsFiveLinesHighAndScrollsToItsEnd) {
    show(longMessage());
    EXPECT_LT(shown_.card->height(), 6 * QFontMetricsF(fontOf(text_)).lineSpacing() + 24);
    EXPECT_GT(furthest(), 0);
    for (int i = 0; i < 40 && scrolled() < furthest(); ++i) {
        wheel(-120);
        QTest::qWait(10);
    }
    EXPECT_TRUE(shown_.wait([&] { return std::abs(scrolled() - furthest()) < 1; })) << scrolled();
}

TEST_F(ErrorCard, aShortMessageDoesNotScroll) {
    show(QStringLiteral("Short."));
    EXPECT_LE(furthest(), 1);
    EXPECT_FALSE(area_.property("interactive").toBool());
}

TEST_F(ErrorCard, theKeyboardScrollsALongMessage) {
    show(longMessage());
    shown_.key(Qt::Key_Tab);
    ASSERT_TRUE(text_.hasActiveFocus());
    EXPECT_EQ(scrolled(), 0);
    for (int line = 1; line <= 14; ++line) {
        const double before = scrolled();
        shown_.key(Qt::Key_Down);
        EXPECT_GE(scrolled(), before);
        EXPECT_LT(scrolled(), before + 30);
    }
    EXPECT_NEAR(scrolled(), furthest(), 1);
    for (int line = 1; line <= 14; ++line)
        shown_.key(Qt::Key_Up);
    EXPECT_NEAR(scrolled(), 0, 1);
    QTest::keyClick(&shown_.window, Qt::Key_End, Qt::ControlModifier);
    EXPECT_NEAR(scrolled(), furthest(), 1);
}

TEST_F(ErrorCard, theNextMessageBeginsAtItsBeginning) {
    show(longMessage());
    area_.setProperty("contentY", furthest());
    show(longMessage() + QStringLiteral(" And more."));
    EXPECT_EQ(scrolled(), 0);
}

TEST_F(ErrorCard, itsWordsCanBeCopied) {
    show(QStringLiteral("Copy me."));
    text_.forceActiveFocus(Qt::TabFocusReason);
    QTest::mouseDClick(&shown_.window, Qt::LeftButton, {},
                       shown_.place(text_).topLeft().toPoint() + QPoint(8, 8));
    EXPECT_EQ(text_.property("selectedText").toString(), QStringLiteral("Copy"));
    QTest::keyClick(&shown_.window, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("Copy"));
}

TEST_F(ErrorCard, aRingAroundItsWordsShowsThatTheKeysAreHereUnlessAPointerBroughtThem) {
    QQuickItem& ring = shown_.where([](const QQuickItem& item) { return item.property("gap").isValid(); });
    show(longMessage());
    EXPECT_FALSE(ring.isVisible());
    shown_.key(Qt::Key_Tab);
    ASSERT_TRUE(text_.hasActiveFocus());
    EXPECT_TRUE(ring.isVisible());
    EXPECT_TRUE(ShownCard::place(ring).contains(ShownCard::place(area_)));
    text_.setFocus(false);
    EXPECT_FALSE(ring.isVisible());
    QTest::mouseClick(&shown_.window, Qt::LeftButton, {}, ShownCard::place(area_).center().toPoint());
    ASSERT_TRUE(text_.hasActiveFocus());
    EXPECT_FALSE(ring.isVisible());
}

TEST_F(ErrorCard, aWayOutStandsBesideTheWordsAndStaysWhileTheCardCloses) {
    QQuickItem& way = shown_.named("installModel");
    QSignalSpy requested(shown_.card.get(), SIGNAL(modelRequested(bool)));
    show(QStringLiteral("It did not work."));
    EXPECT_FALSE(way.isVisible());
    shown_.set("modelWouldHelp", true);
    ASSERT_TRUE(shown_.wait([&] { return isOpen(); }));
    EXPECT_TRUE(way.isVisible());
    EXPECT_LT(shown_.place(area_).right(), shown_.place(way).left());
    EXPECT_NEAR(shown_.place(area_).center().y(), shown_.place(way).center().y(), 1);
    EXPECT_TRUE(shown_.place(glass_).contains(shown_.place(way)));
    shown_.click(way);
    ASSERT_EQ(requested.size(), 1);
    EXPECT_FALSE(requested.back().front().toBool());
    shown_.focus(text_);
    shown_.key(Qt::Key_Tab);
    ASSERT_TRUE(way.hasActiveFocus());
    shown_.key(Qt::Key_Space);
    EXPECT_TRUE(requested.back().front().toBool()) << "by the keyboard";

    const double open = glass_.height();
    shown_.set("shown", false);
    shown_.set("modelWouldHelp", false);
    EXPECT_EQ(glass_.height(), open);
    EXPECT_TRUE(way.isVisible());
    EXPECT_FALSE(way.isEnabled());
}

TEST_F(ErrorCard, anErrorThatAModelDoesNotHelpWithComesWithoutTheWayOutOfTheOneBefore) {
    QQuickItem& way = shown_.named("installModel");
    show(QStringLiteral("No recogniser."));
    shown_.set("modelWouldHelp", true);
    ASSERT_TRUE(shown_.wait([&] { return isOpen() && way.isVisible(); }));
    shown_.set("message", QString());
    shown_.set("shown", false);
    shown_.set("modelWouldHelp", false);
    ASSERT_TRUE(way.isVisible()) << "while the card closes";
    show(QStringLiteral("There is no folder."));
    EXPECT_FALSE(way.isVisible());
}

}  // namespace
}  // namespace korvane
