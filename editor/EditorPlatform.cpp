#include "editor/EditorPlatform.h"

#include <utility>

namespace korvane {

EditorPlatform realEditorPlatform() {
    return {
        [](const std::filesystem::path& path, const std::stop_token& stop) {
            return std::make_shared<Asset>(path, stop);
        },
        [] { return std::make_shared<Composition>(); },
        [](std::shared_ptr<const Composition> composition, ExportPreset preset) {
            return makeExportSession(std::move(composition), preset);
        },
    };
}

}  // namespace korvane
