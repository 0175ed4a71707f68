#include "editor/VideoEditor.h"

#include <utility>

namespace korvane {

VideoEditor::VideoEditor(MainQueue& mainQueue, DiagnosticLog log, EditorPlatform platform, int stage)
    : mainQueue_(mainQueue), log_(std::move(log)), platform_(std::move(platform)), stage_(stage) {}

}  // namespace korvane
