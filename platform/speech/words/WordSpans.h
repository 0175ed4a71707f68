// Where the words of a text lie.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "platform/locale/Locale.h"
#include "platform/speech/words/TokenCharacters.h"

namespace korvane {

/// A word's text as a person reads it (UTF-16), and the characters that are spoken in it.
struct WordSpan {
    std::u16string text;
    std::size_t firstSpoken = 0;  ///< index of a character
    std::size_t lastSpoken = 0;   ///< included
};

/// Whether a language puts spaces between its words.
bool writesSpaces(const Locale& locale);

/// Each holds something spoken; none share a character.
std::vector<WordSpan> wordSpans(std::span<const TokenCharacter> characters, const Locale& locale);

}  // namespace korvane
