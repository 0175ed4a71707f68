// When the characters of a recogniser's tokens are spoken.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/speech/TokenWords.h"
#include "platform/speech/words/TokenCharacters.h"

namespace korvane {

/// Samples [begin, end).
struct CharacterTime {
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

/// \param wordOf  for each character the number of the word that it is spoken in, -1 for those that aren't.
/// \return for each character when it is spoken, in order; of no meaning for those that aren't. Tokens are
/// shared
///         out evenly to what is spoken in them; one without a length shares the time of a token beside it,
///         one of the same word first.
std::vector<CharacterTime> timesOfCharacters(std::span<const TokenCharacter> characters,
                                             std::span<const int> wordOf, std::span<const HeardToken> tokens);

}  // namespace korvane
