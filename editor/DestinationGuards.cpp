#include "editor/DestinationGuards.h"

#include <string>
#include <system_error>

#include "editor/ExportError.h"

namespace korvane {
namespace fs = std::filesystem;

void clearDestination(const fs::path& destination, const fs::path& source) {
    // Links are followed: what counts is the file that would be lost.
    std::error_code ignored;
    const fs::file_status target = fs::status(destination, ignored);
    if (fs::is_directory(target)) {
        throw ExportError::exportFailed(destination.string() +
                                        " is a folder. Choose a file name for the video.");
    }
    if (fs::exists(target) && !fs::is_regular_file(target)) {
        throw ExportError::exportFailed(destination.string() +
                                        " is not a file. Choose a file name for the video.");
    }

    std::error_code unknown;
    const bool isSource = fs::equivalent(destination, source, unknown);
    if (isSource) {
        throw ExportError::exportFailed(destination.string() +
                                        " is the source video itself. Choose another name for the reel.");
    }
    // A source that can't be looked at might be this very file; opening it will fail with its own error.
    if (fs::exists(target) && unknown)
        return;
    fs::remove(destination, ignored);
}

}  // namespace korvane
