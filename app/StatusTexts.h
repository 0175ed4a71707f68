// The words and numbers that the screen shows, made from plain values. No state; any thread. Fractions are
// dropped, never rounded; a number that has no whole part stops the program.
#pragma once

#include <QString>
#include <cstddef>
#include <optional>
#include <string>

namespace korvane {

/// How long an operation still takes when it goes on as it did.
/// \param elapsedSeconds  since it began.
/// \param progress        from 0 to 1.
/// \return none up to 0.05, where the guess would be wild; then "Almost done…", "~42s left" or "~3m 7s left".
std::optional<std::string> remainingTimeText(double elapsedSeconds, double progress);

/// "42%"
QString percentText(double progress);

/// "Transcribed — 57 words"
QString transcribedText(std::size_t words);

/// "Words", or "Words — 42 tokens" when there are some.
QString wordsTitle(std::size_t words);

/// "12 words · 1080 × 1920"
QString exportSummary(std::size_t words);

/// "12.3s", and from a minute on "1:15"
QString durationText(double seconds);

/// The last component of a file's path, as it is read.
QString fileName(const std::string& path);

}  // namespace korvane
