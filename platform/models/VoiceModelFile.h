// What a file says of itself that holds a model for telling voices from other sounds: the small network that
// the Whisper library can run beside the large one. It recognises no words.
#pragma once

#include <cstdint>
#include <filesystem>

namespace korvane {

/// Whether it begins like one. False for what can't be read.
bool looksLikeVoiceModel(const std::filesystem::path& file);

/// Looks through the whole file, about a megabyte. There is one shape of this network that the library
/// computes; with any other it ends its process or reads beyond its memory. \return its bytes. \throws
/// ModelError saying what is wrong: no file, no such model, cut off, damaged.
std::uint64_t readVoiceModel(const std::filesystem::path& file);

}  // namespace korvane
