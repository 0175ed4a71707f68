// What a container says about its own extent, read from the outermost boxes of the file.
#pragma once

#include <filesystem>
#include <string>

namespace korvane {

/// True when an ISO media, Matroska or RIFF file says that it goes on beyond the end of the file. False for
/// other kinds and for files that can't be read.
bool structureReachesBeyondEnd(const std::filesystem::path& path);

/// True when an ISO media file has movie fragments.
bool hasMovieFragments(const std::filesystem::path& path);

/// The content of an ISO media file's index box ("moov"); empty when there is none, it is cut off, or
/// compressed.
std::string movieIndex(const std::filesystem::path& path);

}  // namespace korvane
