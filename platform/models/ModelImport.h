// Takes a model file that a person has into the folder of models.
#pragma once

#include <filesystem>
#include <functional>
#include <stop_token>

#include "platform/models/SpeechModelCatalogue.h"

namespace korvane {

/// Copies `file`, shared with the original where the file system can do that, under the name that the
/// catalogue has for its digest, else its own. A file that already is the one in the folder stays.
/// \return the model's file in `folder`.
/// \throws ModelError, CancellationError; then the folder is as it was.
std::filesystem::path importModelFile(const std::filesystem::path& file, const std::filesystem::path& folder,
                                      const SpeechModelCatalogue& catalogue, const std::stop_token& stop,
                                      const std::function<void(double)>& progress);

}  // namespace korvane
