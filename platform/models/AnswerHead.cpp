#include "platform/models/AnswerHead.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace korvane {
namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

/// The number that `text` is; none when it is anything else.
std::optional<std::uint64_t> number(std::string_view text) {
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return value;
}

}  // namespace

void AnswerHead::addLine(std::string_view line) {
    if (line.starts_with("HTTP/")) {
        *this = AnswerHead();
        return;
    }
    const auto colon = line.find(':');
    if (colon == std::string_view::npos)
        return;
    const std::string name = lowerCase(line.substr(0, colon));
    const auto value = trimmed(line.substr(colon + 1));
    if (name == "content-length")
        contentLength_ = number(value);
    if (name == "content-type")
        contentType_ = lowerCase(value);
    // A weak tag says that two versions mean the same, not that their bytes fit together.
    if (name == "etag" && !value.starts_with("W/"))
        tag_ = value;
    if (name == "last-modified")
        date_ = value;
    if (name == "retry-after") {
        if (const auto seconds = number(value); seconds && *seconds < 86400)
            retryAfter_ = std::chrono::seconds(*seconds);
    }
    if (name == "content-range" && lowerCase(value).starts_with("bytes ")) {
        const auto range = trimmed(value.substr(6));
        const auto dash = range.find('-');
        const auto slash = range.find('/');
        if (dash == std::string_view::npos || slash == std::string_view::npos || dash > slash)
            return;
        rangeFrom_ = number(range.substr(0, dash));
        rangeTotal_ = number(range.substr(slash + 1));
    }
}

TransferAnswer AnswerHead::answer(int status) const {
    constexpr int partialContent = 206;
    TransferAnswer answer;
    answer.status = status;
    answer.version = tag_.empty() ? date_ : tag_;
    answer.contentType = contentType_;
    if (status == partialContent) {
        answer.from = rangeFrom_.value_or(0);
        answer.fileBytes = rangeTotal_;
    } else {
        answer.fileBytes = contentLength_;
    }
    return answer;
}

}  // namespace korvane
