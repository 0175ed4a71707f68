// The forms in which a transcript is written.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "cli/Transcript.h"

namespace korvane::cli {

enum class TranscriptFormat { text, json, srt, vtt };

/// "text" (or "txt"), "json", "srt", "vtt" (or "webvtt"), in any case; none for anything else.
std::optional<TranscriptFormat> transcriptFormatNamed(std::string_view name);
/// By the ending .txt, .json, .srt or .vtt; none for any other.
std::optional<TranscriptFormat> transcriptFormatOf(const std::filesystem::path& file);

/// The whole document, UTF-8, with a line break at its end; empty for a text without words.
std::string formatTranscript(const Transcript& transcript, TranscriptFormat format);

/// Plain text: the words in their order, a new line where the speaker pauses for 0.8 s or longer.
std::string formatText(const Transcript& transcript);
/// SubRip: numbered cues, times as 00:01:02,345.
std::string formatSrt(const Transcript& transcript);
/// WebVTT: times as 00:01:02.345, the words' special characters escaped.
std::string formatVtt(const Transcript& transcript);

}  // namespace korvane::cli
