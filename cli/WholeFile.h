// Reading and writing small files in one piece.
#pragma once

#include <cstddef>
#include <filesystem>
#include <stop_token>
#include <string>
#include <string_view>

namespace korvane::cli {

/// \param file   "-" reads standard input to its end; a stop ends the waiting.
/// \throws Failure when it can't be read or is larger than `limitBytes`; CancellationError.
std::string readWholeFile(const std::filesystem::path& file, std::size_t limitBytes,
                          const std::stop_token& stop);

/// The file has its name only when it is complete; an existing one is replaced in one step.
/// \throws Failure, and then nothing has changed.
void writeWholeFile(const std::filesystem::path& file, std::string_view content);

}  // namespace korvane::cli
