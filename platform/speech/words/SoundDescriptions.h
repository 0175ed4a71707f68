// What recognisers write in brackets for sounds: laughter, music, applause, and fillers.
#pragma once

#include <span>

#include "platform/speech/words/TokenCharacters.h"

namespace korvane {

/// Whether `content`, which stands in brackets or asterisks, names nothing but sounds: "soft music playing",
/// "смех в зале", "笑". Every word has to be a known one, in any of the nine languages: somebody may also say
/// that he loves music.
bool isSoundDescription(std::span<const TokenCharacter> content);

/// Whether `content` can be a description at all, of whatever: a few words, no number and no sentence.
bool mayBeDescription(std::span<const TokenCharacter> content);

}  // namespace korvane
