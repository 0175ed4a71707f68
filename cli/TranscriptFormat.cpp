#include "cli/TranscriptFormat.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "cli/CaptionCues.h"
#include "cli/WordsFile.h"

namespace korvane::cli {
namespace {

std::string lowerCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

std::string clock(long long ms, char fraction) {
    char text[40];
    std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld%c%03lld", ms / 3'600'000, ms / 60'000 % 60,
                  ms / 1000 % 60, fraction, ms % 1000);
    return text;
}

// "<" would open a tag and "-->" end the cue; a WebVTT parser undoes these three.
std::string escapedForVtt(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else
            result += c;
    }
    return result;
}

}  // namespace

std::optional<TranscriptFormat> transcriptFormatNamed(std::string_view name) {
    const std::string wanted = lowerCase(name);
    if (wanted == "text" || wanted == "txt")
        return TranscriptFormat::text;
    if (wanted == "json")
        return TranscriptFormat::json;
    if (wanted == "srt")
        return TranscriptFormat::srt;
    if (wanted == "vtt" || wanted == "webvtt")
        return TranscriptFormat::vtt;
    return std::nullopt;
}

std::optional<TranscriptFormat> transcriptFormatOf(const std::filesystem::path& file) {
    const std::string ending = lowerCase(file.extension().string());
    if (ending == ".txt")
        return TranscriptFormat::text;
    if (ending == ".json")
        return TranscriptFormat::json;
    if (ending == ".srt")
        return TranscriptFormat::srt;
    if (ending == ".vtt")
        return TranscriptFormat::vtt;
    return std::nullopt;
}

std::string formatTranscript(const Transcript& transcript, TranscriptFormat format) {
    switch (format) {
        case TranscriptFormat::text:
            return formatText(transcript);
        case TranscriptFormat::json:
            return formatWordsFile(transcript);
        case TranscriptFormat::srt:
            return formatSrt(transcript);
        case TranscriptFormat::vtt:
            return formatVtt(transcript);
    }
    return {};
}

std::string formatText(const Transcript& transcript) {
    constexpr double pauseSeconds = 0.8;
    std::string out;
    double previousEnd = 0.0;
    for (const auto& word : transcript.words) {
        const auto text = tidyWord(word.text());
        if (text.empty())
            continue;
        if (!out.empty())
            out += word.start() - previousEnd >= pauseSeconds ? std::string_view("\n")
                                                              : wordSeparator(transcript.language, out, text);
        out += text;
        previousEnd = word.end();
    }
    if (!out.empty())
        out += '\n';
    return out;
}

std::string formatSrt(const Transcript& transcript) {
    std::string out;
    std::size_t number = 0;
    for (const auto& cue : groupIntoCues(transcript)) {
        if (number > 0)
            out += '\n';
        out += std::to_string(++number) + "\n" + clock(cue.startMs, ',') + " --> " + clock(cue.endMs, ',') +
               "\n" + cue.text + "\n";
    }
    return out;
}

std::string formatVtt(const Transcript& transcript) {
    std::string out = "WEBVTT\n";
    for (const auto& cue : groupIntoCues(transcript))
        out += "\n" + clock(cue.startMs, '.') + " --> " + clock(cue.endMs, '.') + "\n" +
               escapedForVtt(cue.text) + "\n";
    return out;
}

}  // namespace korvane::cli
