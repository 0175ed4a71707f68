#include "platform/fonts/InstalledFontManager.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <tuple>
#include <type_traits>

namespace korvane {
namespace {

struct LibraryDeleter {
    void operator()(FT_Library library) const { FT_Done_FreeType(library); }
};
struct FaceDeleter {
    void operator()(FT_Face face) const { FT_Done_Face(face); }
};

/// A library of its own for each thread: FreeType's is not to be shared.
FT_Library fontLibrary() {
    thread_local const std::unique_ptr<std::remove_pointer_t<FT_Library>, LibraryDeleter> library([] {
        FT_Library made = nullptr;
        return FT_Init_FreeType(&made) == 0 ? made : nullptr;
    }());
    return library.get();
}

bool opens(const FontFace& described, double size) {
    FT_Library library = fontLibrary();
    FT_Face made = nullptr;
    if (!library || FT_New_Face(library, described.file.c_str(), described.index, &made) != 0)
        return false;
    const std::unique_ptr<std::remove_pointer_t<FT_Face>, FaceDeleter> face(made);
    // Fonts made of pictures, as most emoji are, have sizes of their own and are scaled when drawn.
    if (!FT_IS_SCALABLE(face.get()))
        return face->num_fixed_sizes > 0;
    const auto in26Dot6 = static_cast<FT_F26Dot6>(std::lround(size * 64.0));
    return FT_Set_Char_Size(face.get(), 0, in26Dot6, 72, 72) == 0;
}

/// The greatest suits most texts.
auto plainness(const FontFace& face) {
    return std::tuple(!face.italic, -std::abs(face.widthPercent - 100));
}

}  // namespace

InstalledFontManager::InstalledFontManager(FontLookup lookup) : lookup_(std::move(lookup)) {
    const auto& faces = lookup_.faces();
    for (std::size_t i = 0; i < faces.size(); ++i) {
        if (lookup_.exactFace(faces[i].postScriptName) != &faces[i])
            continue;
        auto& members = facesOfFamily_[faces[i].family];
        if (members.empty())
            families_.push_back(faces[i].family);
        members.push_back(i);
    }
    for (auto& [family, members] : facesOfFamily_) {
        std::stable_sort(members.begin(), members.end(), [&faces](std::size_t a, std::size_t b) {
            return plainness(faces[a]) < plainness(faces[b]);
        });
    }
}

const InstalledFontManager& InstalledFontManager::ofThisProcess() {
    static const InstalledFontManager manager;
    return manager;
}

bool InstalledFontManager::writesEnglish(const std::string& family) const {
    const auto found = facesOfFamily_.find(family);
    return found != facesOfFamily_.end() && lookup_.faces()[found->second.back()].latin;
}

std::vector<std::string> InstalledFontManager::availableFontFamilies() const {
    return families_;
}

std::optional<std::vector<FontMember>> InstalledFontManager::availableMembers(
    const std::string& family) const {
    const auto found = facesOfFamily_.find(family);
    if (found == facesOfFamily_.end())
        return std::nullopt;
    std::vector<FontMember> members;
    for (const std::size_t index : found->second) {
        const auto& face = lookup_.faces()[index];
        members.push_back({face.postScriptName, face.style, face.weight});
    }
    return members;
}

bool InstalledFontManager::canOpen(const std::string& fontName, double size) const {
    const FontFace* face = lookup_.exactFace(fontName);
    return face && opens(*face, size);
}

}  // namespace korvane
