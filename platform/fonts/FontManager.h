// What the catalogue of fonts asks a desktop: its families, the faces of one, and whether a face can be
// opened.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace korvane {

/// One face as the desktop lists it. A broken font may lack any of these.
struct FontMember {
    std::optional<std::string> fontName;  ///< PostScript name, e.g. "Inter-Bold"
    std::optional<std::string> faceName;  ///< e.g. "Bold"; may be empty
    std::optional<int> weight;            ///< the heavier the greater
    friend bool operator==(const FontMember&, const FontMember&) = default;
};

/// Every function may be called from any thread.
class FontManager {
  public:
    virtual ~FontManager() = default;

    /// Names of families, in no particular order.
    virtual std::vector<std::string> availableFontFamilies() const = 0;

    /// The faces of a family; none when there is no such family. Where faces weigh the same, the one that
    /// suits most texts comes last.
    virtual std::optional<std::vector<FontMember>> availableMembers(const std::string& family) const = 0;

    /// Whether a font of this PostScript name can be made at this size, in points.
    virtual bool canOpen(const std::string& fontName, double size) const = 0;
};

}  // namespace korvane
