#include "media/ProcessingError.h"

#include <utility>

namespace korvane {

ProcessingError::ProcessingError(Case errorCase, std::string message, std::string description)
    : case_(errorCase), message_(std::move(message)), description_(std::move(description)) {}

ProcessingError ProcessingError::exportFailed(std::string message) {
    std::string description = "Audio export failed: " + message;
    return {Case::exportFailed, std::move(message), std::move(description)};
}

ProcessingError ProcessingError::noAudioTrack() {
    return {Case::noAudioTrack, {}, "The selected video has no audio track."};
}

}  // namespace korvane
