// Edit lists of ISO media files: which part of a track is presented, and from when on.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>

#include "platform/time/MediaTime.h"

namespace korvane {

/// How the tracks of a file are presented.
struct EditLists {
    /// True when every track has at most one stretch that is shown, at ordinary speed, after an optional
    /// pause. Such lists are exact as an offset; others the demuxer has to take apart.
    bool simple = true;
    /// By track identifier, for tracks whose list says so: when the one stretch is shown.
    std::map<std::uint32_t, TimeRange> shown;
};

/// Reads the index of an ISO media file (ISO/IEC 14496-12, 8.6.6). Nothing for other and for damaged files.
EditLists readEditLists(const std::filesystem::path& path);

}  // namespace korvane
