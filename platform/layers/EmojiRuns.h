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

/// A text with its emoji marked and the variation selectors that chose them taken out: the colour font has no
/// glyph for those, and a fallback font's would tear sequences like key caps apart.
struct EmojiText {
    QString text;
    std::vector<TextRun> emoji;  ///< in `text`; neighbours merged
};

/// Emoji stay in one piece as people see them: flags, key caps, skin tones and joined sequences. Signs that
/// are text by default count only when a variation selector asks for the picture, and the other way round.
EmojiText markEmoji(const QString& text);

}  // namespace korvane
