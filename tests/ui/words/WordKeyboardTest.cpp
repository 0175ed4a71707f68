#include <gtest/gtest.h>

#include "tests/ui/words/ShownWords.h"

using korvane::test::numberedWords;
using korvane::test::segments;
using korvane::test::ShownWords;

namespace {

constexpr int kMany = 3000;

struct FocusedWords : ShownWords {
    explicit FocusedWords(int count) : ShownWords(numberedWords(count)) {
        flow().forceActiveFocus(Qt::TabFocusReason);
    }
    bool seesCurrent() { return QRectF(0, 0, 400, 300).contains(inWindow(flow().currentIndex())); }
};

}  // namespace

TEST(WordKeyboard, theAreaIsOneStopOfTheTabKey) {
    ShownWords shown(numberedWords(50));
    EXPECT_TRUE(shown.flow().activeFocusOnTab());
    shown.key(Qt::Key_Tab);
    EXPECT_TRUE(shown.flow().hasActiveFocus());
    EXPECT_TRUE(shown.flow().showsFocus());
    for (QQuickItem* token : shown.flow().childItems())
        EXPECT_FALSE(token->activeFocusOnTab());
}

TEST(WordKeyboard, leftAndRightGoFromWordToWordAndStopAtTheEnds) {
    FocusedWords shown(50);
    shown.key(Qt::Key_Left);
    EXPECT_EQ(shown.flow().currentIndex(), 0);
    for (int i = 0; i < 60; ++i)
        shown.key(Qt::Key_Right);
    EXPECT_EQ(shown.flow().currentIndex(), 49);
    shown.key(Qt::Key_Left);
    EXPECT_EQ(shown.flow().currentIndex(), 48);
    EXPECT_TRUE(shown.flow().tokenOf(48)->isCurrent());
    EXPECT_FALSE(shown.flow().tokenOf(49)->isCurrent());
}

TEST(WordKeyboard, upAndDownGoToTheNearestWordOfTheNextLineAndKeepTheColumn) {
    FocusedWords shown(200);
    shown.key(Qt::Key_Right);
    shown.key(Qt::Key_Right);
    const double goal = shown.inWindow(2).center().x();
    double top = shown.inWindow(2).top();
    for (int i = 0; i < 4; ++i) {
        shown.key(Qt::Key_Down);
        const QRectF now = shown.inWindow(shown.flow().currentIndex());
        EXPECT_EQ(now.top(), top + 30);
        for (const int neighbour : {-1, 1}) {
            const QRectF other = shown.inWindow(shown.flow().currentIndex() + neighbour);
            if (other.top() == now.top()) {
                EXPECT_LE(std::abs(now.center().x() - goal), std::abs(other.center().x() - goal));
            }
        }
        top = now.top();
    }
    for (int i = 0; i < 4; ++i)
        shown.key(Qt::Key_Up);
    EXPECT_EQ(shown.flow().currentIndex(), 2) << "the way back ends where it began";
    shown.key(Qt::Key_Up);
    EXPECT_EQ(shown.flow().currentIndex(), 2);
}

TEST(WordKeyboard, homeAndEndGoToTheFirstAndTheLastWordAndScroll) {
    FocusedWords shown(kMany);
    shown.key(Qt::Key_End);
    EXPECT_EQ(shown.flow().currentIndex(), kMany - 1);
    EXPECT_TRUE(shown.seesCurrent());
    shown.key(Qt::Key_Home);
    EXPECT_EQ(shown.flow().currentIndex(), 0);
    EXPECT_EQ(shown.scrollY(), 0);
}

TEST(WordKeyboard, endWorksBeforeAllWordsAreMeasured) {
    FocusedWords shown(10);
    shown.words = numberedWords(5000);
    shown.model.wordsReplaced();
    ASSERT_FALSE(shown.flow().isSettled());
    shown.key(Qt::Key_End);
    shown.settle();
    EXPECT_EQ(shown.flow().currentIndex(), 4999);
    EXPECT_TRUE(shown.seesCurrent());
}

