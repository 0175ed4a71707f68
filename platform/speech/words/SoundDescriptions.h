// What recognisers write in brackets for sounds: laughter, music, applause, and fillers.
#pragma once

#include <span>

#include "platform/locale/Locale.h"
#include "platform/speech/words/TokenCharacters.h"

namespace korvane {

enum class Place {
    insideSentence,  ///< words of the same sentence stand on both sides
    elsewhere,
};

/// Whether `content`, which stands in brackets or asterisks, names nothing but sounds in the language of
/// `locale`: "soft music playing", "смех в зале", "笑". Every word has to be a known one: somebody may also
/// say that he loves music. Nothing is known of languages other than the nine.
bool isSoundDescription(std::span<const TokenCharacter> content, const Locale& locale, Place place);

/// Whether `content` is so short that it can be a description, of whatever: a few words and no number.
bool mayBeDescription(std::span<const TokenCharacter> content);

}  // namespace korvane
