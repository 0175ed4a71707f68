#include "platform/speech/TokenWords.h"

#include <unicode/unistr.h>

#include <algorithm>

#include "platform/speech/words/TokenCharacters.h"
#include "platform/speech/words/TokenTimes.h"
#include "platform/speech/words/WordSpans.h"

namespace korvane {
namespace {

std::string utf8(const std::u16string& text) {
    std::string result;
    icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size())).toUTF8String(result);
    return result;
}

/// For each character the word that it is spoken in.
std::vector<int> wordOfEach(const std::vector<TokenCharacter>& characters,
                            const std::vector<WordSpan>& spans) {
    std::vector<int> wordOf(characters.size(), -1);
    for (std::size_t word = 0; word < spans.size(); ++word) {
        for (auto i = spans[word].firstSpoken; i <= spans[word].lastSpoken; ++i)
            wordOf[i] = characters[i].isSpoken() ? static_cast<int>(word) : -1;
    }
    return wordOf;
}

}  // namespace

std::vector<TimedWord> wordsOfTokens(std::span<const HeardToken> tokens, const Locale& locale) {
    auto characters = charactersOfTokens(tokens);
    dropUnspoken(characters, locale);
    const auto spans = wordSpans(characters, locale);
    const auto times = timesOfCharacters(characters, wordOfEach(characters, spans), tokens);

    std::vector<TimedWord> words;
    for (const auto& span : spans) {
        // Only where a recogniser gave no time at all does anything move here.
        const auto before = words.empty() ? times[span.firstSpoken].begin : words.back().end;
        const auto begin = std::max(times[span.firstSpoken].begin, before);
        words.push_back({utf8(span.text), begin, std::max(times[span.lastSpoken].end, begin + 1)});
    }
    return words;
}

}  // namespace korvane
