// What can be known about files before any work begins, so that nobody waits for a transcription that could
// never be written.
#pragma once

#include <filesystem>
#include <vector>

namespace korvane::cli {

/// \throws Failure when there is no such file, it is a folder or another thing than a file, can't be read, or
///         is empty. What is in it is not looked at.
void requireReadableFile(const std::filesystem::path& file);

/// Finds out by writing a nameless trial file beside it.
/// \param inputs  files that are read; none of them may be replaced, by whatever name or link.
/// \throws Failure when the folder is missing, can't be written to or is full, when the destination is a
/// folder
///         or another thing than a file, or when it is one of `inputs`.
void requireWritableDestination(const std::filesystem::path& destination,
                                const std::vector<std::filesystem::path>& inputs);

}  // namespace korvane::cli
