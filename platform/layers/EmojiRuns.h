// Finds the emoji in a text, so that they are drawn by the colour font even where the text's own font has a
// black and white sign for them. Pure.
#pragma once

#include <QString>
#include <vector>

namespace korvane {

/// UTF-16 code units [start, start + length).
struct TextRun {
    int start = 0;
    int length = 0;
    friend bool operator==(const TextRun&, const TextRun&) = default;
};

/// Whole emoji as people see them, neighbours merged: flags, key caps, skin tones and joined sequences stay
/// in one piece. Signs that are text by default count only when a variation selector asks for the picture.
std::vector<TextRun> emojiRuns(const QString& text);

}  // namespace korvane
