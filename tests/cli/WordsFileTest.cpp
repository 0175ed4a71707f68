#include "cli/WordsFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "cli/Failure.h"

using namespace korvane;
using namespace korvane::cli;

namespace {

Transcript parsed(std::string_view json) {
    return parseWordsFile("w.json", json);
}

std::string refusal(std::string_view json) {
    try {
        parsed(json);
    } catch (const Failure& error) {
        return error.what();
    }
    return "accepted";
}

}  // namespace

TEST(WordsFile, theWholeObjectIsRead) {
    const auto transcript = parsed(
        R"({"language": "en-US", "duration": 61.2, "words": [{"text": "So", "start": 0.31, "end": 0.52}]})");
    EXPECT_EQ(transcript.language, "en-US");
    EXPECT_EQ(transcript.durationSeconds, 61.2);
    ASSERT_EQ(transcript.words.size(), 1u);
    EXPECT_EQ(transcript.words[0].text(), "So");
    EXPECT_EQ(transcript.words[0].start(), 0.31);
    EXPECT_EQ(transcript.words[0].end(), 0.52);
}

TEST(WordsFile, onlyTheWordsAreRequired) {
    const auto transcript = parsed(R"({"words": [], "language": null, "duration": null, "more": [1, {}]})");
    EXPECT_TRUE(transcript.words.empty());
    EXPECT_TRUE(transcript.language.empty());
    EXPECT_FALSE(transcript.durationSeconds);
}

TEST(WordsFile, aBareArrayIsRead) {
    EXPECT_EQ(parsed(R"([{"text": "a", "start": 0, "end": 1, "more": true}])").words.size(), 1u);
    EXPECT_TRUE(parsed("[]").words.empty());
}

TEST(WordsFile, aByteOrderMarkIsNoMistake) {
    EXPECT_EQ(parsed("\xEF\xBB\xBF[{\"text\": \"a\", \"start\": 0, \"end\": 1}]").words.size(), 1u);
}

TEST(WordsFile, timesThatLookWrongAreHandedOn) {
    const auto words = parsed(R"([{"text": "a", "start": 5, "end": 2}, {"text": "", "start": -1, "end": -1},
                                  {"text": "c", "start": 1e6, "end": 1e9}])")
                           .words;
    ASSERT_EQ(words.size(), 3u);
    EXPECT_EQ(words[0].start(), 5.0);
    EXPECT_EQ(words[1].end(), -1.0);
    EXPECT_EQ(words[2].end(), 1e9);
}

TEST(WordsFile, wordAndKeyThatAreWrongAreNamed) {
    EXPECT_EQ(refusal(R"([{"text": "a", "start": 0, "end": 1}, {"text": "b", "start": 1}])"),
              "w.json has a word 1 without \"end\".");
    EXPECT_EQ(refusal(R"([{"start": 0, "end": 1}])"), "w.json has a word 0 without \"text\".");
    EXPECT_EQ(refusal(R"([{"text": 3, "start": 0, "end": 1}])"),
              "w.json has a word 0 whose \"text\" is a number where a text is needed.");
    EXPECT_EQ(refusal(R"([{"text": "a", "start": "0", "end": 1}])"),
              "w.json has a word 0 whose \"start\" is a text where a number of seconds is needed.");
    EXPECT_EQ(refusal(R"([{"text": "a", "start": 0, "end": null}])"),
              "w.json has a word 0 whose \"end\" is null where a number of seconds is needed.");
    EXPECT_EQ(refusal("[7]"),
              "w.json has a word 0 that is a number where an object with \"text\", \"start\" "
              "and \"end\" is needed.");
}

TEST(WordsFile, theRestOfTheObjectIsCheckedToo) {
    EXPECT_EQ(refusal("{}"), "w.json has no \"words\"; an object with an array of words was expected.");
    EXPECT_EQ(refusal(R"({"words": {}})"),
              "w.json has \"words\" that is an object where an array is needed.");
    EXPECT_EQ(refusal(R"({"words": [], "language": 5})"),
              "w.json has \"language\" that is a number where a text is needed.");
    EXPECT_EQ(refusal(R"({"words": [], "duration": "5"})"),
              "w.json has \"duration\" that is a text where a number is needed.");
}

