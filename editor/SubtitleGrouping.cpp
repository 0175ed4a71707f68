#include <algorithm>
#include <cstddef>

#include "editor/VideoEditor.h"

namespace korvane {
namespace {

/// How many of the `left` words the next line takes: threes, but four as two and two, so that no word is
/// left alone behind others.
std::size_t nextLineLength(std::size_t left) {
    return left == 4 ? 2 : std::min<std::size_t>(left, 3);
}

}  // namespace

std::vector<SubtitleEntry> VideoEditor::groupSubtitleEntries(const std::vector<SubtitleEntry>& entries) {
    std::vector<SubtitleEntry> lines;
    for (std::size_t offset = 0; offset < entries.size();) {
        const std::size_t length = nextLineLength(entries.size() - offset);
        SubtitleEntry line = entries[offset];
        for (std::size_t i = offset + 1; i < offset + length; ++i)
            line.text += " " + entries[i].text;
        line.end = entries[offset + length - 1].end;
        lines.push_back(line);
        offset += length;
    }
    return lines;
}

}  // namespace korvane
