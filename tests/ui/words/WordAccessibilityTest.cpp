#include <gtest/gtest.h>

#include <QAccessible>

#include "tests/ui/words/ShownWords.h"

using korvane::test::numberedWords;
using korvane::test::segments;
using korvane::test::ShownWords;

namespace {

struct ReadWords : ShownWords {
    explicit ReadWords(int count) : ShownWords(numberedWords(count)) {}
    QAccessibleInterface* list() { return QAccessible::queryAccessibleInterface(&flow()); }
    QAccessibleInterface* token(int index) {
        return QAccessible::queryAccessibleInterface(flow().tokenOf(index));
    }
};

}  // namespace

TEST(WordAccessibility, theAreaIsAListCalledWords) {
    ReadWords read(40);
    ASSERT_TRUE(read.list());
    EXPECT_EQ(read.list()->role(), QAccessible::List);
    EXPECT_EQ(read.list()->text(QAccessible::Name), QStringLiteral("Words"));
    EXPECT_TRUE(read.list()->state().focusable);
}

TEST(WordAccessibility, aTokenIsACheckableItemWithItsWord) {
    ReadWords read(40);
    read.select({1});
    EXPECT_EQ(read.token(1)->text(QAccessible::Name).toStdString(), read.words[1].text());
    EXPECT_EQ(read.token(1)->role(), QAccessible::ListItem);
    EXPECT_TRUE(read.token(1)->state().checkable);
    EXPECT_TRUE(read.token(1)->state().checked);
    EXPECT_FALSE(read.token(2)->state().checked);
    EXPECT_EQ(read.token(1)->parent()->object(), read.list()->object());
}

TEST(WordAccessibility, thePressActionTogglesTheWord) {
    ReadWords read(40);
    QAccessibleActionInterface* action = read.token(5)->actionInterface();
    ASSERT_TRUE(action);
    EXPECT_TRUE(action->actionNames().contains(QAccessibleActionInterface::pressAction()));
    action->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(read.toggled, std::vector<int>{5});
    EXPECT_FALSE(read.token(5)->state().checked);
}

TEST(WordAccessibility, childrenAreTheWordsInSightInTheirOrder) {
    ReadWords read(3000);
    for (const double y : {500.0, 90.0, 20000.0, 19500.0, 0.0}) {
        read.scrollTo(y);
        ASSERT_GT(read.list()->childCount(), 20);
        int before = -1;
        for (int i = 0; i < read.list()->childCount(); ++i) {
            const auto* token = qobject_cast<korvane::WordTokenItem*>(read.list()->child(i)->object());
            ASSERT_TRUE(token);
            ASSERT_TRUE(before < 0 || token->index() == before + 1) << before << " then " << token->index();
            before = token->index();
        }
    }
}

TEST(WordAccessibility, theFocusMovesWithTheCurrentToken) {
    ReadWords read(40);
    read.flow().forceActiveFocus(Qt::TabFocusReason);
    EXPECT_TRUE(read.token(0)->state().focused);
    read.key(Qt::Key_Right);
    EXPECT_TRUE(read.token(1)->state().focused);
    EXPECT_FALSE(read.token(0)->state().focused);
    read.view.rootObject()->forceActiveFocus();
    EXPECT_FALSE(read.token(1)->state().focused);
}

TEST(WordAccessibility, aWordReplacedUnderAReaderHasTheNewName) {
    ReadWords read(40);
    read.replace(segments({"uno", "due"}));
    EXPECT_EQ(read.list()->childCount(), 2);
    EXPECT_EQ(read.token(1)->text(QAccessible::Name), QStringLiteral("due"));
}

// What is off as an item is told as such by the program's own description of controls.
TEST(WordAccessibility, tokensAreOffWhileNothingReacts) {
    ReadWords read(40);
    EXPECT_TRUE(read.flow().tokenOf(1)->isEnabled());
    read.area().setProperty("reactive", false);
    EXPECT_FALSE(read.flow().tokenOf(1)->isEnabled());
    read.token(1)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(read.toggled.empty());
    read.area().setProperty("reactive", true);
    EXPECT_TRUE(read.flow().tokenOf(1)->isEnabled());
}
