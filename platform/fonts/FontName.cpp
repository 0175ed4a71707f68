#include "platform/fonts/FontName.h"

#include <array>
#include <initializer_list>
#include <utility>

namespace korvane {
namespace {

bool containsAny(const std::string& text, std::initializer_list<std::string_view> words) {
    for (const auto word : words) {
        if (text.find(word) != std::string::npos)
            return true;
    }
    return false;
}

/// Longer words first: "extrabold" holds "bold", "demibold" too.
int weightOf(const std::string& suffix) {
    static constexpr std::array<std::pair<std::string_view, int>, 18> kWords{{{"extrablack", 950},
                                                                              {"ultrablack", 950},
                                                                              {"extrabold", 800},
                                                                              {"ultrabold", 800},
                                                                              {"semibold", 600},
                                                                              {"demibold", 600},
                                                                              {"extralight", 200},
                                                                              {"ultralight", 200},
                                                                              {"semilight", 350},
                                                                              {"demilight", 350},
                                                                              {"hairline", 100},
                                                                              {"thin", 100},
                                                                              {"light", 300},
                                                                              {"medium", 500},
                                                                              {"demi", 600},
                                                                              {"bold", 700},
                                                                              {"heavy", 850},
                                                                              {"black", 900}}};
    for (const auto& [word, weight] : kWords) {
        if (suffix.find(word) != std::string::npos)
            return weight;
    }
    return 400;
}

FontGenre genreOf(const std::string& base) {
    if (containsAny(base, {"mono", "courier", "consol", "menlo", "monaco", "code", "typewriter"}))
        return FontGenre::monospace;
    if (base.find("sans") != std::string::npos)
        return FontGenre::sans;
    if (containsAny(base, {"serif", "times", "georgia", "garamond", "palatino", "baskerville", "didot",
                           "bodoni", "cambria", "newyork", "hoefler", "cochin", "charter"}))
        return FontGenre::serif;
    return FontGenre::sans;
}

}  // namespace

std::string foldedFontName(std::string_view name) {
    std::string folded;
    for (const char c : name) {
        if (c >= 'A' && c <= 'Z')
            folded += static_cast<char>(c - 'A' + 'a');
        else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80)
            folded += c;
    }
    return folded;
}

FontNameTraits traitsOfPostScriptName(std::string_view name) {
    const auto hyphen = name.rfind('-');
    const std::string suffix =
        hyphen == std::string_view::npos ? std::string() : foldedFontName(name.substr(hyphen + 1));
    FontNameTraits traits;
    traits.base = foldedFontName(name.substr(0, hyphen));
    traits.weight = weightOf(suffix);
    traits.italic = containsAny(suffix, {"italic", "oblique", "slanted"});
    traits.genre = genreOf(traits.base);
    return traits;
}

}  // namespace korvane
