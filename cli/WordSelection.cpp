#include "cli/WordSelection.h"

#include <charconv>
#include <string>

#include "platform/process/UsageError.h"

namespace korvane::cli {
namespace {

constexpr std::string_view howToWrite =
    "; write indices that count from 0, such as 8, 0-5 (both included), 12- or 0..5 (without the 5).";

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

[[noreturn]] void refuse(std::string_view option, std::string_view item, std::string_view what) {
    throw UsageError(std::string(option) + ": \"" + std::string(item) + "\" " + std::string(what));
}

struct Item {
    std::string_view option;
    std::string_view text;

    std::size_t number(std::string_view digits) const {
        digits = trimmed(digits);
        std::size_t value = 0;
        const auto end = digits.data() + digits.size();
        const auto [stop, error] = std::from_chars(digits.data(), end, value);
        if (error == std::errc::result_out_of_range)
            refuse(option, text, "is larger than any transcript.");
        if (error != std::errc() || stop != end)
            refuse(option, text, "is no index or range" + std::string(howToWrite));
        return value;
    }

    WordSpan halfOpen(std::size_t dots) const {
        const auto before = trimmed(text.substr(0, dots));
        const auto after = trimmed(text.substr(dots + 2));
        if (before.empty() && after.empty())
            refuse(option, text, "has no ends" + std::string(howToWrite));
        const std::size_t first = before.empty() ? 0 : number(before);
        if (after.empty())
            return {first, std::nullopt};
        const std::size_t end = number(after);
        if (end < first)
            refuse(option, text, "runs backwards.");
        if (end == first)
            refuse(option, text, "holds no word, as its end is not included.");
        return {first, end - 1};
    }

    WordSpan closed(std::size_t dash) const {
        const auto before = trimmed(text.substr(0, dash));
        const auto after = trimmed(text.substr(dash + 1));
        if (before.empty() && after.empty())
            refuse(option, text, "has no ends" + std::string(howToWrite));
        const std::size_t first = before.empty() ? 0 : number(before);
        if (after.empty())
            return {first, std::nullopt};
        const std::size_t last = number(after);
        if (last < first)
            refuse(option, text, "runs backwards.");
        return {first, last};
    }

    WordSpan span() const {
        if (text == "all")
            return {0, std::nullopt};
        if (const auto dots = text.find(".."); dots != std::string_view::npos)
            return halfOpen(dots);
        if (const auto dash = text.find('-'); dash != std::string_view::npos)
            return closed(dash);
        const std::size_t index = number(text);
        return {index, index};
    }
};

std::string wordCount(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " word" : " words");
}

void mark(std::vector<bool>& words, const WordSpan& span, bool value, std::string_view option) {
    const std::size_t furthest = span.last.value_or(span.first);
    if (furthest >= words.size())
        throw UsageError(std::string(option) + ": there is no word " + std::to_string(furthest) +
                         "; the transcript has " + wordCount(words.size()) +
                         (words.empty() ? "." : ", 0 to " + std::to_string(words.size() - 1) + "."));
    const std::size_t last = span.last.value_or(words.size() - 1);
    for (std::size_t i = span.first; i <= last; ++i)
        words[i] = value;
}

}  // namespace

WordSpans parseWordSpans(std::string_view option, std::string_view text) {
    if (trimmed(text).empty())
        throw UsageError(std::string(option) + " needs at least one index, such as 0-5,8,12-.");
    WordSpans spans;
    for (std::size_t from = 0; from <= text.size();) {
        const auto comma = std::min(text.find(',', from), text.size());
        const auto item = trimmed(text.substr(from, comma - from));
        if (item.empty())
            throw UsageError(std::string(option) + ": \"" + std::string(text) +
                             "\" has an empty item between its commas.");
        spans.push_back(Item{option, item}.span());
        from = comma + 1;
    }
    return spans;
}

std::vector<std::size_t> resolveSelection(const WordSpans& chosen, const WordSpans& dropped,
                                          std::size_t count) {
    std::vector<bool> words(count, chosen.empty());
    for (const auto& span : chosen)
        mark(words, span, true, "--select");
    for (const auto& span : dropped)
        mark(words, span, false, "--drop");

    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < count; ++i)
        if (words[i])
            indices.push_back(i);
    return indices;
}

}  // namespace korvane::cli
