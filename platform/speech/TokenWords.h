// From the pieces in which a recogniser writes a text to the words that a person reads, in any script.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/locale/Locale.h"
#include "platform/speech/WordTimes.h"

namespace korvane {

/// A piece of a text as a recogniser wrote it: raw bytes, may begin or end inside a UTF-8 character.
struct HeardToken {
    std::string bytes;
    std::int64_t begin = 0;  ///< sample
    std::int64_t end = 0;
    double probability = 1;
    bool afterPause = false;  ///< nobody speaks between the token before and this one
};

/// Pure; any thread. Joins the tokens to a text and takes it apart into words:
/// - Words lie between spaces; where Chinese or Japanese is written, a dictionary finds them.
/// - Punctuation stays with its word, with the space before it where the language sets one ("quoi ?", "Kyiv
/// —").
///   Numbers stay whole with their unit ("1 000" without a pause in it, "3,14 %", "$5", "5月"), short forms
///   too ("z. B.").
/// - What isn't spoken is dropped: marks between special signs ("<|0.00|>", "[_BEG_]"), all that stands in
///   square brackets, sounds and fillers of the language in round ones ("(laughs)"), descriptions that stand
///   alone in round ones or asterisks ("*applause*", also over several tokens), asterisks that only stress,
///   notes, the arrows before another speaker, control characters, and bytes that are no UTF-8. Other words
///   in round brackets or asterisks stay.
/// - Texts are NFC and never empty.
///
/// A word's time is that of what is spoken in it: a comma doesn't prolong it, nor does the space before.
/// Tokens that hold parts of several words are shared out by characters; those without a length share the
/// time of the ones beside them. \param tokens  in order; times that run back are taken as standing still.
/// \return words in order, none overlapping, each at least a sample long.
std::vector<TimedWord> wordsOfTokens(std::span<const HeardToken> tokens, const Locale& locale);

}  // namespace korvane
