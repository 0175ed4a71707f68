#include "ui/words/WordFlowLayout.h"

#include <gtest/gtest.h>

using korvane::WordFlowLayout;

namespace {

constexpr WordFlowLayout kWords{.hSpacing = 5, .vSpacing = 6};

std::vector<QSizeF> same(int count, double width, double height) {
    return std::vector<QSizeF>(static_cast<std::size_t>(count), QSizeF(width, height));
}

}  // namespace

TEST(WordFlowLayout, withoutAProposedWidthSevenTokensOfFiftyFitIntoFourHundred) {
    const auto sizes = same(100, 50, 20);
    // 14 full lines and one of two tokens.
    EXPECT_EQ(kWords.sizeThatFits(std::nullopt, sizes), QSizeF(400, 15 * 20 + 14 * 6));
    const auto places = kWords.placeSubviews(QRectF(0, 0, 400, 0), sizes);
    EXPECT_EQ(places[6], QPointF(330, 0));
    EXPECT_EQ(places[7], QPointF(0, 26));
    EXPECT_EQ(places[14], QPointF(0, 52));
}

TEST(WordFlowLayout, aTokenThatEndsExactlyAtTheEdgeStays) {
    const std::vector<QSizeF> sizes{{45, 20}, {50, 20}, {50.001, 20}};
    const std::span<const QSizeF> exact(sizes.data(), 2);
    EXPECT_EQ(kWords.sizeThatFits(100, exact), QSizeF(100, 20));
    EXPECT_EQ(kWords.placeSubviews(QRectF(0, 0, 100, 0), exact)[1], QPointF(50, 0));
    const std::vector<QSizeF> over{sizes[0], sizes[2]};
    EXPECT_EQ(kWords.sizeThatFits(100, over), QSizeF(100, 46));
    EXPECT_EQ(kWords.placeSubviews(QRectF(0, 0, 100, 0), over)[1], QPointF(0, 26));
}

TEST(WordFlowLayout, aTokenThatIsTooWideOverflowsAtTheStartOfItsLineAndTheNextBeginsANewOne) {
    const std::vector<QSizeF> sizes{{150, 20}, {10, 20}, {200, 20}, {10, 20}};
    EXPECT_EQ(kWords.sizeThatFits(100, sizes), QSizeF(100, 4 * 20 + 3 * 6));
    const auto places = kWords.placeSubviews(QRectF(0, 0, 100, 0), sizes);
    EXPECT_EQ(places, (std::vector<QPointF>{{0, 0}, {0, 26}, {0, 52}, {0, 78}}));
}

TEST(WordFlowLayout, theHighestTokenGivesTheLineItsHeightAndTokensShareTheTopEdge) {
    const std::vector<QSizeF> sizes{{40, 20}, {40, 30}, {40, 20}};
    const auto places = kWords.placeSubviews(QRectF(0, 0, 100, 0), sizes);
    EXPECT_EQ(places, (std::vector<QPointF>{{0, 0}, {45, 0}, {0, 36}}));
    EXPECT_EQ(kWords.sizeThatFits(100, sizes), QSizeF(100, 56));
}

TEST(WordFlowLayout, reportsTheWholeProposedWidthHoweverLittleIsUsed) {
    EXPECT_EQ(kWords.sizeThatFits(1000, same(2, 10, 20)), QSizeF(1000, 20));
    EXPECT_EQ(kWords.sizeThatFits(3, same(1, 10, 20)), QSizeF(3, 20));
}

TEST(WordFlowLayout, isAsWideAsProposedAndZeroHighWithoutChildren) {
    EXPECT_EQ(kWords.sizeThatFits(250, {}), QSizeF(250, 0));
    EXPECT_EQ(kWords.sizeThatFits(std::nullopt, {}), QSizeF(400, 0));
    EXPECT_TRUE(kWords.placeSubviews(QRectF(0, 0, 250, 0), {}).empty());
}

TEST(WordFlowLayout, placesInsideTheBoundsWhereverTheyLie) {
    const auto places = kWords.placeSubviews(QRectF(30, 70, 100, 1), same(3, 50, 20));
    EXPECT_EQ(places, (std::vector<QPointF>{{30, 70}, {30, 96}, {30, 122}}));
}

TEST(WordFlowLayout, aTokenOfNoWidthStillTakesTheGapBehindIt) {
    const std::vector<QSizeF> sizes{{0, 20}, {95, 20}, {1, 20}};
    EXPECT_EQ(kWords.placeSubviews(QRectF(0, 0, 100, 0), sizes),
              (std::vector<QPointF>{{0, 0}, {5, 0}, {0, 26}}));
}

TEST(WordFlowLayout, measuresTheHeightThatPlacingThenTakes) {
    std::vector<QSizeF> sizes;
    for (int i = 0; i < 300; ++i)
        sizes.emplace_back(20 + i * 37 % 90, 20 + i % 3 * 4);
    for (const double width : {1.0, 75.0, 200.0, 333.0, 10000.0}) {
        const auto places = kWords.placeSubviews(QRectF(0, 0, width, 0), sizes);
        double bottom = 0;
        for (std::size_t i = 0; i < sizes.size(); ++i)
            bottom = std::max(bottom, places[i].y() + sizes[i].height());
        EXPECT_EQ(kWords.sizeThatFits(width, sizes).height(), bottom) << width;
    }
}
