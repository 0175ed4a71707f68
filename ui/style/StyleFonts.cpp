#include "ui/style/StyleFonts.h"

#include "platform/fonts/InstalledFontManager.h"

namespace korvane {

StyleFonts StyleFonts::installed() {
    return {[] { return SubtitleSettings::fontFamilies(); },
            [](const std::string& family) { return SubtitleSettings::weights(family); },
            [](const std::string& postscript) -> const FontFace& {
                return InstalledFontManager::ofThisProcess().lookup().face(postscript);
            },
            [](const std::string& family) {
                return InstalledFontManager::ofThisProcess().writesEnglish(family);
            }};
}

}  // namespace korvane