TEST(WordKeyboard, pageKeysGoByWhatIsSeen) {
    FocusedWords shown(kMany);
    shown.key(Qt::Key_PageDown);
    const double moved = shown.flow().currentRect().top() - 2;
    EXPECT_GT(moved, 200);
    EXPECT_LE(moved, 300);
    EXPECT_TRUE(shown.seesCurrent());
    shown.key(Qt::Key_PageDown);
    EXPECT_NEAR(shown.flow().currentRect().top() - 2, 2 * moved, 60);
    EXPECT_TRUE(shown.seesCurrent());
    shown.key(Qt::Key_PageUp);
    shown.key(Qt::Key_PageUp);
    EXPECT_EQ(shown.flow().currentIndex(), 0);
    for (int i = 0; i < 500; ++i)
        shown.key(Qt::Key_PageDown);
    EXPECT_EQ(shown.flow().currentRect().bottom(), shown.flow().implicitHeight() - 2);
}

TEST(WordKeyboard, everyWordTheArrowsReachIsSeen) {
    FocusedWords shown(300);
    for (int i = 0; i < 299; ++i) {
        shown.key(Qt::Key_Right);
        ASSERT_TRUE(shown.seesCurrent()) << i;
    }
    for (int i = 0; i < 299; ++i) {
        shown.key(Qt::Key_Left);
        ASSERT_TRUE(shown.seesCurrent()) << i;
    }
}

TEST(WordKeyboard, spaceAndEnterToggleTheCurrentWord) {
    FocusedWords shown(50);
    shown.key(Qt::Key_Right);
    shown.key(Qt::Key_Space);
    EXPECT_FALSE(shown.selected.contains(1));
    shown.key(Qt::Key_Right);
    shown.key(Qt::Key_Return);
    shown.key(Qt::Key_Enter);
    EXPECT_EQ(shown.toggled, (std::vector<int>{1, 2, 2}));
}

TEST(WordKeyboard, aHeldSpaceTogglesOnce) {
    FocusedWords shown(5);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "), true);
    shown.key(Qt::Key_Space);
    QCoreApplication::sendEvent(&shown.view, &held);
    EXPECT_EQ(shown.toggled, std::vector<int>{0});
}

TEST(WordKeyboard, aWordScrolledAwayComesBackWhenItIsToggled) {
    FocusedWords shown(kMany);
    shown.scrollTo(5000);
    EXPECT_FALSE(shown.flow().tokenOf(0));
    shown.key(Qt::Key_Space);
    EXPECT_EQ(shown.toggled, std::vector<int>{0});
    EXPECT_TRUE(shown.seesCurrent());
}

TEST(WordKeyboard, aClickMakesItsWordTheCurrentOne) {
    FocusedWords shown(50);
    shown.click(9);
    shown.key(Qt::Key_Right);
    EXPECT_EQ(shown.flow().currentIndex(), 10);
    EXPECT_TRUE(shown.flow().showsFocus());
}

TEST(WordKeyboard, otherWordsPutTheKeyboardOnTheFirst) {
    FocusedWords shown(kMany);
    shown.key(Qt::Key_End);
    shown.replace(numberedWords(20));
    EXPECT_EQ(shown.flow().currentIndex(), 0);
    EXPECT_TRUE(shown.flow().hasActiveFocus());
    EXPECT_TRUE(shown.flow().tokenOf(0)->isCurrent());
}

TEST(WordKeyboard, shortcutsOfTheWindowPassThrough) {
    FocusedWords shown(50);
    shown.key(Qt::Key_Right, Qt::ControlModifier);
    shown.key(Qt::Key_Space, Qt::AltModifier);
    EXPECT_EQ(shown.flow().currentIndex(), 0);
    EXPECT_TRUE(shown.toggled.empty());
}

TEST(WordKeyboard, keysDoNothingWithoutWords) {
    ShownWords shown({});
    shown.flow().forceActiveFocus(Qt::TabFocusReason);
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Down, Qt::Key_End, Qt::Key_PageDown, Qt::Key_Space})
        shown.key(key);
    EXPECT_EQ(shown.flow().currentIndex(), -1);
    EXPECT_TRUE(shown.toggled.empty());
}
