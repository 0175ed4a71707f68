// Many font families out of one: the same letters under other names.
#pragma once

#include <filesystem>

namespace korvane::bench {

/// Makes "Sample 0001" and so on in a folder, once, and a fontconfig file that adds them to those installed.
/// \param base  an OpenType or TrueType file with one face
/// \return the fontconfig file
/// \throws std::runtime_error when `base` can't be read
std::filesystem::path makeFontFamilies(const std::filesystem::path& base, const std::filesystem::path& folder,
                                       int count);

}  // namespace korvane::bench
