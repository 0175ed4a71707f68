// How a token looks, pixel by pixel.
#include "ui/words/WordTokenItem.h"

#include <gtest/gtest.h>

#include "tests/ui/words/ShownWords.h"
#include "ui/controls/Theme.h"

using korvane::Theme;
using korvane::WordTokenItem;
using korvane::test::numberedWords;
using korvane::test::segments;
using korvane::test::ShownWords;

namespace {

QColor over(const QColor& ground, const QColor& top) {
    const float a = top.alphaF();
    return QColor::fromRgbF(top.redF() * a + ground.redF() * (1 - a),
                            top.greenF() * a + ground.greenF() * (1 - a),
                            top.blueF() * a + ground.blueF() * (1 - a));
}

::testing::AssertionResult near(const QColor& seen, const QColor& expected) {
    const int off =
        std::max({std::abs(seen.red() - expected.red()), std::abs(seen.green() - expected.green()),
                  std::abs(seen.blue() - expected.blue())});
    if (off <= 2)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << seen.name().toStdString() << " is not " << expected.name().toStdString();
}

bool hasCalmedDown(const WordTokenItem& token) {
    return QTest::qWaitFor([&] {
        const auto* animation = token.findChild<QVariantAnimation*>();
        return animation && animation->state() == QAbstractAnimation::Stopped;
    });
}

}  // namespace

TEST(WordToken, hasTheColoursOfBothStates) {
    ShownWords shown(segments({"yes", "no"}));
    shown.select({0});
    ASSERT_TRUE(hasCalmedDown(*shown.flow().tokenOf(1)));
    const WordTokenItem* on = shown.flow().tokenOf(0);
    EXPECT_EQ(on->textColor(), Theme::white(1));
    EXPECT_NEAR(on->fillColor().alphaF(), 0.28, 0.001);
    EXPECT_TRUE(near(on->fillColor(), Theme::accent()));
    EXPECT_NEAR(on->borderColor().alphaF(), 0.55, 0.001);
    EXPECT_TRUE(near(on->borderColor(), Theme::accent()));
    const WordTokenItem* off = shown.flow().tokenOf(1);
    EXPECT_NEAR(off->textColor().alphaF(), 0.4, 0.001);
    EXPECT_NEAR(off->fillColor().alphaF(), 0.06, 0.001);
}

TEST(WordToken, isDrawnWithFillBorderInsideAndRoundCorners) {
    ShownWords shown(segments({"yes", "no"}));
    shown.select({0});
    ASSERT_TRUE(hasCalmedDown(*shown.flow().tokenOf(1)));
    const QImage picture = shown.picture();
    const QColor ground = Theme::bgTop();
    const QRect on = shown.inWindow(0).toRect();
    const QColor fill = over(ground, Theme::faded(Theme::accent(), 0.28));
    const QColor border = over(fill, Theme::faded(Theme::accent(), 0.55));
    const int middle = on.center().y();
    EXPECT_TRUE(near(picture.pixelColor(on.left() - 1, middle), ground));
    EXPECT_TRUE(near(picture.pixelColor(on.left(), middle), border));
    EXPECT_TRUE(near(picture.pixelColor(on.right(), middle), border));
    EXPECT_TRUE(near(picture.pixelColor(on.left() + 3, middle), fill));
    EXPECT_TRUE(near(picture.pixelColor(on.topLeft()), ground)) << "the corner is round";
    const QRect off = shown.inWindow(1).toRect();
    const QColor faint = over(ground, Theme::white(0.06));
    EXPECT_TRUE(near(picture.pixelColor(off.left(), middle), faint));
    EXPECT_TRUE(near(picture.pixelColor(off.left() + 3, middle), faint));
    EXPECT_TRUE(near(picture.pixelColor(off.right() + 1, middle), ground));
}

TEST(WordToken, wordsAreDrawnInsideTheirTokens) {
    const std::vector<std::string> words{"WAVE", "你好", "مرحبا", "שלום", "fjörd", "こんにちは", "привет"};
    ShownWords shown(segments(words), {600, 100});
    const QImage picture = shown.picture();
    const QColor fill = over(Theme::bgTop(), Theme::faded(Theme::accent(), 0.28));
    for (int i = 0; i < static_cast<int>(words.size()); ++i) {
        const QRect inner = shown.inWindow(i).toRect().adjusted(2, 2, -2, -2);
        const QRect text = shown.inWindow(i).toRect().adjusted(6, 3, -6, -3);
        int ink = 0;
        for (int y = inner.top(); y <= inner.bottom(); ++y) {
            for (int x = inner.left(); x <= inner.right(); ++x) {
                const bool drawn = picture.pixelColor(x, y).red() > fill.red() + 60;
                ink += drawn;
                const bool corner = (x < inner.left() + 6 || x > inner.right() - 6) &&
                                    (y < inner.top() + 6 || y > inner.bottom() - 6);
                if (!text.contains(x, y) && !corner) {
                    EXPECT_FALSE(drawn) << words[static_cast<std::size_t>(i)] << " at " << x << ' ' << y;
                }
            }
        }
        EXPECT_GT(ink, 20) << words[static_cast<std::size_t>(i)];
    }
}

TEST(WordToken, changesWithinAnEighthOfASecondThroughColoursInBetween) {
    ShownWords shown(segments({"word"}));
    WordTokenItem* token = shown.flow().tokenOf(0);
    std::vector<float> alphas;
    QObject::connect(token, &WordTokenItem::looksChanged,
                     [&] { alphas.push_back(token->borderColor().alphaF()); });
    shown.click(0);
    EXPECT_GT(token->borderColor().alphaF(), 0.4F) << "not at once";
    ASSERT_TRUE(QTest::qWaitFor([&] { return token->borderColor().alpha() == 0; }));
    const auto between = std::ranges::count_if(alphas, [](float a) { return a > 0.02F && a < 0.53F; });
    EXPECT_GE(between, 2);
}

TEST(WordToken, changesByAnEaseInOutCurve) {
    ShownWords shown(segments({"word"}));
    WordTokenItem* token = shown.flow().tokenOf(0);
    shown.click(0);
    auto* animation = token->findChild<QVariantAnimation*>();
    ASSERT_TRUE(animation);
    EXPECT_EQ(animation->duration(), 120);
    const QEasingCurve curve = animation->easingCurve();
    EXPECT_NEAR(curve.valueForProgress(0.5), 0.5, 0.001);
    EXPECT_LT(curve.valueForProgress(0.2), 0.12);
    EXPECT_GT(curve.valueForProgress(0.8), 0.88);
}

TEST(WordToken, aTokenHandedToAnotherWordTakesItsLookAtOnce) {
    ShownWords shown(numberedWords(2000));
    std::set<int> begin;
    for (int i = 0; i < 1000; ++i)
        begin.insert(i);
    shown.select(begin);
    const QColor off = Theme::white(0.4);
    shown.area().setProperty("contentY", shown.furthest());
    for (int i = 1950; i < 2000; ++i)
        if (const WordTokenItem* token = shown.flow().tokenOf(i)) {
            EXPECT_EQ(token->textColor(), off) << i;
        }
    EXPECT_TRUE(shown.flow().tokenOf(1999));
}
