#include "cli/WordSelection.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/process/UsageError.h"

using namespace korvane;
using namespace korvane::cli;

namespace {

using Indices = std::vector<std::size_t>;

Indices selected(const std::string& text, std::size_t count) {
    return resolveSelection(parseWordSpans("--select", text), {}, count);
}

std::string refusal(const std::string& text, std::size_t count = 10) {
    try {
        selected(text, count);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "accepted";
}

}  // namespace

TEST(WordSelection, everyFormMeansWhatTheHelpSays) {
    EXPECT_EQ(selected("8", 10), (Indices{8}));
    EXPECT_EQ(selected("2-4", 10), (Indices{2, 3, 4}));
    EXPECT_EQ(selected("7-", 10), (Indices{7, 8, 9}));
    EXPECT_EQ(selected("-3", 10), (Indices{0, 1, 2, 3}));
    EXPECT_EQ(selected("2..4", 10), (Indices{2, 3}));
    EXPECT_EQ(selected("..2", 10), (Indices{0, 1}));
    EXPECT_EQ(selected("8..", 10), (Indices{8, 9}));
    EXPECT_EQ(selected("all", 3), (Indices{0, 1, 2}));
    EXPECT_EQ(selected("0-5,8,12-", 15), (Indices{0, 1, 2, 3, 4, 5, 8, 12, 13, 14}));
}

TEST(WordSelection, anUpperEndAtTheLastWordIsWithin) {
    EXPECT_EQ(selected("0-9", 10).size(), 10u);
    EXPECT_EQ(selected("0..10", 10).size(), 10u);
    EXPECT_EQ(selected("9-", 10), (Indices{9}));
}

TEST(WordSelection, blanksDontMatter) {
    EXPECT_EQ(selected(" 1 - 2 , 4 ", 10), (Indices{1, 2, 4}));
}

TEST(WordSelection, duplicatesCollapseAndTheOrderIsTheTranscripts) {
    EXPECT_EQ(selected("4,1-2,2,4,0", 10), (Indices{0, 1, 2, 4}));
}

TEST(WordSelection, nothingChosenMeansEveryWord) {
    EXPECT_EQ(resolveSelection({}, {}, 3), (Indices{0, 1, 2}));
    EXPECT_EQ(resolveSelection({}, {}, 0), Indices{});
}

TEST(WordSelection, droppedWordsAreTakenOutOfTheChosen) {
    EXPECT_EQ(resolveSelection(parseWordSpans("--select", "2-6"), parseWordSpans("--drop", "3,5-"), 9),
              (Indices{2, 4}));
    EXPECT_EQ(resolveSelection({}, parseWordSpans("--drop", "0"), 3), (Indices{1, 2}));
    EXPECT_EQ(resolveSelection({}, parseWordSpans("--drop", "all"), 3), Indices{});
}

TEST(WordSelection, whatLiesOutsideIsRefusedWithTheSizeOfTheTranscript) {
    EXPECT_EQ(refusal("10"), "--select: there is no word 10; the transcript has 10 words, 0 to 9.");
    EXPECT_EQ(refusal("0-10"), "--select: there is no word 10; the transcript has 10 words, 0 to 9.");
    EXPECT_EQ(refusal("12-"), "--select: there is no word 12; the transcript has 10 words, 0 to 9.");
    EXPECT_EQ(refusal("0..11"), "--select: there is no word 10; the transcript has 10 words, 0 to 9.");
    EXPECT_EQ(refusal("1", 1), "--select: there is no word 1; the transcript has 1 word, 0 to 0.");
    EXPECT_EQ(refusal("0", 0), "--select: there is no word 0; the transcript has 0 words.");
}

TEST(WordSelection, rangesThatRunBackwardsOrHoldNothingAreRefused) {
    EXPECT_EQ(refusal("5-3"), "--select: \"5-3\" runs backwards.");
    EXPECT_EQ(refusal("5..3"), "--select: \"5..3\" runs backwards.");
    EXPECT_EQ(refusal("3..3"), "--select: \"3..3\" holds no word, as its end is not included.");
    EXPECT_EQ(refusal("..0"), "--select: \"..0\" holds no word, as its end is not included.");
}

TEST(WordSelection, emptyListsAndItemsAreRefused) {
    EXPECT_EQ(refusal(""), "--select needs at least one index, such as 0-5,8,12-.");
    EXPECT_EQ(refusal("  "), "--select needs at least one index, such as 0-5,8,12-.");
    EXPECT_EQ(refusal("1,,2"), "--select: \"1,,2\" has an empty item between its commas.");
    EXPECT_EQ(refusal("1,"), "--select: \"1,\" has an empty item between its commas.");
}

TEST(WordSelection, anythingElseIsRefused) {
    for (const char* text : {"-", "..", "a", "1a", "0x1", "1.5", "--3", "1-2-3", "1..2..3", "+1", "-1-2",
                             "1;2", "...", "1...3", "99999999999999999999"})
        EXPECT_NE(refusal(text), "accepted") << text;
}

TEST(WordSelection, theOptionIsNamedAsTyped) {
    try {
        parseWordSpans("--drop", "x");
        FAIL();
    } catch (const UsageError& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("--drop: \"x\" is no index or range"));
    }
}
