#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <tuple>

#include "platform/fonts/FontFace.h"

namespace korvane {
namespace {

struct PatternDeleter {
    void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
};
struct ObjectSetDeleter {
    void operator()(FcObjectSet* set) const { FcObjectSetDestroy(set); }
};
struct FontSetDeleter {
    void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
};

std::string firstString(FcPattern* pattern, const char* object) {
    FcChar8* value = nullptr;
    if (FcPatternGetString(pattern, object, 0, &value) != FcResultMatch || !value)
        return {};
    return reinterpret_cast<const char*>(value);
}

/// A variable font gives a range; its lower end is as good as any.
double number(FcPattern* pattern, const char* object, double fallback) {
    double value = fallback;
    if (FcPatternGetDouble(pattern, object, 0, &value) == FcResultMatch)
        return value;
    FcRange* range = nullptr;
    double high = 0.0;
    if (FcPatternGetRange(pattern, object, 0, &range) == FcResultMatch && range &&
        FcRangeGetDouble(range, &value, &high))
        return value;
    return fallback;
}

long wholeNumber(FcPattern* pattern, const char* object) {
    int value = 0;
    return FcPatternGetInteger(pattern, object, 0, &value) == FcResultMatch ? value : 0;
}

bool flag(FcPattern* pattern, const char* object) {
    FcBool value = FcFalse;
    return FcPatternGetBool(pattern, object, 0, &value) == FcResultMatch && value == FcTrue;
}

bool coversEnglish(FcPattern* pattern) {
    FcLangSet* languages = nullptr;
    if (FcPatternGetLangSet(pattern, FC_LANG, 0, &languages) != FcResultMatch || !languages)
        return false;
    return FcLangSetHasLang(languages, reinterpret_cast<const FcChar8*>("en")) != FcLangDifferentLang;
}

/// Symbols in the letters' places. The printing system's dingbats, found on most desktops, don't say so
/// themselves.
bool isSymbols(FcPattern* pattern, const std::string& family) {
    return flag(pattern, FC_SYMBOL) || family == "D050000L";
}

std::optional<FontFace> faceOf(FcPattern* pattern) {
    const std::string format = firstString(pattern, FC_FONTFORMAT);
    // Type 1 and bitmap formats are listed by fontconfig but no longer drawn by the text engine.
    if (format != "TrueType" && format != "CFF")
        return std::nullopt;
    FontFace face;
    face.family = firstString(pattern, FC_FAMILY);
    face.style = firstString(pattern, FC_STYLE);
    face.postScriptName = firstString(pattern, FC_POSTSCRIPT_NAME);
    face.file = firstString(pattern, FC_FILE);
    if (face.family.empty() || face.postScriptName.empty())
        return std::nullopt;
    face.weight = static_cast<int>(
        std::clamp(FcWeightToOpenTypeDouble(number(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR)), 1.0, 1000.0));
    face.widthPercent = static_cast<int>(number(pattern, FC_WIDTH, FC_WIDTH_NORMAL));
    face.italic = number(pattern, FC_SLANT, FC_SLANT_ROMAN) > FC_SLANT_ROMAN;
    face.color = flag(pattern, FC_COLOR);
    face.latin = coversEnglish(pattern) && !isSymbols(pattern, face.family);
    face.index = wholeNumber(pattern, FC_INDEX);
    return face;
}

}  // namespace

std::vector<FontFace> installedFaces() {
    const std::unique_ptr<FcPattern, PatternDeleter> any(FcPatternCreate());
    const std::unique_ptr<FcObjectSet, ObjectSetDeleter> wanted(
        FcObjectSetBuild(FC_FAMILY, FC_STYLE, FC_POSTSCRIPT_NAME, FC_FILE, FC_WEIGHT, FC_WIDTH, FC_SLANT,
                         FC_COLOR, FC_LANG, FC_FONTFORMAT, FC_VARIABLE, FC_INDEX, FC_SYMBOL, nullptr));
    if (!any || !wanted)
        return {};
    const std::unique_ptr<FcFontSet, FontSetDeleter> found(FcFontList(nullptr, any.get(), wanted.get()));
    std::vector<FontFace> faces;
    for (int i = 0; found && i < found->nfont; ++i) {
        // The variable font as such; its named instances are listed beside it.
        if (flag(found->fonts[i], FC_VARIABLE))
            continue;
        if (auto face = faceOf(found->fonts[i]))
            faces.push_back(std::move(*face));
    }
    std::sort(faces.begin(), faces.end(), [](const FontFace& a, const FontFace& b) {
        return std::tie(a.family, a.style, a.file, a.postScriptName) <
               std::tie(b.family, b.style, b.file, b.postScriptName);
    });
    return faces;
}

}  // namespace korvane
