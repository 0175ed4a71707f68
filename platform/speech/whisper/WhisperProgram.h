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

}  // namespace korvane
