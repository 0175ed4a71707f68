#include <QAccessible>
#include <QElapsedTimer>

#include "CardWindow.h"

namespace korvane {
namespace {

MadeUpFonts aThousand() {
    MadeUpFonts fonts;
    for (int i = 0; i < 1000; ++i) {
        const auto name = "Family " + std::to_string(1000 + i) + (i % 2 ? " Größe" : " Sans");
        fonts.with(name, {{"Regular", name + "-Regular"}, {"Bold", name + "-Bold"}});
    }
    return fonts;
}

class FontMenu : public ::testing::Test {
  protected:
    EditedStyle style{aThousand()};
    CardWindow card{style};

    void SetUp() override {
        style.readFonts();
        style.editor.chooseFamily(QStringLiteral("Family 1500 Sans"));
    }
    void open() {
        card.focus("font");
        card.key(Qt::Key_Space);
        ASSERT_TRUE(QTest::qWaitFor([&] { return search() != nullptr; }));
    }
    /// The field that is typed into, once it has the keys.
    QQuickItem* search() const {
        auto* item = card.window.activeFocusItem();
        return item && item != card.find("font") && item->property("maximumLength").isValid() ? item
                                                                                              : nullptr;
    }
    QQuickItem* list() const { return card.find("font")->findChild<QQuickItem*>(QStringLiteral("families")); }
    int rows() const {
        int count = 0;
        for (const auto* row : list()->property("contentItem").value<QQuickItem*>()->childItems())
            count += row->property("family").isValid() && row->isVisible();
        return count;
    }
    bool isOpen() const { return card.find("font")->property("opened").toBool(); }
};

TEST_F(FontMenu, opensQuicklyAtTheCurrentFamilyWithOnlyTheRowsInSight) {
    QElapsedTimer timer;
    timer.start();
    open();
    card.window.grabWindow();
    EXPECT_LT(timer.elapsed(), 1000);
    ASSERT_NE(list(), nullptr);
    EXPECT_EQ(list()->property("count").toInt(), 1000);
    EXPECT_EQ(list()->property("currentIndex").toInt(), 500);
    EXPECT_GT(rows(), 5);
    EXPECT_LT(rows(), 20);
}

TEST_F(FontMenu, typingNarrowsTheListAndEnterPicks) {
    open();
    for (const char letter : std::string("GROSSE 1777"))
        QTest::keyClick(&card.window, letter);
    EXPECT_EQ(style.editor.fontList()->count(), 0) << "ß is not ö";
    for (int i = 0; i < 11; ++i)
        card.key(Qt::Key_Backspace);
    EXPECT_EQ(style.editor.fontList()->count(), 1000);
    for (const char letter : std::string("1777 FAM"))
        QTest::keyClick(&card.window, letter);
    EXPECT_EQ(style.editor.fontList()->count(), 1);
    card.key(Qt::Key_Return);
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(style.settings.fontFamilyName, "Family 1777 Größe");
    EXPECT_EQ(style.settings.fontPostscriptName, "Family 1777 Größe-Bold") << "the last weight comes with it";
    EXPECT_EQ(card.window.activeFocusItem(), card.find("font"));
}

TEST_F(FontMenu, arrowsAndPagesMoveWhileTheFieldKeepsTheKeys) {
    open();
    card.key(Qt::Key_Down);
    card.key(Qt::Key_Down);
    card.key(Qt::Key_Up);
    EXPECT_EQ(list()->property("currentIndex").toInt(), 501);
    card.key(Qt::Key_PageDown);
    EXPECT_GT(list()->property("currentIndex").toInt(), 505);
    card.key(Qt::Key_PageUp);
    EXPECT_EQ(list()->property("currentIndex").toInt(), 501);
    EXPECT_NE(search(), nullptr);
    EXPECT_LT(rows(), 40);
    card.key(Qt::Key_Return);
    EXPECT_EQ(style.settings.fontFamilyName, "Family 1501 Größe");
}

TEST_F(FontMenu, escapeLeavesItAsItWas) {
    open();
    const auto before = style.settings;
    card.key(Qt::Key_Down);
    card.key(Qt::Key_Escape);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isOpen(); }));
    EXPECT_EQ(style.settings, before);
}

TEST_F(FontMenu, aRowIsPickedByTheMouse) {
    open();
    card.window.grabWindow();
    const QPointF inside = list()->mapToScene({40, 3});
    QTest::mouseClick(&card.window, Qt::LeftButton, {}, inside.toPoint());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !isOpen(); }));
    EXPECT_NE(style.settings.fontFamilyName, "Family 1500 Sans");
}

TEST_F(FontMenu, anOpenMenuStaysInsideTheWindow) {
    for (const int height : {240, 300, 520}) {
        card.window.resize(620, height);
        open();
        const auto* shown = list()->parentItem();
        const QRectF place = shown->mapRectToScene({0, 0, shown->width(), shown->height()});
        EXPECT_TRUE(QRectF(0, 0, 620, height).contains(place)) << height;
        card.key(Qt::Key_Escape);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !isOpen(); }));
    }
}

TEST_F(FontMenu, theChosenFamilyAndTheOneUnderTheKeysAreHeard) {
    open();
    card.key(Qt::Key_Down);
    card.window.grabWindow();
    int heard = 0;
    for (auto* row : list()->property("contentItem").value<QQuickItem*>()->childItems()) {
        const auto family = row->property("family").toString();
        if (family.isEmpty() || !row->isVisible())
            continue;
        auto* spoken = QAccessible::queryAccessibleInterface(row);
        const auto name = family.toStdString();
        EXPECT_EQ(spoken->role(), QAccessible::ListItem) << name;
        EXPECT_EQ(spoken->text(QAccessible::Name), family);
        EXPECT_EQ(bool(spoken->state().checked), name == "Family 1500 Sans") << name;
        EXPECT_EQ(bool(spoken->state().selected), name == "Family 1501 Größe") << name;
        ++heard;
    }
    EXPECT_GT(heard, 5);
}

TEST_F(FontMenu, runsThroughAThousandFamiliesWithAHandfulOfRows) {
    open();
    int most = 0;
    for (double y = 0; y < 29000; y += 900) {
        list()->setProperty("contentY", y);
        card.window.grabWindow();
        most = std::max(most, rows());
    }
    EXPECT_LT(most, 30);
}

TEST(FontMenuWithoutFonts, saysSoOnceTheyHaveBeenRead) {
    EditedStyle style{MadeUpFonts()};
    CardWindow card(style);
    card.focus("font");
    card.key(Qt::Key_Space);
    ASSERT_TRUE(QTest::qWaitFor([&] { return card.find("font")->property("opened").toBool(); }));
    const auto* nothing = card.find("font")->findChild<QQuickItem*>(QStringLiteral("nothing"));
    ASSERT_NE(nothing, nullptr);
    EXPECT_TRUE(nothing->isVisible());
    EXPECT_EQ(nothing->property("text").toString(), QStringLiteral("Reading the fonts…"));
    style.editor.prefetchFonts();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return nothing->property("text").toString() == QStringLiteral("No fonts found"); }));
    EXPECT_TRUE(nothing->isVisible());
}

}  // namespace
}  // namespace korvane
