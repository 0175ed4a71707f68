#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "editor/VideoEditor.h"

namespace korvane {
namespace {

/// Words "0", "1", ... of 0.1 s each, back to back from 0.25 s on.
std::vector<SubtitleEntry> words(int count) {
    std::vector<SubtitleEntry> entries;
    double start = 0.25;
    for (int i = 0; i < count; ++i) {
        entries.push_back({start, start + 0.1, std::to_string(i)});
        start = entries.back().end;
    }
    return entries;
}

std::vector<int> lineLengths(int count) {
    std::vector<int> lengths;
    for (const SubtitleEntry& line : VideoEditor::groupSubtitleEntries(words(count)))
        lengths.push_back(1 + static_cast<int>(std::count(line.text.begin(), line.text.end(), ' ')));
    return lengths;
}

TEST(SubtitleGrouping, noWordsMakeNoLines) {
    EXPECT_TRUE(VideoEditor::groupSubtitleEntries({}).empty());
}

TEST(SubtitleGrouping, fourWordsMakeTwoLinesOfTwo) {
    EXPECT_EQ(lineLengths(4), (std::vector{2, 2}));
}

TEST(SubtitleGrouping, sevenWordsMakeLinesOfThreeTwoAndTwo) {
    EXPECT_EQ(lineLengths(7), (std::vector{3, 2, 2}));
}

TEST(SubtitleGrouping, lineLengthsDependOnTheNumberOfWordsAlone) {
    EXPECT_EQ(lineLengths(1), (std::vector{1}));
    EXPECT_EQ(lineLengths(2), (std::vector{2}));
    EXPECT_EQ(lineLengths(3), (std::vector{3}));
    EXPECT_EQ(lineLengths(5), (std::vector{3, 2}));
    EXPECT_EQ(lineLengths(6), (std::vector{3, 3}));
    EXPECT_EQ(lineLengths(8), (std::vector{3, 3, 2}));
    EXPECT_EQ(lineLengths(10), (std::vector{3, 3, 2, 2}));
}

TEST(SubtitleGrouping, noWordIsEverLeftAloneBehindOthersAndNoneIsLost) {
    for (int count = 2; count <= 200; ++count) {
        int total = 0;
        for (const int length : lineLengths(count)) {
            EXPECT_TRUE(length == 2 || length == 3) << count << " words";
            total += length;
        }
        EXPECT_EQ(total, count);
    }
}

TEST(SubtitleGrouping, aLineLastsFromItsFirstWordsStartToItsLastWordsEnd) {
    const auto entries = words(7);
    const auto lines = VideoEditor::groupSubtitleEntries(entries);
    EXPECT_EQ(lines[0], (SubtitleEntry{entries[0].start, entries[2].end, "0 1 2"}));
    EXPECT_EQ(lines[1], (SubtitleEntry{entries[3].start, entries[4].end, "3 4"}));
    EXPECT_EQ(lines[2], (SubtitleEntry{entries[5].start, entries[6].end, "5 6"}));
    EXPECT_EQ(lines[0].end, lines[1].start);
    EXPECT_EQ(lines[1].end, lines[2].start);
}

TEST(SubtitleGrouping, gapsBetweenWordsStayGaps) {
    const auto lines = VideoEditor::groupSubtitleEntries(
        {{0.0, 1.0, "a"}, {2.0, 3.0, "b"}, {5.0, 6.0, "c"}, {8.0, 9.0, "d"}});
    EXPECT_EQ(lines, (std::vector<SubtitleEntry>{{0.0, 3.0, "a b"}, {5.0, 9.0, "c d"}}));
}

TEST(SubtitleGrouping, theOrderOfTheWordsIsKeptEvenWhenTimesRunBackwards) {
    const auto lines = VideoEditor::groupSubtitleEntries({{5.0, 6.0, "later"}, {1.0, 2.0, "sooner"}});
    EXPECT_EQ(lines, (std::vector<SubtitleEntry>{{5.0, 2.0, "later sooner"}}));
}

TEST(SubtitleGrouping, textsAreJoinedUnchanged) {
    const auto lines = VideoEditor::groupSubtitleEntries(
        {{0.0, 1.0, "Well,"}, {1.0, 2.0, " it’s "}, {2.0, 3.0, "終わり。"}});
    EXPECT_EQ(lines.front().text, "Well,  it’s  終わり。");
}

}  // namespace
}  // namespace korvane
