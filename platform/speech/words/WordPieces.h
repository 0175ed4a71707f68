// The smallest pieces that words are put together from.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "platform/locale/Locale.h"
#include "platform/speech/words/TokenCharacters.h"

namespace korvane {

/// Characters [first, last) between two places at which words may part.
struct WordPiece {
    enum class Before {
        nothing,  ///< follows the piece before without a space
        space,
        gap,          ///< follows something that has been taken out
        gapAndSpace,  ///< and a space after that
    };
    std::size_t first = 0, last = 0;
    Before before = Before::nothing;
};

/// Cuts at spaces and gaps, around dashes and dots that stand for a pause ("well...so"), and where a
/// dictionary sees words that are written without spaces.
std::vector<WordPiece> wordPieces(std::span<const TokenCharacter> characters, const Locale& locale);

}  // namespace korvane
