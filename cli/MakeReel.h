// The reel that two commands make.
#pragma once

#include <filesystem>
#include <optional>
#include <stop_token>
#include <vector>

#include "cli/Commands.h"
#include "model/SpeechSegment.h"
#include "model/SubtitleSettings.h"
#include "platform/time/MediaTime.h"

namespace korvane::cli {

/// The style of `file`, else the saved one, else the defaults.
/// \return the length of the video.
/// \throws Failure naming the file and what is wrong in it; CancellationError.
SubtitleSettings chosenStyle(const std::optional<std::filesystem::path>& file, const CommandContext& context,
                             const std::stop_token& stop);

/// Looks whether a reel can be made of the video at all, before an old one is removed or a person waits for
/// words.
/// \return the length of the video.
/// \throws MediaError saying what is wrong with the file, ExportError noVideoTrack, CancellationError.
MediaTime requirePicture(const std::filesystem::path& video, const std::stop_token& stop);

/// Exports the words that the options choose.
/// \param length  of the video: when no word lies inside it, nothing is touched.
/// \throws UsageError for a selection outside the words, the editor's own errors, CancellationError.
CommandOutput makeReel(const std::filesystem::path& video, const std::vector<SpeechSegment>& words,
                       MediaTime length, const SubtitleSettings& style, const ReelOptions& options,
                       const CommandContext& context, const std::stop_token& stop);

}  // namespace korvane::cli
