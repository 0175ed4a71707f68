// From the reel that was previewed to a file, and what may be done with the file then.
#include <QPointer>
#include <utility>

#include "app/ContentView.h"
#include "app/StatusTexts.h"
#include "editor/LogFormat.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/OnLeaving.h"
#include "platform/tasks/PhaseProgress.h"

namespace korvane {
namespace {

SavePanelRequest savePanelRequest() {
    return {.title = "Export Video",
            .allowedTypes = {{"video/mp4", "mp4", "MPEG-4 movie"}},
            .proposedName = "korvane_output.mp4",
            .canCreateFolders = true};
}

}  // namespace

void ContentView::exportReel() {
    if (!previewBundle_ || isAnyActive() || isPanelOpen_)
        return;
    // What was previewed now is what is written, whatever changes behind the panel.
    const ExportBundle bundle = *previewBundle_;
    const QPointer<ContentView> self(this);
    isPanelOpen_ = true;
    const auto chosen = filePanels_.runSavePanel(savePanelRequest());
    if (!self)
        return;
    isPanelOpen_ = false;
    if (!chosen || isAnyActive())
        return;
    closePreview();
    MainTask task = runExport(bundle.videoURL(), bundle.segments(), bundle.subtitleSettings(), *chosen);
    exportTask_ = task.handle();
    tasks_.start(std::move(task));
}

void ContentView::stopExport() {
    if (exportTask_)
        exportTask_->cancel();
    exportTask_.reset();
}

void ContentView::stopPreviewOrExport() {
    if (isBuildingPreview_)
        stopBuildPreview();
    else
        stopExport();
}

void ContentView::beginExporting() {
    setIsExporting(true);
    setOverallProgress(0.0);
    setErrorMessage(std::nullopt);
    setProcessingStartTime(now_());
    setStatusText(QStringLiteral("Preparing export…"));
    setExportedFile(std::nullopt);
}

MainTask ContentView::runExport(std::filesystem::path videoURL, std::vector<SpeechSegment> segments,
                                SubtitleSettings subtitleSettings, std::filesystem::path outputURL) {
    beginExporting();
    const OnLeaving end([this] {
        exportTask_.reset();  // before the signal, on which the next task may be started
        setIsExporting(false);
    });
    try {
        const PhaseProgress progress(mainQueue_, [this](double fraction) { setOverallProgress(fraction); });
        auto exporting = onWorker<void>(
            mainQueue_, [&editor = *videoEditor_, &videoURL, &segments, &subtitleSettings, &outputURL,
                         onProgress = progress.callback()](const std::stop_token& stop) {
                editor.exportVideo(videoURL, segments, subtitleSettings, outputURL, onProgress, stop);
            });
        co_await exporting;
        setOverallProgress(1.0);
        setStatusText(QStringLiteral("Export complete"));
        setExportedFile(outputURL);
        announce(statusText_, fileName(outputURL.string()));
    } catch (const CancellationError&) {
        setStatusText(QStringLiteral("Export cancelled"));
        setOverallProgress(0.0);
    } catch (...) {
        setStatusText(QStringLiteral("Export failed"));
        setErrorMessage(describeError(std::current_exception()));
        setOverallProgress(0.0);
        announce(statusText_, errorText());
    }
}

void ContentView::announce(const QString& summary, const QString& body) const {
    if (!announcements_.isInFront())
        announcements_.notify(summary, body);
}

void ContentView::setExportedFile(std::optional<std::filesystem::path> file) {
    if (exportedFile_ == file)
        return;
    exportedFile_ = std::move(file);
    Q_EMIT exportedFileChanged();
}

void ContentView::showExportInFolder() {
    if (exportedFile_)
        announcements_.showInFolder(*exportedFile_);
}

void ContentView::cancelEverything() {
    if (!isBusy())
        return;
    mayEndEverything_ = true;
    Q_EMIT closeQuestionNeededChanged();
    stopTranscription();
    stopBuildPreview();
    stopExport();
    speechModels_.stopAll();
}

}  // namespace korvane
