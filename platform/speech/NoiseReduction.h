// Takes a steady background out of a stretch of speech, for a recogniser that learnt from clean recordings.
#pragma once

#include <span>
#include <vector>

namespace korvane {

/// Weakens each band of the spectrum, 31 Hz wide at 16 kHz, by up to 12 dB where it holds hardly more than
/// the background. The background is taken from the quietest fifth of the stretch, band by band, and followed
/// from there on (by the probability that somebody speaks, Gerkmann and Hendriks 2012); how much of a moment
/// is speech is decided with the moment before in mind (Ephraim and Malah 1984), which leaves no ringing
/// behind. Clean speech, and speech over music, stays as it is: there it would be misheard more often. Pure.
/// \param samples  mono; what is no finite number counts as silence.
/// \return as many samples, where each was: nothing is moved in time.
std::vector<float> withoutNoise(std::span<const float> samples, int rateHz);

}  // namespace korvane
