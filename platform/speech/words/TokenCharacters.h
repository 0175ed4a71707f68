// The characters of a recogniser's tokens, and which tokens each lies in.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "platform/speech/TokenWords.h"

namespace korvane {

/// What a person sees as one character: a base with all its accents, composed (NFC).
struct TokenCharacter {
    enum class Kind {
        space,
        gap,     ///< something that isn't spoken has been taken out here
        spoken,  ///< letters, digits, and signs with a name of their own: %, &, €
        mark,    ///< all other punctuation and signs
    };

    std::u16string text;
    char32_t base = 0;
    std::size_t firstToken = 0;  ///< its bytes lie in these, both included
    std::size_t lastToken = 0;
    std::size_t phrase = 0;  ///< how many pauses were told before its first token
    Kind kind = Kind::mark;

    bool isSpace() const { return kind == Kind::space; }
    bool isGap() const { return kind == Kind::gap; }
    bool isSpoken() const { return kind == Kind::spoken; }
    bool isMark() const { return kind == Kind::mark; }
    bool isDigit() const;
    bool isLetter() const;
    /// Written without spaces: Chinese characters, kana, and the punctuation that goes with them.
    bool isUnspaced() const;
};

/// Joins the bytes and leaves out what is no character: broken UTF-8, control and format characters.
std::vector<TokenCharacter> charactersOfTokens(std::span<const HeardToken> tokens);

/// Makes gaps of descriptions in brackets, special signs and notes, and takes out asterisks that only stress.
/// \param locale  what is spoken: its words for sounds are the ones that count.
void dropUnspoken(std::vector<TokenCharacter>& characters, const Locale& locale);

}  // namespace korvane
