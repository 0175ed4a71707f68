#include <gtest/gtest.h>

#include <QTimer>

#include "tests/ui/words/ShownWords.h"
#include "ui/controls/Theme.h"

using korvane::Theme;
using korvane::test::numberedWords;
using korvane::test::ShownWords;

namespace {

struct Card : ShownWords {
    explicit Card(int count, QSize size = {420, 360}) : ShownWords(numberedWords(count), size, Part::card) {
        QObject::connect(view.rootObject(), SIGNAL(allChosen()), &all, SLOT(start()));
        QObject::connect(view.rootObject(), SIGNAL(noneChosen()), &none, SLOT(start()));
    }
    bool chose(QTimer& timer) {
        const bool active = timer.isActive();
        timer.stop();
        return active;
    }
    void clickOn(const char* name) {
        QQuickItem& target = item(name);
        QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier,
                          target.mapToScene(QPointF(target.width() / 2, target.height() / 2)).toPoint());
    }
    QTimer all;
    QTimer none;
};

}  // namespace

TEST(WordsCard, showsTheGivenTitleAndBothShortcuts) {
    Card card(1);
    card.view.rootObject()->setProperty("title", QStringLiteral("Words — 1 token"));
    EXPECT_EQ(card.item("title").property("text").toString(), QStringLiteral("Words — 1 token"));
    EXPECT_EQ(card.item("title").property("size").toDouble(), 16);
    for (const char* name : {"all", "none"}) {
        EXPECT_TRUE(card.item(name).isVisible());
        EXPECT_EQ(card.item(name).property("size").toDouble(), 11);
        EXPECT_EQ(card.item(name).property("weight").toInt(), QFont::Medium);
    }
    EXPECT_EQ(card.item("all").property("color").value<QColor>().name(), Theme::accent().name());
    EXPECT_EQ(card.item("none").property("color").value<QColor>().name(QColor::HexArgb),
              Theme::white(0.45).name(QColor::HexArgb));
    EXPECT_FALSE(card.item("empty").isVisible());
}

TEST(WordsCard, withoutWordsShowsTheEmptyStateInTheMiddle) {
    Card card(0);
    EXPECT_FALSE(card.item("all").isVisible());
    EXPECT_FALSE(card.item("none").isVisible());
    EXPECT_FALSE(card.item("area").isVisible());
    QQuickItem& empty = card.item("empty");
    EXPECT_TRUE(empty.isVisible());
    EXPECT_EQ(card.item("emptyText").property("text").toString(), QStringLiteral("Nothing yet"));
    EXPECT_EQ(card.item("emptyText").property("font").value<QFont>().pixelSize(), 13);
    EXPECT_EQ(card.item("emptyText").property("color").value<QColor>().name(QColor::HexArgb),
              Theme::white(0.3).name(QColor::HexArgb));
    EXPECT_NEAR(empty.mapToScene({empty.width() / 2, 0}).x(), 210, 1);
}

TEST(WordsCard, theEmptyStateIsAFaintSymbolAboveItsLineInTheMiddleOfTheBody) {
    Card card(0);
    QQuickItem& empty = card.item("empty");
    ASSERT_EQ(empty.childItems().size(), 2);
    const QQuickItem& symbol = *empty.childItems().front();
    EXPECT_EQ(symbol.property("name").toString(), QStringLiteral("text.bubble"));
    EXPECT_EQ(symbol.property("size").toDouble(), 28);
    EXPECT_EQ(symbol.property("color").value<QColor>().name(QColor::HexArgb),
              Theme::white(0.18).name(QColor::HexArgb));
    const auto place = [](const QQuickItem& item) { return item.mapRectToScene(QRectF({}, item.size())); };
    const QRectF line = place(card.item("emptyText"));
    EXPECT_LT(place(symbol).bottom(), line.top());
    EXPECT_NEAR(place(symbol).center().x(), line.center().x(), 1);
    for (const QSize size : {QSize(420, 360), QSize(700, 500)}) {
        card.resize(size);
        // Between the padding below the title and that of the card.
        const double top = place(card.item("title")).bottom() + 10;
        EXPECT_NEAR(place(empty).center().y(), (top + size.height() - 14) / 2, 1);
        EXPECT_NEAR(place(empty).center().x(), size.width() / 2.0, 1);
    }
}

