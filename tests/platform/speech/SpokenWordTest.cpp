#include "platform/speech/pocketsphinx/SpokenWord.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

TEST(SpokenWord, wordsPassAsTheyAre) {
    for (const char* word : {"hello", "man's", "'cause", "e-mail", "c++", "ça"})
        EXPECT_EQ(spokenWord(word), word);
}

TEST(SpokenWord, theNumberOfAPronunciationIsTakenOff) {
    EXPECT_EQ(spokenWord("the(2)"), "the");
    EXPECT_EQ(spokenWord("record(12)"), "record");
}

TEST(SpokenWord, onlyANumberInParenthesesIsAMark) {
    EXPECT_EQ(spokenWord("a(b)"), "a(b)");
    EXPECT_EQ(spokenWord("a()"), "a()");
    EXPECT_EQ(spokenWord("a(2"), "a(2");
}

TEST(SpokenWord, whatIsNotSpokenIsNoWord) {
    for (const char* entry :
         {"<s>", "</s>", "<sil>", "[NOISE]", "[SPEECH]", "++COUGH++", "++x++", "<sil>(2)", "", "(2)"})
        EXPECT_EQ(spokenWord(entry), std::nullopt) << entry;
}

}  // namespace
}  // namespace korvane
