// However a recogniser cuts a text into tokens, the words are the same, and their times are in order.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string_view>

#include "platform/speech/TokenWords.h"
#include "tests/platform/speech/WordTable.h"

namespace korvane {
namespace {

/// Cuts anywhere, also inside characters; every other token is given some length.
std::vector<HeardToken> cutAtRandom(const std::string& text, std::mt19937& random) {
    std::vector<HeardToken> tokens;
    auto time = static_cast<std::int64_t>(random() % 1000);
    for (std::size_t at = 0; at < text.size();) {
        const auto length = std::min<std::size_t>(text.size() - at, random() % 7);
        const std::int64_t begin = time + static_cast<std::int64_t>(random() % 4 == 0 ? random() % 50 : 0);
        time = begin + static_cast<std::int64_t>(random() % 3 == 0 ? 0 : random() % 500);
        tokens.push_back({text.substr(at, length), begin, time});
        at += length;
    }
    return tokens;
}

void expectInOrder(const std::vector<TimedWord>& words, const std::string& what) {
    auto from = std::numeric_limits<std::int64_t>::min();
    for (const auto& word : words) {
        EXPECT_FALSE(word.text.empty()) << what;
        EXPECT_GE(word.begin, from) << what << " at " << word.text;
        EXPECT_GT(word.end, word.begin) << what << " at " << word.text;
        from = word.end;
    }
}

TEST(TokenWordsProperty, theSameTextHasTheSameWordsHoweverItIsCut) {
    std::mt19937 random(1);
    for (const auto& line : wordCases()) {
        for (int round = 0; round < 40; ++round) {
            const auto words = wordsOfTokens(cutAtRandom(line.text, random), Locale{line.locale});
            ASSERT_EQ(shown(words), line.words) << line.locale << ": " << line.text;
            expectInOrder(words, line.text);
        }
    }
}

TEST(TokenWordsProperty, theWholeTimeOfATextIsThatOfItsTokens) {
    std::mt19937 random(2);
    for (const auto& line : wordCases()) {
        std::vector<HeardToken> tokens;
        const std::string text = line.text;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const auto begin = static_cast<std::int64_t>(i) * 100;
            tokens.push_back({text.substr(i, 1), begin, begin + 100});
        }
        for (const auto& word : wordsOfTokens(tokens, Locale{line.locale})) {
            EXPECT_EQ(word.begin % 100, 0) << line.text;
            EXPECT_EQ(word.end % 100, 0) << line.text;
            EXPECT_LE(word.end, std::ssize(text) * 100);
        }
    }
}

/// A word as a recogniser may write it by the way or with stress.
std::string decorated(const std::string& word, unsigned way) {
    switch (way % 8) {
        case 0:
            return "*" + word + "*";
        case 1:
            return "**" + word + "**,";
        case 2:
            return "(" + word + ")";
        case 3:
            return "\"" + word + "\"";
        case 4:  // a star between two bytes of a letter is none
            return word.front() > 0 ? word.substr(0, 1) + "**" + word.substr(1) : word;
        default:
            return word;
    }
}

/// What is said in a language, and may stand there in whatever marks.
struct SpokenWords {
    const char* locale;
    std::vector<std::string> anywhere;
    std::vector<std::string> sounds;  ///< not in brackets, which would name a sound
};

const std::vector<SpokenWords>& spokenWords() {
    static const std::vector<SpokenWords> words{
        {"en-US",
         {"plan", "failed", "very", "Paris", "really", "cheerful", "musical", "screamed", "ride", "rit",
          "pauses"},
         {"music", "noise", "sings", "laughs", "silence", "er", "um", "crying"}},
        {"fr-FR",
         {"était", "er", "um", "ride", "musicien", "sirène", "applaudir"},
         {"rit", "musique", "cris"}},
        {"de-DE",
         {"schön", "er", "um", "in", "Musiker", "hustete", "rit", "eh"},
         {"lachen", "Musik", "Stille", "weint", "Pause"}},
        {"es-ES",
         {"um", "er", "ride", "aplaudió", "músico", "suspirar"},
         {"música", "ruido", "tos", "risa", "eh"}},
        {"it-IT", {"um", "er", "rit", "applaudito", "musicale", "sospirare"}, {"ride", "musica", "tosse"}},
        {"ru-RU",
         {"который", "музыкант", "смеёшься", "вздохнул", "сміх"},
         {"смех", "музыка", "шум", "пауза"}},
        {"uk-UA", {"який", "музикант", "смієшся", "зітхнув", "смех"}, {"сміх", "музика", "тиша", "крик"}}};
    return words;
}

std::string withoutMarks(std::string text) {
    std::erase_if(text, [](char c) { return std::string_view("*(),\".").find(c) != std::string_view::npos; });
    return text;
}

TEST(TokenWordsProperty, noMarksTakeAWordOutOfASentence) {
    std::mt19937 random(4);
    for (int round = 0; round < 4000; ++round) {
        const auto& spoken = spokenWords()[random() % spokenWords().size()];
        std::string text = " And";
        std::string expected = "And";
        for (auto count = 1 + random() % 12; count > 0; --count) {
            const bool sound = random() % 2 == 0;
            const auto& list = sound ? spoken.sounds : spoken.anywhere;
            const auto& word = list[random() % list.size()];
            const auto way = static_cast<unsigned>(sound ? random() % 2 : random());
            text += " " + decorated(word, way);
            expected += word;
        }
        std::string found;
        for (const auto& word : wordsOf(text + " too.", spoken.locale))
            found += word.text;
        ASSERT_EQ(withoutMarks(found), expected + "too") << text;
    }
}

TEST(TokenWordsProperty, bracketsAroundASoundOfTheLanguageTakeItOut) {
    for (const auto& spoken : spokenWords()) {
        for (const auto& sound : spoken.sounds)
            EXPECT_EQ(shown(wordsOf(" And (" + sound + ") so", spoken.locale)), "And|so") << sound;
    }
}

TEST(TokenWordsProperty, anyBytesAtAnyTimesMakeWordsInOrder) {
    std::mt19937 random(3);
    const char* locales[] = {"en-US", "fr-FR", "zh-CN", "ja-JP", ""};
    const std::string_view pieces[] = {
        " ",  "a",   "\xe4", "\xbd\xa0", "\xff", "[",  "]",      "(",  ")",  "*",  "♪",    "<|", "|>",
        "1",  "000", "%",    "€",        ".",    "—",  "\u0301", "が", "ー", "。", "你好", ">",  "**",
        "（", "笑",  "）",   "わ",       "から", "な", "も",     "行", "”",  "\"", "个月"};
    for (int round = 0; round < 3000; ++round) {
        std::vector<HeardToken> tokens;
        for (auto count = random() % 30; count > 0; --count) {
            HeardToken token;
            for (auto parts = random() % 4; parts > 0; --parts)
                token.bytes += pieces[random() % std::size(pieces)];
            token.begin = static_cast<std::int64_t>(random() % 2000) - 100;
            token.end = static_cast<std::int64_t>(random() % 2000) - 100;
            tokens.push_back(token);
        }
        expectInOrder(wordsOfTokens(tokens, Locale{locales[random() % std::size(locales)]}),
                      "round " + std::to_string(round));
    }
}

}  // namespace
}  // namespace korvane
