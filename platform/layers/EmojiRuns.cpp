#include "platform/layers/EmojiRuns.h"

#include <QList>
#include <algorithm>
#include <array>

namespace korvane {
namespace {

struct CodePointRange {
    char32_t first;
    char32_t last;
};

/// Unicode's Emoji_Presentation property (version 15; the last block with its reserved places).
constexpr std::array kPictures{
    CodePointRange{0x231A, 0x231B},   CodePointRange{0x23E9, 0x23EC},   CodePointRange{0x23F0, 0x23F0},
    CodePointRange{0x23F3, 0x23F3},   CodePointRange{0x25FD, 0x25FE},   CodePointRange{0x2614, 0x2615},
    CodePointRange{0x2648, 0x2653},   CodePointRange{0x267F, 0x267F},   CodePointRange{0x2693, 0x2693},
    CodePointRange{0x26A1, 0x26A1},   CodePointRange{0x26AA, 0x26AB},   CodePointRange{0x26BD, 0x26BE},
    CodePointRange{0x26C4, 0x26C5},   CodePointRange{0x26CE, 0x26CE},   CodePointRange{0x26D4, 0x26D4},
    CodePointRange{0x26EA, 0x26EA},   CodePointRange{0x26F2, 0x26F3},   CodePointRange{0x26F5, 0x26F5},
    CodePointRange{0x26FA, 0x26FA},   CodePointRange{0x26FD, 0x26FD},   CodePointRange{0x2705, 0x2705},
    CodePointRange{0x270A, 0x270B},   CodePointRange{0x2728, 0x2728},   CodePointRange{0x274C, 0x274C},
    CodePointRange{0x274E, 0x274E},   CodePointRange{0x2753, 0x2755},   CodePointRange{0x2757, 0x2757},
    CodePointRange{0x2795, 0x2797},   CodePointRange{0x27B0, 0x27B0},   CodePointRange{0x27BF, 0x27BF},
    CodePointRange{0x2B1B, 0x2B1C},   CodePointRange{0x2B50, 0x2B50},   CodePointRange{0x2B55, 0x2B55},
    CodePointRange{0x1F004, 0x1F004}, CodePointRange{0x1F0CF, 0x1F0CF}, CodePointRange{0x1F18E, 0x1F18E},
    CodePointRange{0x1F191, 0x1F19A}, CodePointRange{0x1F1E6, 0x1F1FF}, CodePointRange{0x1F201, 0x1F201},
    CodePointRange{0x1F21A, 0x1F21A}, CodePointRange{0x1F22F, 0x1F22F}, CodePointRange{0x1F232, 0x1F236},
    CodePointRange{0x1F238, 0x1F23A}, CodePointRange{0x1F250, 0x1F251}, CodePointRange{0x1F300, 0x1F320},
    CodePointRange{0x1F32D, 0x1F335}, CodePointRange{0x1F337, 0x1F37C}, CodePointRange{0x1F37E, 0x1F393},
    CodePointRange{0x1F3A0, 0x1F3CA}, CodePointRange{0x1F3CF, 0x1F3D3}, CodePointRange{0x1F3E0, 0x1F3F0},
    CodePointRange{0x1F3F4, 0x1F3F4}, CodePointRange{0x1F3F8, 0x1F43E}, CodePointRange{0x1F440, 0x1F440},
    CodePointRange{0x1F442, 0x1F4FC}, CodePointRange{0x1F4FF, 0x1F53D}, CodePointRange{0x1F54B, 0x1F54E},
    CodePointRange{0x1F550, 0x1F567}, CodePointRange{0x1F57A, 0x1F57A}, CodePointRange{0x1F595, 0x1F596},
    CodePointRange{0x1F5A4, 0x1F5A4}, CodePointRange{0x1F5FB, 0x1F64F}, CodePointRange{0x1F680, 0x1F6C5},
    CodePointRange{0x1F6CC, 0x1F6CC}, CodePointRange{0x1F6D0, 0x1F6D2}, CodePointRange{0x1F6D5, 0x1F6D7},
    CodePointRange{0x1F6DC, 0x1F6DF}, CodePointRange{0x1F6EB, 0x1F6EC}, CodePointRange{0x1F6F4, 0x1F6FC},
    CodePointRange{0x1F7E0, 0x1F7EB}, CodePointRange{0x1F7F0, 0x1F7F0}, CodePointRange{0x1F90C, 0x1F93A},
    CodePointRange{0x1F93C, 0x1F945}, CodePointRange{0x1F947, 0x1F9FF}, CodePointRange{0x1FA70, 0x1FAFF}};

constexpr char32_t kJoiner = 0x200D;
constexpr char32_t kTextSelector = 0xFE0E;
constexpr char32_t kPictureSelector = 0xFE0F;
constexpr char32_t kKeyCap = 0x20E3;

bool isPictureByDefault(char32_t c) {
    const auto* range =
        std::upper_bound(kPictures.begin(), kPictures.end(), c,
                         [](char32_t value, const CodePointRange& r) { return value < r.first; });
    return range != kPictures.begin() && c <= std::prev(range)->last;
}

/// What may follow an emoji and belongs to it: selectors, key caps, skin tones, the tags of regional flags.
bool extendsPicture(char32_t c) {
    return c == kPictureSelector || c == kKeyCap || (c >= 0x1F3FB && c <= 0x1F3FF) ||
           (c >= 0xE0020 && c <= 0xE007F);
}

char32_t at(const std::vector<char32_t>& text, std::size_t i) {
    return i < text.size() ? text[i] : 0;
}

/// The end of the emoji that begins at `i`, or `i` where none begins.
std::size_t emojiEnd(const std::vector<char32_t>& text, std::size_t i) {
    const char32_t next = at(text, i + 1);
    const bool picture =
        isPictureByDefault(text[i]) ? next != kTextSelector : next == kPictureSelector || next == kKeyCap;
    if (!picture)
        return i;
    std::size_t end = i + 1;
    while (extendsPicture(at(text, end)) || (at(text, end) == kJoiner && end + 1 < text.size()))
        end += at(text, end) == kJoiner ? 2 : 1;
    return end;
}

}  // namespace

EmojiText markEmoji(const QString& text) {
    const auto ucs4 = text.toUcs4();
    const std::vector<char32_t> points(ucs4.begin(), ucs4.end());
    EmojiText result;
    for (std::size_t i = 0; i < points.size();) {
        const std::size_t end = emojiEnd(points, i);
        const int start = static_cast<int>(result.text.size());
        for (std::size_t k = i; k < std::max(end, i + 1); ++k) {
            if (points[k] != kPictureSelector && points[k] != kTextSelector)
                result.text += QString::fromUcs4(&points[k], 1);
        }
        const int length = static_cast<int>(result.text.size()) - start;
        const bool continues =
            !result.emoji.empty() && result.emoji.back().start + result.emoji.back().length == start;
        if (end > i && continues)
            result.emoji.back().length += length;
        else if (end > i)
            result.emoji.push_back({start, length});
        i = std::max(end, i + 1);
    }
    return result;
}

}  // namespace korvane
