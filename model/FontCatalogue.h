// Which of a desktop's fonts are offered for subtitles: only what can really be opened, so that whatever is
// chosen can be drawn. Pure over the font manager it is given; SubtitleSettings asks it about the installed
// fonts.
#pragma once

#include <string>
#include <vector>

#include "model/SubtitleSettings.h"
#include "platform/fonts/FontManager.h"

namespace korvane {

/// The families with at least one face that can be opened and whose name does not begin with a dot (a
/// desktop's own, not for people), sorted as the user's language sorts, upper and lower case alike. Faces are
/// opened up to the first good one of each family.
std::vector<std::string> usableFontFamilies(const FontManager& fonts);

/// The good faces of a family that have a name and a weight, lightest first. Equal weights stay in the
/// manager's order. A face without a word of its own is "Regular". Empty when there is no such family.
std::vector<SubtitleSettings::Weight> usableWeights(const FontManager& fonts, const std::string& family);

}  // namespace korvane
