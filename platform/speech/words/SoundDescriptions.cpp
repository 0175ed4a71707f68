#include "platform/speech/words/SoundDescriptions.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/speech/words/SoundWords.h"

namespace korvane {
namespace {

using Characters = std::span<const TokenCharacter>;

constexpr std::ptrdiff_t mostWords = 5;
constexpr std::ptrdiff_t mostUnspaced = 12;
constexpr std::u32string_view sentenceParts = U",;:，；：、";

const SoundWords* soundWordsOf(const Locale& locale) {
    const auto language = locale.identifier.substr(0, locale.identifier.find_first_of("-_"));
    const auto* found = std::ranges::find_if(
        soundWords, [&](const auto& words) { return std::ranges::equal(words.language, language); });
    return found == std::end(soundWords) ? nullptr : found;
}

/// \return the next word and takes it from the list, nothing at its end.
std::u16string_view takeWord(std::u16string_view& list) {
    const auto end = std::min(list.find(u' '), list.size());
    const auto word = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    return word;
}

bool holds(std::u16string_view list, std::u16string_view wanted) {
    while (!list.empty()) {
        if (takeWord(list) == wanted)
            return true;
    }
    return false;
}

/// What a description is made of, one for each word.
enum class Part { sound, beside, link };
using Parts = std::vector<Part>;

std::optional<Part> partOf(std::u16string_view word, const SoundWords& known, Place place) {
    if (holds(known.sounds, word) || (place == Place::elsewhere && holds(known.nouns, word)))
        return Part::sound;
    if (holds(known.besides, word))
        return Part::beside;
    return holds(known.links, word) ? std::optional(Part::link) : std::nullopt;
}

/// Takes a word of Chinese or Japanese apart, "背景音乐", the longest parts first.
bool appendUnspaced(std::u16string_view word, const SoundWords& known, Place place, Parts& parts) {
    if (word.empty())
        return true;
    for (auto length = word.size(); length > 0; --length) {
        const auto part = partOf(word.substr(0, length), known, place);
        if (!part)
            continue;
        parts.push_back(*part);
        if (appendUnspaced(word.substr(length), known, place, parts))
            return true;
        parts.pop_back();
    }
    return false;
}

std::vector<std::u16string> wordsOf(Characters content) {
    std::vector<std::u16string> words;
    bool inside = false;
    for (const auto& character : content) {
        if (character.isLetter() && !inside)
            words.emplace_back();
        inside = character.isLetter();
        if (!inside)
            continue;
        icu::UnicodeString small(character.text.data(), static_cast<std::int32_t>(character.text.size()));
        small.toLower();
        words.back().append(small.getBuffer(), static_cast<std::size_t>(small.length()));
    }
    return words;
}

/// None, if there is a word that no description is made of.
Parts partsOf(Characters content, const SoundWords& known, Place place) {
    const bool unspaced = !known.nouns.empty();
    Parts parts;
    for (const auto& word : wordsOf(content)) {
        const auto part = unspaced ? std::nullopt : partOf(word, known, place);
        if (part)
            parts.push_back(*part);
        else if (!unspaced || !appendUnspaced(word, known, place, parts))
            return {};
    }
    return parts;
}

bool hasDigit(Characters content) {
    return std::ranges::any_of(content, &TokenCharacter::isDigit);
}

/// "(noise, music)" counts things up.
bool isEnumeration(Characters content) {
    return std::ranges::any_of(
        content, [](char32_t c) { return sentenceParts.find(c) != std::u32string_view::npos; },
        &TokenCharacter::base);
}

/// "ER" is a room in a hospital.
bool isAbbreviation(Characters content) {
    return (content.size() == 2 || content.size() == 3) && std::ranges::all_of(content, [](const auto& c) {
               return u_isupper(static_cast<UChar32>(c.base));
           });
}

}  // namespace

bool isSoundDescription(Characters content, const Locale& locale, Place place) {
    const auto* known = soundWordsOf(locale);
    if (known == nullptr || hasDigit(content) || isAbbreviation(content) ||
        (place == Place::insideSentence && isEnumeration(content)))
        return false;
    const auto parts = partsOf(content, *known, place);
    // "(and silence)" goes on with the sentence.
    return std::ranges::find(parts, Part::sound) != parts.end() && parts.front() != Part::link &&
           parts.back() != Part::link;
}

bool mayBeDescription(Characters content) {
    return !hasDigit(content) && std::ssize(wordsOf(content)) <= mostWords &&
           std::ranges::count_if(content, &TokenCharacter::isUnspaced) <= mostUnspaced;
}

}  // namespace korvane
