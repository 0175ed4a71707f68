// What a PostScript font name says about a face that is not installed. Pure.
#pragma once

#include <string>
#include <string_view>

namespace korvane {

enum class FontGenre { sans, serif, monospace };

struct FontNameTraits {
    std::string base;  ///< the family's part of the name, lower case letters and digits only
    int weight = 400;  ///< OpenType scale
    bool italic = false;
    FontGenre genre = FontGenre::sans;
};

/// "HelveticaNeue-BoldItalic" is base "helveticaneue", weight 700, italic. A name without a hyphen is
/// regular.
FontNameTraits traitsOfPostScriptName(std::string_view name);

/// Lower case ASCII letters, digits and bytes above ASCII; blanks and punctuation are dropped.
std::string foldedFontName(std::string_view name);

}  // namespace korvane
