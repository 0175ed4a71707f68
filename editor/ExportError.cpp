#include "editor/ExportError.h"

#include <utility>

namespace korvane {
namespace {

std::string description(ExportError::Case errorCase, const std::string& message) {
    switch (errorCase) {
        case ExportError::Case::exportFailed:
            return "Export failed: " + message;
        case ExportError::Case::noSegmentsSelected:
            return "No segments are selected.";
        case ExportError::Case::noVideoTrack:
            return "The source video has no video track.";
        case ExportError::Case::compositionFailed:
            return "Failed to create the composition track.";
        case ExportError::Case::noContentInserted:
            return "None of the selected segments produced valid content.";
    }
    return message;
}

}  // namespace

ExportError::ExportError(Case errorCase, std::string message)
    : case_(errorCase), message_(std::move(message)), description_(description(case_, message_)) {}

ExportError ExportError::exportFailed(std::string message) {
    return {Case::exportFailed, std::move(message)};
}

ExportError ExportError::noSegmentsSelected() {
    return {Case::noSegmentsSelected, {}};
}

ExportError ExportError::noVideoTrack() {
    return {Case::noVideoTrack, {}};
}

ExportError ExportError::compositionFailed() {
    return {Case::compositionFailed, {}};
}

ExportError ExportError::noContentInserted() {
    return {Case::noContentInserted, {}};
}

}  // namespace korvane
