// The editor's own steps of an export, so that a case can look at one of them by itself.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "bench/WordChoice.h"
#include "editor/SubtitleEntry.h"

struct AVFrame;

namespace korvane::bench {

/// The lines of the reel, on its own time line (0 is the first picture that is written).
std::vector<SubtitleEntry> subtitleLines(const std::filesystem::path& video, const ReelShape& shape);

/// Hands over every finished picture of the reel, as it would go to the encoder, in order.
/// \return pictures per second
int renderReel(const std::filesystem::path& video, const ReelShape& shape,
               const std::function<void(std::shared_ptr<AVFrame>)>& take);

/// The export, as the program does it.
void exportReel(const std::filesystem::path& video, const ReelShape& shape,
                const std::filesystem::path& destination);

}  // namespace korvane::bench
