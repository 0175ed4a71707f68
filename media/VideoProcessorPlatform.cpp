#include "media/VideoProcessorPlatform.h"

#include <utility>

namespace korvane {

VideoProcessorPlatform realVideoProcessorPlatform() {
    return {
        [](const std::filesystem::path& path, const std::stop_token& stop) {
            return std::make_shared<Asset>(path, stop);
        },
        [](std::shared_ptr<Asset> asset, ExportPreset preset) {
            return makeExportSession(std::move(asset), preset);
        },
    };
}

}  // namespace korvane
