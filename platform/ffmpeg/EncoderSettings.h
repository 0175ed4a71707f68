// How a movie is encoded. Why so: docs/decisions/0002-encoder-settings.md
#pragma once

#include <cstdint>

namespace korvane {

constexpr const char* kVideoPreset = "veryfast";
constexpr const char* kVideoQuality = "18";  ///< x264's constant rate factor
constexpr int kLongestGroupSeconds = 2;
constexpr std::int64_t kMonoBitRate = 128'000;
constexpr std::int64_t kStereoBitRate = 192'000;

}  // namespace korvane
