#include <QByteArray>
#include <array>
#include <cmath>
#include <stdexcept>

#include "cli/Failure.h"
#include "cli/WordSelection.h"
#include "cli/WordsFile.h"
#include "model/SubtitleSettings.h"
#include "platform/process/UsageError.h"
#include "tests/fuzz/Fuzzers.h"

namespace korvane::fuzz {
namespace {

constexpr std::array kPieces{"{",
                             "}",
                             "[",
                             "]",
                             ",",
                             ":",
                             "\"words\"",
                             "\"text\"",
                             "\"start\"",
                             "\"end\"",
                             "null",
                             "true",
                             "1e999",
                             "-0",
                             "1e-320",
                             "\"\\ud800\"",
                             "\"\\u0000\"",
                             "NaN",
                             "0.5",
                             "99999999999999999999",
                             "\"fontSize\"",
                             "\"hasShadow\"",
                             "\xEF\xBB\xBF",
                             "\xFF",
                             "\n",
                             "\"\""};

std::string wordsFile() {
    return R"({"language": "en-US", "duration": 61.2, "words": [{"text": "So", "start": 0.31, "end": 0.52}, {"text": "it", "start": 1, "end": 2}]})";
}

/// Damaged bytes, or pieces of JSON put together at random.
std::string damaged(const std::string& whole, Random& random) {
    if (random() % 2 == 0)
        return mutated(whole, random);
    std::string text = random() % 2 == 0 ? whole : "";
    for (std::size_t i = 0, n = 1 + random() % 30; i < n; ++i)
        text.insert(random() % (text.size() + 1), kPieces[random() % kPieces.size()]);
    return text;
}

void readWords(const std::string& text) {
    try {
        const cli::Transcript transcript = cli::parseWordsFile("words.json", text);
        // What was read can be written, and read again.
        const std::string written = cli::formatWordsFile(transcript);
        if (cli::formatWordsFile(cli::parseWordsFile("words.json", written)) != written)
            throw std::logic_error("a word file changes when it is read again: " + written);
    } catch (const cli::Failure& failure) {
        if (std::string(failure.what()).empty())
            throw std::logic_error("an error without a sentence");
    }
}

void readStyle(const std::string& text) {
    try {
        const SubtitleSettings style = SubtitleSettings::fromJson(QByteArray::fromStdString(text));
        const auto written = style.toJson();
        if (written && !(SubtitleSettings::fromJson(*written) == style))
            throw std::logic_error("a style changes when it is read again");
    } catch (const SubtitleSettingsError& error) {
        if (std::string(error.what()).empty())
            throw std::logic_error("an error without a sentence");
    }
}

void readSelection(Random& random) {
    constexpr std::string_view kSigns = "0123456789,-. ..all";
    std::string text;
    for (std::size_t i = 0, n = random() % 24; i < n; ++i)
        text += kSigns[random() % kSigns.size()];
    try {
        const auto chosen = cli::resolveSelection(cli::parseWordSpans("--select", text), {}, 100);
        for (std::size_t i = 0; i < chosen.size(); ++i)
            if (chosen[i] >= 100 || (i > 0 && chosen[i] <= chosen[i - 1]))
                throw std::logic_error("a wrong selection came of " + text);
    } catch (const korvane::UsageError&) {
    }
}

}  // namespace

void TextFuzzer::round(Random& random) {
    readWords(damaged(wordsFile(), random));
    readStyle(damaged(SubtitleSettings().toJson()->toStdString(), random));
    readSelection(random);
}

}  // namespace korvane::fuzz
