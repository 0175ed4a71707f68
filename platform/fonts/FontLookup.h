// Finds the face to write with by its PostScript name. The same name always gives the same face on the same
// machine, so what was previewed is what is exported. Immutable once built; any thread.
#pragma once

#include <QFont>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/fonts/FontFace.h"

namespace korvane {

class FontLookup {
  public:
    /// \param faces  first wins where two have the same PostScript name.
    explicit FontLookup(std::vector<FontFace> faces = installedFaces());

    const std::vector<FontFace>& faces() const { return faces_; }

    /// The face of exactly this name, or null.
    const FontFace* exactFace(std::string_view postScriptName) const;

    /// The face of this name, or, where it is not installed, a good-looking one with the weight and slant
    /// that the name tells: of the same family where that is installed, else of a well-known family. \throws
    /// FontError when no face is installed at all.
    const FontFace& face(std::string_view postScriptName) const;

    /// That face as a font without hinting, colour emoji as its second family. Needs a QGuiApplication.
    /// \param pixelSize  pixels per em. \throws FontError as face().
    QFont font(std::string_view postScriptName, int pixelSize) const;

    /// The family that emoji are drawn with, none when there is no colour font.
    const std::optional<std::string>& emojiFamily() const { return emojiFamily_; }

    /// The sans-serif family that fontconfig prefers for a language ("ja", "zh-cn"), none when no installed
    /// face covers it.
    static std::optional<std::string> familyForLanguage(const std::string& language);

  private:
    const FontFace& substitute(std::string_view postScriptName) const;

    std::vector<FontFace> faces_;
    std::unordered_map<std::string, std::size_t> byPostScriptName_;
    std::optional<std::string> emojiFamily_;
};

}  // namespace korvane