TEST(WordsCard, aFaintDotStandsBetweenTheShortcutsWithTheSameRoomOnBothSides) {
    Card card(30);
    const QQuickItem& all = card.item("all");
    const QQuickItem& none = card.item("none");
    const QList<QQuickItem*> row = all.parentItem()->childItems();
    ASSERT_EQ(row.size(), 3);
    const QQuickItem& dot = *row.at(1);
    EXPECT_EQ(dot.property("text").toString(), QStringLiteral("·"));
    EXPECT_EQ(dot.property("font").value<QFont>().pixelSize(), 11);
    EXPECT_EQ(dot.property("color").value<QColor>().name(QColor::HexArgb),
              Theme::white(0.25).name(QColor::HexArgb));
    EXPECT_NEAR(dot.x() - (all.x() + all.width()), 10, 0.01);
    EXPECT_NEAR(none.x() - (dot.x() + dot.width()), 10, 0.01);
    EXPECT_NEAR(none.mapToScene({none.width(), 0}).x(), 420 - 16, 0.01);
}

TEST(WordsCard, theShortcutsAndTokensTellWhatWasChosen) {
    Card card(30);
    card.clickOn("all");
    EXPECT_TRUE(card.chose(card.all));
    EXPECT_FALSE(card.chose(card.none));
    card.clickOn("none");
    EXPECT_TRUE(card.chose(card.none));
    card.click(4);
    EXPECT_EQ(card.toggled, std::vector<int>{4});
}

TEST(WordsCard, nothingReactsWhileAnOperationIsActive) {
    Card card(30);
    card.view.rootObject()->setProperty("active", true);
    card.clickOn("all");
    card.clickOn("none");
    card.click(4);
    EXPECT_FALSE(card.chose(card.all));
    EXPECT_FALSE(card.chose(card.none));
    EXPECT_TRUE(card.toggled.empty());
    EXPECT_FALSE(card.item("all").isEnabled());
}

TEST(WordsCard, allAndNoneChangeEveryTokenSeenAndUnseen) {
    Card card(800);
    card.select({});
    EXPECT_FALSE(card.flow().tokenOf(3)->isSelected());
    card.scrollTo(card.furthest());
    EXPECT_FALSE(card.flow().tokenOf(799)->isSelected());
    std::set<int> all;
    for (int i = 0; i < 800; ++i)
        all.insert(i);
    card.select(all);
    card.click(799);
    EXPECT_EQ(card.selected.size(), 799U);
    EXPECT_FALSE(card.flow().tokenOf(799)->isSelected());
    EXPECT_TRUE(card.flow().tokenOf(798)->isSelected());
}

TEST(WordsCard, theScrollBarStandsBesideTheWords) {
    Card card(800);
    const QQuickItem& bar = card.item("scrollBar");
    EXPECT_TRUE(bar.isVisible());
    EXPECT_GE(bar.mapToScene({0, 0}).x(), card.area().mapToScene({card.area().width(), 0}).x());
    EXPECT_LE(bar.mapToScene({bar.width(), 0}).x(), 420);
    Card few(3);
    EXPECT_FALSE(few.item("scrollBar").isVisible());
}

TEST(WordsCard, theTabKeyGoesThroughTheShortcutsToTheTokens) {
    Card card(30);
    card.key(Qt::Key_Tab);
    EXPECT_TRUE(card.item("all").hasActiveFocus());
    card.key(Qt::Key_Tab);
    EXPECT_TRUE(card.item("none").hasActiveFocus());
    card.key(Qt::Key_Tab);
    EXPECT_TRUE(card.flow().hasActiveFocus());
}
