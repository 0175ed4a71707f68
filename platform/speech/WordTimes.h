// Moves the edges of recognised words from where a recogniser put them to where they are heard.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/speech/SpeechStretches.h"

namespace korvane {

/// A word at samples [begin, end) of the recording.
struct TimedWord {
    std::string text;
    std::int64_t begin = 0;
    std::int64_t end = 0;
    friend bool operator==(const TimedWord&, const TimedWord&) = default;
};

/// Pure, for whatever recogniser: where it saw a pause, the words beside it are moved to where they are heard
/// to end and to begin, at most 120 ms outwards and 400 ms inwards. Heard is what is louder than the
/// background + 3 dB and than the word's loudest moment - 36 dB; the longest quiet time near by is the pause,
/// so neither a breath within it nor the closure of a "t" is taken for its edge. Between words that a
/// recogniser put side by side, 100 ms of quiet are a pause as well, unless the background hides weak sounds.
/// Edges inside connected speech stay: the quietest moment near by is more often inside a word than between
/// two. \param words     in order, from one stretch, at the times that their recogniser means: what its
/// windows
///                  and frames shift is already taken out.
/// \param stretch   where the sound is.
/// \param notBefore the end of the last word before the stretch.
/// \return the same words, none empty, none overlapping, all at or after `notBefore` and within the stretch.
///         A word that has no time of its own is given 20 ms, at the end of the stretch of the words before
///         it. Where there is less room, all share it; one is missing only where there isn't a sample for
///         each.
std::vector<TimedWord> refineWordTimes(std::vector<TimedWord> words, const SpeechStretch& stretch, int rateHz,
                                       std::int64_t notBefore);

/// Start and length in seconds, such that start + length is never past the end sample's time in doubles.
struct WordSeconds {
    double start = 0.0;
    double duration = 0.0;
    static WordSeconds of(const TimedWord& word, int rateHz);
};

}  // namespace korvane
