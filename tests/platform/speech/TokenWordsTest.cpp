#include "platform/speech/TokenWords.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/platform/speech/WordTable.h"

namespace korvane {
namespace {

std::vector<TimedWord> words(const std::vector<HeardToken>& tokens, const char* locale = "en-US") {
    return wordsOfTokens(tokens, Locale{locale});
}

using Words = std::vector<TimedWord>;

TEST(TokenWords, areThoseThatAReaderSeesInEachLanguage) {
    for (const auto& line : wordCases())
        EXPECT_EQ(shown(wordsOf(line.text, line.locale)), line.words) << line.locale << ": " << line.text;
}

TEST(TokenWords, eachLanguageIsTriedInEightWays) {
    std::map<std::string, int> tried;
    for (const auto& line : wordCases())
        ++tried[line.locale];
    EXPECT_EQ(tried.size(), 9U);
    for (const auto& [locale, count] : tried)
        EXPECT_GE(count, 8) << locale;
}

TEST(TokenWords, lastFromTheirFirstTokensBeginToTheirLastTokensEnd) {
    EXPECT_EQ(words({{" Hel", 100, 200}, {"lo", 200, 300}, {" world", 350, 500}}),
              (Words{{"Hello", 100, 300}, {"world", 350, 500}}));
}

TEST(TokenWords, punctuationDoesntProlongAWord) {
    EXPECT_EQ(words({{" Yes", 0, 100}, {",", 100, 900}, {" no", 900, 1000}, {".", 1000, 1500}}),
              (Words{{"Yes,", 0, 100}, {"no.", 900, 1000}}));
    EXPECT_EQ(words({{" «", 0, 300}, {"Oui", 300, 400}, {" »", 400, 800}}, "fr-FR"),
              (Words{{"«Oui\u00a0»", 300, 400}}));
}

TEST(TokenWords, aSpaceAtTheBeginningOfATokenIsNotSpoken) {
    EXPECT_EQ(words({{" a", 0, 100}, {" b", 100, 200}}), (Words{{"a", 0, 100}, {"b", 100, 200}}));
}

TEST(TokenWords, aTokenOfSeveralWordsIsSharedOutByCharacters) {
    EXPECT_EQ(words({{" one two, three", 0, 1100}}),
              (Words{{"one", 0, 300}, {"two,", 300, 600}, {"three", 600, 1100}}));
    EXPECT_EQ(words({{"天气很好", 0, 400}}, "zh-CN"), (Words{{"天气", 0, 200}, {"很好", 200, 400}}));
}

TEST(TokenWords, aCharacterWhoseBytesLieInTwoTokensSpansBoth) {
    EXPECT_EQ(words({{"\xe4\xbd", 0, 100}, {"\xa0", 100, 200}, {"\xe5\xa5", 200, 300}, {"\xbd", 300, 400}},
                    "zh-CN"),
              (Words{{"你好", 0, 400}}));
    // A token with the end of one character and the beginning of the next is shared by the two.
    EXPECT_EQ(words({{"\xe4\xbb", 0, 100}, {"\x96\xe5\x8e", 100, 200}, {"\xbb", 200, 300}}, "zh-CN"),
              (Words{{"他", 0, 150}, {"去", 150, 300}}));
}

TEST(TokenWords, anAccentInATokenOfItsOwnBelongsToItsLetter) {
    EXPECT_EQ(words({{" cafe", 0, 400}, {"\u0301", 400, 500}}, "fr-FR"), (Words{{"café", 0, 500}}));
}

TEST(TokenWords, bracketsOverSeveralTokensTakeTheirTimesAlong) {
    EXPECT_EQ(words({{" Hi", 0, 100},
                     {" (", 100, 150},
                     {"lau", 150, 300},
                     {"ghs", 300, 400},
                     {")", 400, 500},
                     {" you", 500, 600}}),
              (Words{{"Hi", 0, 100}, {"you", 500, 600}}));
    EXPECT_EQ(words({{"[_BEG_]", 0, 0}, {" [", 0, 10}, {"music", 10, 20}, {"]", 20, 30}, {"[_TT_50]", 0, 0}}),
              Words{});
}

TEST(TokenWords, timesOfSpecialTokensCountForNothing) {
    EXPECT_EQ(words({{"<|0.00|>", -1, -1},
                     {" a", 0, 100},
                     {"<|30.00|>", 480000, 480000},
                     {" b", 100, 200},
                     {"<|endoftext|>", 0, 0}}),
              (Words{{"a", 0, 100}, {"b", 100, 200}}));
}

TEST(TokenWords, aBracketThatNeverClosesTakesNothingWithIt) {
    EXPECT_EQ(shown(wordsOf(" (" + std::string(150, 'a') + " b) c", "en-US")),
              "(" + std::string(150, 'a') + "|b)|c");
    EXPECT_EQ(shown(wordsOf(" *and then", "en-US")), "and|then");
}

TEST(TokenWords, tokensWithoutALengthShareTheTimeBesideThem) {
    // Within a word the time stays the word's.
    EXPECT_EQ(words({{" Hel", 0, 100}, {"lo", 100, 100}, {" you", 100, 200}}),
              (Words{{"Hello", 0, 100}, {"you", 100, 200}}));
    // Between words the one that follows gives, or the one before where none follows.
    EXPECT_EQ(words({{" a", 0, 100}, {" b", 100, 100}, {" c", 100, 200}}),
              (Words{{"a", 0, 100}, {"b", 100, 150}, {"c", 150, 200}}));
    EXPECT_EQ(words({{" a", 0, 100}, {" b", 100, 100}}), (Words{{"a", 0, 50}, {"b", 50, 100}}));
    EXPECT_EQ(words({{" a", 0, 0}, {" b", 0, 0}, {" c", 0, 300}}),
              (Words{{"a", 0, 100}, {"b", 100, 200}, {"c", 200, 300}}));
}

TEST(TokenWords, aPauseThatWasToldPartsTwoNumbers) {
    EXPECT_EQ(shown(words({{" 20", 0, 100}, {" 100", 100, 200}, {" ans", 200, 300}}, "fr-FR")), "20~100|ans");
    EXPECT_EQ(shown(words({{" 20", 0, 100}, {" 100", 100, 200, 1, true}, {" ans", 200, 300}}, "fr-FR")),
              "20|100|ans");
    EXPECT_EQ(shown(words({{" 20", 0, 100}, {" 100 000", 100, 200, 1, true}}, "fr-FR")), "20|100~000");
}

TEST(TokenWords, withoutAnyTimeStillFollowOneAnother) {
    EXPECT_EQ(words({{" a", 7, 7}, {" b", 7, 7}}), (Words{{"a", 7, 8}, {"b", 8, 9}}));
    EXPECT_EQ(words({{" a", 7, 3}}), (Words{{"a", 7, 8}}));
}

TEST(TokenWords, timesThatRunBackStandStill) {
    EXPECT_EQ(words({{" a", 100, 200}, {" b", 150, 300}, {" c", 0, 250}, {" d", 320, 400}}),
              (Words{{"a", 100, 200}, {"b", 200, 250}, {"c", 250, 300}, {"d", 320, 400}}));
}

TEST(TokenWords, brokenUtf8NeverReachesAWord) {
    EXPECT_EQ(shown(words({{" a\xff\xc3(b\xed\xa0\x80z\xe4\xbd", 0, 100}})), "a(bz");
    EXPECT_EQ(words({{"\xe4\xbd", 0, 100}}), Words{});
    EXPECT_EQ(shown(words({{" a\xef\xbf\xbd", 0, 100}, {std::string("b\0c\x07", 4), 100, 200}})), "abc");
}

TEST(TokenWords, nothingMakesNoWords) {
    EXPECT_EQ(words({}), Words{});
    EXPECT_EQ(words({{"", 0, 100}, {" ", 100, 200}, {"\u3000\n\t\u200b", 200, 300}}), Words{});
    EXPECT_EQ(words({{" ... ", 0, 100}, {"—", 100, 200}, {"♪", 200, 300}}), Words{});
}

TEST(TokenWords, unknownLanguagesAreWrittenWithSpaces) {
    EXPECT_EQ(shown(wordsOf(" ett två", "sv-SE")), "ett|två");
    EXPECT_EQ(shown(wordsOf(" he said 你好世界", "xx")), "he|said|你好|世界");
}

}  // namespace
}  // namespace korvane
