#include "platform/speech/pocketsphinx/SpokenWord.h"

#include <algorithm>

namespace korvane {

std::optional<std::string> spokenWord(std::string_view entry) {
    if (entry.starts_with('<') || entry.starts_with('[') || entry.starts_with("++"))
        return std::nullopt;
    const auto mark = entry.rfind('(');
    if (mark != std::string_view::npos && entry.ends_with(')')) {
        const auto number = entry.substr(mark + 1, entry.size() - mark - 2);
        const bool isNumber = !number.empty() && std::all_of(number.begin(), number.end(),
                                                             [](char c) { return c >= '0' && c <= '9'; });
        if (isNumber)
            entry = entry.substr(0, mark);
    }
    if (entry.empty())
        return std::nullopt;
    return std::string(entry);
}

}  // namespace korvane