TEST(WordsFile, whatIsNoJsonIsRefusedWithThePlace) {
    EXPECT_EQ(refusal(""), "w.json is empty; a list of words in JSON was expected.");
    EXPECT_EQ(refusal(" \n"), "w.json is empty; a list of words in JSON was expected.");
    EXPECT_EQ(refusal("\xEF\xBB\xBF"), "w.json is empty; a list of words in JSON was expected.");
    for (const char* json : {"nonsense", "[", "{\"words\": [}", "[] []", "\"a\"", "5", "null", "[1,]",
                             R"([{"text": "a", "start": NaN, "end": 1}])",
                             R"([{"text": "a", "start": Infinity, "end": 1}])", "[{\"text\": \"\xFF\"}]"})
        EXPECT_TRUE(refusal(json).starts_with("w.json is not valid JSON: ")) << json << ": " << refusal(json);
}

TEST(WordsFile, aNumberBeyondAllNumbersIsRefused) {
    EXPECT_NE(refusal(R"([{"text": "a", "start": 1e999, "end": 1}])"), "accepted");
    EXPECT_NE(refusal(R"([{"text": "a", "start": 0, "end": -1e999}])"), "accepted");
}

TEST(WordsFile, deepNestingIsRefusedInsteadOfCrashing) {
    EXPECT_NE(refusal(std::string(1'000'000, '[')), "accepted");
}

TEST(WordsFile, whatIsWrittenIsReadAgainExactly) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> seconds(-10.0, 1e5);
    Transcript written{"zh-CN", 0.1 + 0.2, {}};
    const std::string texts[] = {"So",     "",  "\"quoted\\\"", "tab\tline\nbell\x07", "über",
                                 "日本語", "🎬", "</b>&"};
    for (int i = 0; i < 20000; ++i)
        written.words.emplace_back(texts[i % 8], seconds(random), seconds(random));

    const auto read = parsed(formatWordsFile(written));
    EXPECT_EQ(read.language, written.language);
    EXPECT_EQ(read.durationSeconds, written.durationSeconds);
    ASSERT_EQ(read.words.size(), written.words.size());
    for (std::size_t i = 0; i < read.words.size(); ++i) {
        ASSERT_EQ(read.words[i].text(), written.words[i].text());
        ASSERT_EQ(read.words[i].start(), written.words[i].start());
        ASSERT_EQ(read.words[i].end(), written.words[i].end());
    }
}

TEST(WordsFile, theWrittenFormIsForPeopleToo) {
    EXPECT_EQ(formatWordsFile({"en-US", 61.2, {{"So", 0.31, 0.52}, {"we", 0.6, 1.0}}}),
              "{\n  \"language\": \"en-US\",\n  \"duration\": 61.2,\n  \"words\": [\n"
              "    {\"text\": \"So\", \"start\": 0.31, \"end\": 0.52},\n"
              "    {\"text\": \"we\", \"start\": 0.6, \"end\": 1}\n  ]\n}\n");
    EXPECT_EQ(formatWordsFile({}), "{\n  \"words\": []\n}\n");
}

TEST(WordsFile, damagedFilesAreReadOrRefusedButNeverCrash) {
    const std::string whole = formatWordsFile({"en-US", 2.0, {{"So", 0.31, 0.52}, {"ü\n", 0.6, 1.0}}});
    for (std::size_t length = 0; length + 2 < whole.size(); ++length)
        EXPECT_NE(refusal(whole.substr(0, length)), "accepted") << length;

    std::mt19937 random(11);
    for (int round = 0; round < 20000; ++round) {
        std::string damaged = whole;
        for (unsigned i = 0; i <= random() % 3; ++i)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        const auto answer = refusal(damaged);
        EXPECT_TRUE(answer == "accepted" || answer.starts_with("w.json ")) << answer;
    }
}
