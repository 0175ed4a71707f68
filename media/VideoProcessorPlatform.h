// What VideoProcessor takes from the platform, as functions, so that a test can hand it sources and sessions
// of its own.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>

#include "platform/av/Asset.h"
#include "platform/av/AssetExportSession.h"

namespace korvane {

struct VideoProcessorPlatform {
    /// Never null; a file that can't be read shows when the asset loads.
    std::function<std::shared_ptr<Asset>(const std::filesystem::path&, const std::stop_token&)> openAsset;
    /// Null when the preset can't be applied.
    std::function<std::unique_ptr<ExportSession>(std::shared_ptr<Asset>, ExportPreset)> makeSession;
};

/// Real files, real encoders.
VideoProcessorPlatform realVideoProcessorPlatform();

}  // namespace korvane
