// One installed font face, as fontconfig describes it. A plain value.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace korvane {

struct FontFace {
    std::string family;
    std::string style;           ///< the family's own word for it, e.g. "Semi Bold"; may be empty
    std::string postScriptName;  ///< e.g. "Inter-SemiBold"
    std::string file;
    int weight = 400;        ///< 1 to 1000, 400 regular, 700 bold (OpenType's usWeightClass scale)
    int widthPercent = 100;  ///< 75 condensed, 100 normal
    bool italic = false;     ///< or oblique
    bool color = false;      ///< colour glyphs, i.e. an emoji font
    bool latin = false;      ///< covers English text
    long index = 0;  ///< which face of the file, and which instance of a variable one in its upper 16 bits
    friend bool operator==(const FontFace&, const FontFace&) = default;
};

/// Nothing can be written because no usable font is installed; the text says what helps.
class FontError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Every scalable OpenType/TrueType face with a PostScript name, sorted by family, style and file, so that
/// the order is the same in every process. Takes a few milliseconds; any thread. Empty when there is none.
std::vector<FontFace> installedFaces();

}  // namespace korvane
