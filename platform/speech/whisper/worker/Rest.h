// What the Whisper library may be left to listen to of a request. It takes a sound in passes: from the last
// time stamp that it heard it goes on as if the rest were another sound.
#pragma once

#include <cstdint>

namespace korvane::whisper {

/// In hundredths of a second. The filter that its alignment of tokens begins with is seven steps of 0.02 s
/// wide; in a pass that has no more of them it ends the process.
inline constexpr std::int64_t shortestAligned = 16;

/// Whether a pass can be aligned, of whose beginning only the whole percents of the way are known.
/// \param length  of the whole sound, as the library counts it.
constexpr bool canBeAligned(std::int64_t percent, std::int64_t length) {
    const auto latestBegin = ((percent + 1) * length - 1) / 100;
    return length - latestBegin >= shortestAligned;
}

}  // namespace korvane::whisper
