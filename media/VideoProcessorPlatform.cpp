#include "media/VideoProcessorPlatform.h"

#include <utility>

namespace korvane {

VideoProcessorPlatform realVideoProcessorPlatform() {
    return {
        [](const std::filesystem::path& path) { return std::make_shared<Asset>(path); },
        [](std::shared_ptr<Asset> asset, ExportPreset preset) {
            return makeExportSession(std::move(asset), preset);
        },
    };
}

}  // namespace korvane
