#include "platform/fonts/FontLookup.h"

#include <fontconfig/fontconfig.h>

#include <QStringList>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <tuple>

#include "platform/fonts/FontName.h"

namespace korvane {
namespace {

/// Families that look good burned into a picture and that distributions ship, best first.
const std::vector<std::string_view>& preferredFamilies(FontGenre genre) {
    static const std::vector<std::string_view> kSans{
        "Inter",  "Liberation Sans", "Arimo",       "Noto Sans", "Open Sans",  "Roboto",
        "Ubuntu", "Cantarell",       "Nimbus Sans", "FreeSans",  "DejaVu Sans"};
    static const std::vector<std::string_view> kSerif{"Liberation Serif", "Tinos",     "Noto Serif",
                                                      "Nimbus Roman",     "FreeSerif", "DejaVu Serif"};
    static const std::vector<std::string_view> kMonospace{"Liberation Mono", "Cousine",  "Noto Sans Mono",
                                                          "Ubuntu Mono",     "FreeMono", "DejaVu Sans Mono"};
    switch (genre) {
        case FontGenre::sans:
            return kSans;
        case FontGenre::serif:
            return kSerif;
        case FontGenre::monospace:
            return kMonospace;
    }
    return kSans;
}

/// How far a face is from what a name asks for; the smallest wins, the installed order breaks ties.
auto distance(const FontFace& face, const FontNameTraits& wanted) {
    return std::tuple(face.italic != wanted.italic, std::abs(face.widthPercent - 100),
                      std::abs(face.weight - wanted.weight), face.weight < wanted.weight);
}

template <typename Predicate>
const FontFace* nearest(const std::vector<FontFace>& faces, const FontNameTraits& wanted, Predicate accepts) {
    const FontFace* best = nullptr;
    for (const auto& face : faces) {
        if (accepts(face) && (!best || distance(face, wanted) < distance(*best, wanted)))
            best = &face;
    }
    return best;
}

bool carriesBaseName(const FontFace& face, const std::string& base) {
    return foldedFontName(face.family) == base || traitsOfPostScriptName(face.postScriptName).base == base;
}

std::optional<std::string> chooseEmojiFamily(const std::vector<FontFace>& faces) {
    std::optional<std::string> chosen;
    for (const auto& face : faces) {
        if (!face.color)
            continue;
        if (face.family == "Noto Color Emoji")
            return face.family;
        if (!chosen)
            chosen = face.family;
    }
    return chosen;
}

}  // namespace

FontLookup::FontLookup(std::vector<FontFace> faces)
    : faces_(std::move(faces)), emojiFamily_(chooseEmojiFamily(faces_)) {
    for (std::size_t i = 0; i < faces_.size(); ++i)
        byPostScriptName_.emplace(faces_[i].postScriptName, i);
}

const FontFace* FontLookup::exactFace(std::string_view postScriptName) const {
    const auto found = byPostScriptName_.find(std::string(postScriptName));
    return found == byPostScriptName_.end() ? nullptr : &faces_[found->second];
}

const FontFace& FontLookup::face(std::string_view postScriptName) const {
    if (const auto* exact = exactFace(postScriptName))
        return *exact;
    return substitute(postScriptName);
}

const FontFace& FontLookup::substitute(std::string_view postScriptName) const {
    const auto wanted = traitsOfPostScriptName(postScriptName);
    const auto isText = [](const FontFace& face) { return face.latin && !face.color; };
    if (const auto* relative = nearest(faces_, wanted, [&](const FontFace& face) {
            return isText(face) && carriesBaseName(face, wanted.base);
        }))
        return *relative;
    for (const auto genre : {wanted.genre, FontGenre::sans, FontGenre::serif, FontGenre::monospace}) {
        for (const auto family : preferredFamilies(genre)) {
            if (const auto* known =
                    nearest(faces_, wanted, [&](const FontFace& face) { return face.family == family; }))
                return *known;
        }
    }
    if (const auto* readable = nearest(faces_, wanted, isText))
        return *readable;
    if (!faces_.empty())
        return faces_.front();
    throw FontError(
        "Subtitles can't be drawn: no font is installed. Install one, for instance the package fonts-inter.");
}

QFont FontLookup::font(std::string_view postScriptName, int pixelSize) const {
    const auto& chosen = face(postScriptName);
    QStringList families{QString::fromStdString(chosen.family)};
    if (emojiFamily_)
        families << QString::fromStdString(*emojiFamily_);
    QFont font;
    font.setFamilies(families);
    // The style's name picks the face; weight and slant steer the fallback fonts, which have other names.
    font.setWeight(static_cast<QFont::Weight>(chosen.weight));
    font.setItalic(chosen.italic);
    if (!chosen.style.empty())
        font.setStyleName(QString::fromStdString(chosen.style));
    font.setPixelSize(pixelSize);
    font.setKerning(true);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(
        static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return font;
}

std::optional<std::string> FontLookup::familyForLanguage(const std::string& language) {
    const auto destroy = [](FcPattern* pattern) { FcPatternDestroy(pattern); };
    using Pattern = std::unique_ptr<FcPattern, decltype(destroy)>;
    const Pattern wanted(FcPatternCreate(), destroy);
    const auto* tag = reinterpret_cast<const FcChar8*>(language.c_str());
    FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>("sans-serif"));
    FcPatternAddString(wanted.get(), FC_LANG, tag);
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const Pattern found(FcFontMatch(nullptr, wanted.get(), &result), destroy);
    // A match is any font that comes nearest: only one that knows the language helps.
    FcLangSet* languages = nullptr;
    if (!found || FcPatternGetLangSet(found.get(), FC_LANG, 0, &languages) != FcResultMatch ||
        FcLangSetHasLang(languages, tag) == FcLangDifferentLang)
        return std::nullopt;
    FcChar8* family = nullptr;
    if (FcPatternGetString(found.get(), FC_FAMILY, 0, &family) != FcResultMatch || !family)
        return std::nullopt;
    return std::string(reinterpret_cast<const char*>(family));
}

}  // namespace korvane
