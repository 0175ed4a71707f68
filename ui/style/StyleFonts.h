// The fonts as the style editor needs them. Functions, so that a test can offer any.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "model/SubtitleSettings.h"
#include "platform/fonts/FontFace.h"

namespace korvane {

struct StyleFonts {
    /// The families to choose from, sorted. May take long, so it is asked on a thread of its own; not
    /// empty-handed twice: whoever asks keeps the answer.
    std::function<std::vector<std::string>()> families;
    /// The faces of one family, lightest first.
    std::function<std::vector<SubtitleSettings::Weight>(const std::string& family)> weights;
    /// The face that subtitles of this PostScript name are really drawn with. \throws FontError when there is
    /// none.
    std::function<const FontFace&(const std::string& postscript)> face;
    /// Whether a family's own letters can write its name.
    std::function<bool(const std::string& family)> writesOwnName;

    /// Those of this desktop. The first call of any of them reads the list of fonts.
    static StyleFonts installed();
};

}  // namespace korvane
