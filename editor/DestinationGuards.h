// What must hold before an export takes away what stands at its destination. Nobody loses a recording.
#pragma once

#include <filesystem>

namespace korvane {

/// Removes the file or link at `destination`, if there is one that may go; a failure to remove is not
/// reported here, the export itself will meet it.
/// \throws ExportError, and removes nothing, when the destination is the source by any path, symbolic or
/// hard link, or is a folder, a device or anything else than a file.
void clearDestination(const std::filesystem::path& destination, const std::filesystem::path& source);

}  // namespace korvane
