// What a container says about its own extent, read from the outermost boxes of the file.
#pragma once

#include <filesystem>

namespace korvane {

/// True when an ISO media, Matroska or RIFF file says that it goes on beyond the end of the file. False for
/// other kinds and for files that can't be read.
bool structureReachesBeyondEnd(const std::filesystem::path& path);

/// True when an ISO media file has movie fragments.
bool hasMovieFragments(const std::filesystem::path& path);

}  // namespace korvane
