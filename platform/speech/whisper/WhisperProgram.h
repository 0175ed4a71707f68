// Where the worker program lies, and how it is started.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace korvane {

/// The command that starts the worker of an installed program (in korvane in the folder for programs that
/// programs start) or of one that runs where it was built; KORVANE_WHISPER names another. Where the worker
/// brings its library along (whisper-library beside it), it is started on the C library in there.
/// \param program  folder of the running program.
/// \return empty when there is none.
std::vector<std::string> whisperCommand(const std::filesystem::path& program);

/// The same for this process.
std::vector<std::string> whisperCommand();

/// "NAME=value": what the worker's environment has in place of or besides this program's.
std::vector<std::string> whisperEnvironment(const std::vector<std::string>& command);

/// The argument that keeps the worker from touching a graphics card's driver.
inline constexpr const char* whisperWithoutCard = "--no-gpu";

/// Whether the person wants the graphics card: KORVANE_WHISPER_GPU isn't 0.
bool whisperMayUseCard();

}  // namespace korvane
