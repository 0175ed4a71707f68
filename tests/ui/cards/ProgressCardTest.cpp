#include "ShownCard.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

class ProgressCard : public testing::Test {
  protected:
    ShownCard shown_{"ProgressCard",
                     {{QStringLiteral("dotColor"), Theme::white(0.25)},
                      {QStringLiteral("statusText"), QStringLiteral("Transcribing speech…")},
                      {QStringLiteral("etaText"), QStringLiteral("~3m 7s left")},
                      {QStringLiteral("percentText"), QStringLiteral("42%")},
                      {QStringLiteral("phaseText"), QStringLiteral("Transcribing")},
                      {QStringLiteral("progress"), 0.429},
                      {QStringLiteral("barFill"), 100.0}}};
    QQuickItem& status_ = shown_.named("statusText");
    QQuickItem& phase_ = shown_.named("phaseText");
    QQuickItem& eta_ = shown_.named("etaText");
    QQuickItem& percent_ = shown_.named("percentText");
    QQuickItem& between_ = shown_.saying("·");
    QQuickItem& bar_ = shown_.named("progressBar");
    QQuickItem& fill_ =
        shown_.where([](const QQuickItem& item) { return item.property("gradientFrom").isValid(); });
    QQuickItem& dot_ = shown_.where([](const QQuickItem& item) {
        return item.size() == QSizeF(8, 8) && item.property("radius").toDouble() == 4;
    });

    /// Where a text's letters are, not only the room that it has.
    QRectF letters(const QQuickItem& item) const {
        const double width = item.property("contentWidth").toDouble();
        const bool isRight = item.property("horizontalAlignment").toInt() == Qt::AlignRight;
        const QRectF all = shown_.place(item);
        return {isRight ? all.right() - width : all.left(), all.top(), width, all.height()};
    }
    /// That whatever is shown stands from left to right, with air between.
    void expectInARow() {
        std::vector<QRectF> places{shown_.place(dot_)};
        for (const QQuickItem* item : {&status_, &phase_, &between_, &eta_, &percent_})
            if (item->isVisible())
                places.push_back(letters(*item));
        for (std::size_t i = 1; i < places.size(); ++i)
            EXPECT_LE(places[i - 1].right() + 4, places[i].left()) << i;
        EXPECT_LE(places.back().right(), shown_.place(*shown_.card).right() - 16);
        EXPECT_GT(status_.width(), 0);
    }
    /// Rows are laid out before a picture is drawn.
    void settle() { EXPECT_FALSE(shown_.window.grabWindow().isNull()); }
};

TEST_F(ProgressCard, showsEverythingInOneRowAboveTheBar) {
    EXPECT_EQ(text(status_), QStringLiteral("Transcribing speech…"));
    EXPECT_EQ(text(phase_), QStringLiteral("Transcribing"));
    EXPECT_EQ(text(eta_), QStringLiteral("~3m 7s left"));
    EXPECT_EQ(text(percent_), QStringLiteral("42%"));
    for (const QQuickItem* item : {&status_, &phase_, &between_, &eta_, &percent_}) {
        EXPECT_TRUE(item->isVisible());
        EXPECT_LT(shown_.place(*item).bottom(), shown_.place(bar_).top());
        EXPECT_NEAR(shown_.place(*item).center().y(), shown_.place(status_).center().y(), 2);
    }
    expectInARow();
}

TEST_F(ProgressCard, anEmptyPhaseOrTimeLeftTakesNoRoom) {
    const qreal end = shown_.place(eta_).right();
    shown_.set("phaseText", QString());
    settle();
    EXPECT_FALSE(phase_.isVisible());
    EXPECT_FALSE(between_.isVisible());
    EXPECT_TRUE(eta_.isVisible());
    EXPECT_EQ(shown_.place(eta_).right(), end);
    expectInARow();
    shown_.set("phaseText", QStringLiteral("Transcribing"));
    shown_.set("etaText", QString());
    settle();
    EXPECT_TRUE(phase_.isVisible());
    EXPECT_FALSE(between_.isVisible());
    EXPECT_FALSE(eta_.isVisible());
    EXPECT_EQ(shown_.place(phase_).right(), end);
    expectInARow();
    const qreal narrow = status_.width();
    shown_.set("phaseText", QString());
    settle();
    EXPECT_FALSE(phase_.isVisible());
    EXPECT_GT(status_.width(), narrow + 40);
    expectInARow();
}

TEST_F(ProgressCard, aLongStatusIsShortenedBeforePhaseAndTimeLeft) {
    shown_.set("statusText", QStringLiteral("Exporting a reel that has a status of quite uncommon length, "
                                            "longer than anybody would ever want to read it…"));
    settle();
    EXPECT_TRUE(status_.property("truncated").toBool());
    expectInARow();
    shown_.set("width", 380);
    settle();
    expectInARow();
    shown_.set("phaseText", QString());
    shown_.set("etaText", QString());
    settle();
    EXPECT_TRUE(status_.property("truncated").toBool());
    expectInARow();
}

TEST_F(ProgressCard, nothingMovesWhileThePercentageGrows) {
    const QRectF column = shown_.place(percent_);
    const QRectF phase = shown_.place(phase_);
    const QRectF eta = shown_.place(eta_);
    for (const char* shown : {"0%", "1%", "11%", "88%", "100%"}) {
        shown_.set("percentText", QString::fromUtf8(shown));
        settle();
        EXPECT_EQ(shown_.place(percent_), column) << shown;
        EXPECT_EQ(shown_.place(phase_), phase) << shown;
        EXPECT_EQ(shown_.place(eta_), eta) << shown;
        EXPECT_EQ(letters(percent_).right(), 560 - 16) << shown;
        EXPECT_GE(letters(percent_).left(), column.left()) << shown;
    }
}

TEST_F(ProgressCard, theBarIsFilledAsFarAsItIsTold) {
    EXPECT_EQ(fill_.width(), 100);
    EXPECT_EQ(shown_.place(fill_).left(), shown_.place(bar_).left());
    shown_.set("barFill", 0.0);
    EXPECT_EQ(fill_.width(), 0);
    shown_.set("barFill", 10.0);
    EXPECT_EQ(fill_.width(), 10);
    shown_.set("barFill", bar_.width());
    EXPECT_EQ(shown_.place(fill_), shown_.place(bar_));
    shown_.set("barFill", 5000.0);
    EXPECT_EQ(shown_.place(fill_), shown_.place(bar_));
}

TEST_F(ProgressCard, theBarIsAsWideAsTheCardAllowsAndTellsSo) {
    EXPECT_EQ(bar_.width(), 560 - 2 * 16);
    EXPECT_EQ(shown_.card->property("barTotal").toDouble(), 560 - 2 * 16);
    shown_.set("width", 700);
    EXPECT_EQ(bar_.width(), 700 - 2 * 16);
    EXPECT_EQ(shown_.card->property("barTotal").toDouble(), 700 - 2 * 16);
    EXPECT_EQ(bar_.property("value").toDouble(), 0.429);
}

TEST_F(ProgressCard, theDotTakesItsColourBesideTheStatus) {
    EXPECT_EQ(colorOf(dot_), nameOf(Theme::white(0.25)));
    for (const QColor& color : {Theme::accent(), Theme::successGreen(), Theme::orange()}) {
        shown_.set("dotColor", color);
        EXPECT_TRUE(shown_.wait([&] { return colorOf(dot_) == nameOf(color); })) << nameOf(color);
    }
    EXPECT_NEAR(shown_.place(dot_).center().y(), shown_.place(status_).center().y(), 0.5);
}

}  // namespace
}  // namespace korvane
