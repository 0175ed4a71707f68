#include <memory>

#include "editor/ExportError.h"
#include "editor/VideoEditor.h"

namespace korvane {

ExportBundle VideoEditor::buildBundle(const std::filesystem::path& videoURL,
                                      const std::vector<SpeechSegment>& segments,
                                      const SubtitleSettings& subtitleSettings, std::stop_token stop) const {
    if (segments.empty())
        throw ExportError::noSegmentsSelected();
    const std::shared_ptr<Asset> asset = platform_.openAsset(videoURL, stop);
    CompositionData data = buildCompositionData(*asset, segments, stop);
    auto playerItem = std::make_shared<PlayerItem>(data.composition, data.videoComposition, data.audioMix);
    return {std::move(playerItem),
            groupSubtitleEntries(data.subtitleEntries),
            subtitleSettings,
            videoURL,
            segments,
            data.prerollDuration};
}

}  // namespace korvane
