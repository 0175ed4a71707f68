#include "media/SpeechError.h"

#include <utility>

namespace korvane {

SpeechError::SpeechError(Case errorCase, Locale locale, std::string description)
    : case_(errorCase), locale_(std::move(locale)), description_(std::move(description)) {}

SpeechError SpeechError::recognizerUnavailable(Locale locale) {
    std::string description = "Speech recognizer is not available for '" + locale.identifier + "'.";
    return {Case::recognizerUnavailable, std::move(locale), std::move(description)};
}

SpeechError SpeechError::permissionDenied() {
    return {Case::permissionDenied,
            {},
            "Speech recognition permission was denied. Enable it in System Settings › Privacy."};
}

SpeechError SpeechError::permissionRestricted() {
    return {Case::permissionRestricted, {}, "Speech recognition is restricted on this device."};
}

}  // namespace korvane
