#include "cli/CaptionCues.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace korvane::cli {
namespace {

constexpr long long pauseMs = 600;
constexpr long long longestCueMs = 5000;
constexpr std::size_t mostWords = 7;
constexpr std::size_t mostCharacters = 42;

struct TimedWord {
    std::string text;
    long long startMs;
    long long endMs;
};

// Code points: near enough to what a reader sees for limiting a line.
std::size_t characters(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

bool endsSentence(std::string_view text) {
    constexpr std::array<std::string_view, 7> marks{".", "!", "?", "\u2026", "\u3002", "\uFF01", "\uFF1F"};
    return std::any_of(marks.begin(), marks.end(), [&](auto mark) { return text.ends_with(mark); });
}

// A caption file counts at most 99 hours; what lies beyond can't be meant.
bool usable(const SpeechSegment& word) {
    constexpr double latest = 99.0 * 3600.0;
    return std::isfinite(word.start()) && std::isfinite(word.end()) && word.end() >= 0.0 &&
           word.start() < latest && word.end() < latest && word.start() <= word.end();
}

std::vector<TimedWord> timedWords(const Transcript& transcript) {
    std::vector<TimedWord> words;
    for (const auto& word : transcript.words) {
        auto text = tidyWord(word.text());
        if (text.empty() || !usable(word))
            continue;
        const long long start = std::llround(std::max(word.start(), 0.0) * 1000.0);
        words.push_back({std::move(text), start, std::max(std::llround(word.end() * 1000.0), start + 1)});
    }
    return words;
}

}  // namespace

std::string_view wordSeparator(std::string_view language, std::string_view before, std::string_view after) {
    if (!language.starts_with("zh") && !language.starts_with("ja"))
        return " ";
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    return !before.empty() && !after.empty() && isAscii(before.back()) && isAscii(after.front()) ? " " : "";
}

std::string tidyWord(std::string_view text) {
    std::string result;
    bool blank = false;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || byte == 0x7F) {
            blank = !result.empty();
            continue;
        }
        if (blank)
            result += ' ';
        blank = false;
        result += c;
    }
    return result;
}

std::vector<CaptionCue> groupIntoCues(const Transcript& transcript) {
    std::vector<CaptionCue> cues;
    std::size_t wordsInCue = 0;
    for (const auto& word : timedWords(transcript)) {
        const auto separator =
            wordSeparator(transcript.language, cues.empty() ? "" : cues.back().text, word.text);
        const bool fits =
            !cues.empty() && wordsInCue < mostWords && !endsSentence(cues.back().text) &&
            word.startMs >= cues.back().startMs && word.startMs - cues.back().endMs < pauseMs &&
            word.endMs - cues.back().startMs <= longestCueMs &&
            characters(cues.back().text) + separator.size() + characters(word.text) <= mostCharacters;
        if (!fits) {
            cues.push_back({word.startMs, word.endMs, word.text});
            wordsInCue = 1;
            continue;
        }
        cues.back().text.append(separator).append(word.text);
        cues.back().endMs = std::max(cues.back().endMs, word.endMs);
        ++wordsInCue;
    }
    // Players expect cues in the order of time and draw overlapping ones on top of each other.
    std::stable_sort(cues.begin(), cues.end(),
                     [](const auto& a, const auto& b) { return a.startMs < b.startMs; });
    for (std::size_t i = 0; i + 1 < cues.size(); ++i)
        if (cues[i + 1].startMs > cues[i].startMs)
            cues[i].endMs = std::min(cues[i].endMs, cues[i + 1].startMs);
    return cues;
}

}  // namespace korvane::cli
