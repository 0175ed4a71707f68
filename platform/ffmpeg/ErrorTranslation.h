// Turns codes of the media libraries into sentences, where they are returned.
#pragma once

#include <filesystem>
#include <string>

namespace korvane {

/// The library's own text for an error code.
std::string libraryText(int code);

/// "<what was done> <file name>: <text>." for a negative code. AVERROR_EXIT becomes CancellationError.
[[noreturn]] void throwMediaError(int code, const std::string& doing, const std::filesystem::path& file);

/// Opening failed: says what is wrong with the file in a person's words.
[[noreturn]] void throwOpenError(int code, const std::filesystem::path& file);

/// The libraries' own chatter on standard error is switched off, once for the process.
void silenceLibraryLog();

}  // namespace korvane
