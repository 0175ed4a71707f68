#include "ui/words/WordPlaces.h"

#include <gtest/gtest.h>

using korvane::WordFlowLayout;
using korvane::WordPlaces;

namespace {

// Three lines: words 0 and 1, 2 to 4, 5 alone.
//   0: [2, 42)  1: [47, 87)            top 2, bottom 32 (word 1 is 30 high)
//   2: [2, 32)  3: [37, 67)  4: [72, 102)   top 38, bottom 58
//   5: [2, 92)                          top 64, bottom 84
const std::vector<QSizeF> kSizes{{40, 20}, {40, 30}, {30, 20}, {30, 20}, {30, 20}, {90, 20}};

WordPlaces sixWords() {
    return {WordFlowLayout{5, 6}, QRectF(2, 2, 100, 0), kSizes};
}

}  // namespace

TEST(WordPlaces, knowsTheLineOfEachWordAndTheWordsOfEachLine) {
    const WordPlaces places = sixWords();
    ASSERT_EQ(places.lineCount(), 3);
    EXPECT_EQ(places.lineOf(0), 0);
    EXPECT_EQ(places.lineOf(1), 0);
    EXPECT_EQ(places.lineOf(2), 1);
    EXPECT_EQ(places.lineOf(4), 1);
    EXPECT_EQ(places.lineOf(5), 2);
    EXPECT_EQ(places.wordsOf(1).first, 2);
    EXPECT_EQ(places.wordsOf(1).end, 5);
    EXPECT_EQ(places.wordsOf(2).end, 6);
    EXPECT_EQ(places.bottom(0), 32);
    EXPECT_EQ(places.bottom(), 84);
}

TEST(WordPlaces, findsTheLinesInAStretchOfHeight) {
    const WordPlaces places = sixWords();
    const auto between = [&](double top, double bottom) {
        const auto range = places.wordsBetween(top, bottom);
        return std::pair(range.first, range.end);
    };
    EXPECT_EQ(between(0, 100), std::pair(0, 6));
    EXPECT_EQ(between(32, 38), std::pair(0, 0)) << "the gap between two lines";
    EXPECT_EQ(between(31, 39), std::pair(0, 5));
    EXPECT_EQ(between(58, 65), std::pair(5, 6));
    EXPECT_EQ(between(84, 200), std::pair(0, 0));
}

TEST(WordPlaces, findsTheWordUnderAPointAndNoneBetweenWords) {
    const WordPlaces places = sixWords();
    EXPECT_EQ(places.wordAt({2, 2}), 0);
    EXPECT_EQ(places.wordAt({41.9, 21.9}), 0);
    EXPECT_EQ(places.wordAt({42, 10}), -1);
    EXPECT_EQ(places.wordAt({10, 25}), -1) << "below a low token of a high line";
    EXPECT_EQ(places.wordAt({50, 31}), 1);
    EXPECT_EQ(places.wordAt({50, 35}), -1);
    EXPECT_EQ(places.wordAt({80, 50}), 4);
    EXPECT_EQ(places.wordAt({80, 500}), -1);
    EXPECT_EQ(places.wordAt({0, 10}), -1);
}

TEST(WordPlaces, findsTheNearestWordOfALineByItsMiddle) {
    const WordPlaces places = sixWords();
    EXPECT_EQ(places.nearest(1, -50), 2);
    EXPECT_EQ(places.nearest(1, 53), 3);
    EXPECT_EQ(places.nearest(1, 1000), 4);
    EXPECT_EQ(places.nearest(2, 1000), 5);
}

TEST(WordPlaces, isEmptyWithoutWords) {
    const WordPlaces places(WordFlowLayout{5, 6}, QRectF(2, 2, 100, 0), {});
    EXPECT_EQ(places.count(), 0);
    EXPECT_EQ(places.lineCount(), 0);
    EXPECT_EQ(places.bottom(), 2);
    EXPECT_EQ(places.lineBelow(0), -1);
    EXPECT_EQ(places.wordAt({5, 5}), -1);
    EXPECT_EQ(places.wordsBetween(0, 100).end, 0);
}
