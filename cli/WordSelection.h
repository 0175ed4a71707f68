// Which words of a transcript are meant: "0-5,8,12-". Pure values.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace korvane::cli {

/// One item of a list: the words first, first+1, ... up to and including last; to the end without last.
struct WordSpan {
    std::size_t first = 0;
    std::optional<std::size_t> last;
    friend bool operator==(const WordSpan&, const WordSpan&) = default;
};

using WordSpans = std::vector<WordSpan>;

/// Reads a comma-separated list of indices that count from 0: "8" one word, "0-5" both ends included,
/// "12-" to the end, "-3" from the beginning up to and including 3, "0..5" without its end (5), "all".
/// Blanks around items and numbers don't matter.
/// \param option  as typed, such as "--select"; for the sentence of the error.
/// \throws UsageError for an empty list or item, a range that runs backwards or holds nothing, anything else.
WordSpans parseWordSpans(std::string_view option, std::string_view text);

/// The indices of a transcript of `count` words that are in `chosen` (all when there is none) and not in
/// `dropped`: ascending, each once.
/// \throws UsageError when a span lies outside the transcript.
std::vector<std::size_t> resolveSelection(const WordSpans& chosen, const WordSpans& dropped,
                                          std::size_t count);

}  // namespace korvane::cli
