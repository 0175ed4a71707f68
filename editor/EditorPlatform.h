// What VideoEditor takes from the platform, as functions, so that a test can hand it sources, timelines and
// sessions of its own.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stop_token>

#include "platform/av/Asset.h"
#include "platform/av/AssetExportSession.h"
#include "platform/av/Composition.h"

namespace korvane {

struct EditorPlatform {
    /// Never null; a file that can't be read shows when the asset loads.
    std::function<std::shared_ptr<Asset>(const std::filesystem::path&, const std::stop_token&)> openAsset;
    /// Empty and never null.
    std::function<std::shared_ptr<Composition>()> makeComposition;
    /// Null when the preset can't be applied.
    std::function<std::unique_ptr<ExportSession>(std::shared_ptr<const Composition>, ExportPreset)>
        makeSession;
};

/// Real files, real encoders.
EditorPlatform realEditorPlatform();

}  // namespace korvane
