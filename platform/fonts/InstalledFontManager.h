// The fonts installed on this desktop. A snapshot: what is installed later is not seen, what is removed later
// can no longer be opened. Immutable; any thread.
#pragma once

#include <unordered_map>

#include "platform/fonts/FontLookup.h"
#include "platform/fonts/FontManager.h"

namespace korvane {

class InstalledFontManager : public FontManager {
  public:
    explicit InstalledFontManager(FontLookup lookup = FontLookup());

    /// The snapshot that everyone in this process chooses from. The first call takes a few milliseconds for
    /// a hundred fonts, and some hundred for thousands of them.
    static const InstalledFontManager& ofThisProcess();

    /// Finds the very faces that the members below name.
    const FontLookup& lookup() const { return lookup_; }

    /// Whether a family's own face can write English, thus its name.
    bool writesEnglish(const std::string& family) const;

    /// Each name once, in the order of the faces.
    std::vector<std::string> availableFontFamilies() const override;
    /// Italics, then condensed and wide faces come before the plain ones.
    std::optional<std::vector<FontMember>> availableMembers(const std::string& family) const override;
    /// Opens the face's file.
    bool canOpen(const std::string& fontName, double size) const override;

  private:
    FontLookup lookup_;
    std::vector<std::string> families_;
    /// Indices of faces. Only those that their PostScript name finds: where two faces share a name, the
    /// other one could be chosen but never drawn.
    std::unordered_map<std::string, std::vector<std::size_t>> facesOfFamily_;
};

}  // namespace korvane
