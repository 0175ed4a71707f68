#include "app/ContentView.h"

#include <algorithm>
#include <utility>

#include "app/StatusTexts.h"
#include "ui/controls/Theme.h"

namespace korvane {
namespace {

/// \return whether `field` was another value before.
template <class T>
bool assign(T& field, T value) {
    if (field == value)
        return false;
    field = std::move(value);
    return true;
}

}  // namespace

ContentView::ContentView(Dependencies dependencies, QObject* parent)
    : QObject(parent),
      mainQueue_(dependencies.mainQueue),
      defaults_(dependencies.defaults),
      filePanels_(dependencies.filePanels),
      now_(std::move(dependencies.now)),
      makePlayer_(std::move(dependencies.makePlayer)),
      announcements_(std::move(dependencies.announcements)),
      subtitleSettings_(SubtitleSettings::load(defaults_)),
      videoProcessor_(std::move(dependencies.videoProcessor)),
      speechService_(std::move(dependencies.speechService)),
      videoEditor_(std::move(dependencies.videoEditor)),
      words_(segments_, selectedWordIndices_),
      styleEditor_([this]() -> const SubtitleSettings& { return subtitleSettings_; },
                   [this](const SubtitleSettings& settings) { setSubtitleSettings(settings); }),
      speechModels_(mainQueue_, filePanels_, std::move(dependencies.speechModels)) {
    connect(&speechModels_, &SpeechModels::isBusyChanged, this, &ContentView::busyChanged);
    connect(&speechModels_, &SpeechModels::arrived, this, &ContentView::modelArrived);
}

ContentView::~ContentView() {
    // Unwinding tasks tidy up the state as always, but nobody may look at it any more.
    blockSignals(true);
    tasks_.clear();
}

std::optional<std::string> ContentView::etaText() const {
    if (!isAnyActive() || !processingStartTime_)
        return std::nullopt;
    const std::chrono::duration<double> elapsed = now_() - *processingStartTime_;
    return remainingTimeText(elapsed.count(), overallProgress_);
}

QString ContentView::etaLabel() const {
    return QString::fromStdString(etaText().value_or(""));
}

QString ContentView::percentText() const {
    return korvane::percentText(overallProgress_);
}

QString ContentView::phaseLabel() const {
    if (isExporting_)
        return QStringLiteral("Exporting video");
    if (isBuildingPreview_)
        return QStringLiteral("Building preview");
    if (overallProgress_ >= 0.3)
        return QStringLiteral("Transcribing");
    return QStringLiteral("Extracting audio");
}

QString ContentView::phaseText() const {
    return overallProgress_ > 0.0 && overallProgress_ < 1.0 ? phaseLabel() : QString();
}

QColor ContentView::dotColor() const {
    if (isAnyActive())
        return Theme::accent();
    if (overallProgress_ == 1.0)
        return Theme::successGreen();
    if (overallProgress_ <= 0.0)
        return Theme::white(0.25);
    return Theme::orange();
}

double ContentView::barWidth(double total) const {
    constexpr double kStub = 10.0;  // points that show that something began
    return overallProgress_ <= 0.0 ? 0.0 : std::max(total * overallProgress_, kStub);
}

QString ContentView::emptyStateText() const {
    if (!selectedURL_)
        return QStringLiteral("Load a video to get started.");
    return isProcessing_ ? QStringLiteral("Transcribing…") : QStringLiteral("Press Transcribe to start.");
}

QString ContentView::fileNameText() const {
    return selectedURL_ ? fileName(selectedURL_->string()) : QStringLiteral("No file selected");
}

QString ContentView::errorText() const {
    return QString::fromStdString(errorMessage_.value_or(""));
}

QStringList ContentView::languageNames() const {
    QStringList names;
    for (const Language& language : languages())
        names << QString::fromStdString(language.name);
    return names;
}

int ContentView::selectedLanguageIndex() const {
    const auto found = std::ranges::find(languages(), selectedLanguage_);
    return found == languages().end() ? -1 : static_cast<int>(found - languages().begin());
}

void ContentView::selectLanguage(int index) {
    if (isAnyActive() || index < 0 || index >= static_cast<int>(languages().size()))
        return;
    setSelectedLanguage(languages()[static_cast<std::size_t>(index)]);
}

void ContentView::setSelectedLanguage(const Language& language) {
    if (assign(selectedLanguage_, language))
        Q_EMIT selectedLanguageChanged();
}

void ContentView::setSubtitleSettings(const SubtitleSettings& settings) {
    if (!assign(subtitleSettings_, settings))
        return;
    subtitleSettings_.save(defaults_);
    styleEditor_.settingsChanged();
    Q_EMIT subtitleSettingsChanged();
    Q_EMIT previewOutdatedChanged();
}

void ContentView::setSelectedURL(std::optional<std::filesystem::path> url) {
    if (!assign(selectedURL_, std::move(url)))
        return;
    Q_EMIT selectedURLChanged();
    Q_EMIT canTranscribeChanged();
    Q_EMIT emptyStateTextChanged();
}

void ContentView::setIsProcessing(bool active) {
    if (!assign(isProcessing_, active))
        return;
    Q_EMIT isProcessingChanged();
    Q_EMIT emptyStateTextChanged();
    activityChanged();
}

void ContentView::setIsBuildingPreview(bool active) {
    if (!assign(isBuildingPreview_, active))
        return;
    Q_EMIT isBuildingPreviewChanged();
    activityChanged();
}

void ContentView::setIsExporting(bool active) {
    if (!assign(isExporting_, active))
        return;
    Q_EMIT isExportingChanged();
    activityChanged();
}

void ContentView::activityChanged() {
    Q_EMIT isAnyActiveChanged();
    Q_EMIT canTranscribeChanged();
    Q_EMIT canPreviewChanged();
    Q_EMIT canExportChanged();
    busyChanged();
    Q_EMIT progressTextsChanged();
}

void ContentView::busyChanged() {
    if (!isBusy())
        mayEndEverything_ = false;  // what was agreed to has happened
    Q_EMIT closeQuestionNeededChanged();
}

QString ContentView::closeQuestionText() const {
    if (isAnyActive() || !speechModels_.isDownloading())
        return QStringLiteral(
            "Something is still running. Closing stops it and leaves nothing half-written.");
    return QStringLiteral(
        "A speech model is still being downloaded. What has arrived is kept, and the download can be "
        "resumed.");
}

void ContentView::modelArrived() {
    if (isRecognizerMissing_)
        setErrorMessage(std::nullopt);
}

void ContentView::setErrorMessage(std::optional<std::string> message, bool isRecognizerMissing) {
    const bool isOther = assign(isRecognizerMissing_, isRecognizerMissing);
    if (assign(errorMessage_, std::move(message)) || isOther)
        Q_EMIT errorMessageChanged();
}

void ContentView::setOverallProgress(double progress) {
    if (!assign(overallProgress_, progress))
        return;
    Q_EMIT overallProgressChanged();
    Q_EMIT progressTextsChanged();
}

void ContentView::setStatusText(const QString& text) {
    if (assign(statusText_, text))
        Q_EMIT statusTextChanged();
}

void ContentView::setProcessingStartTime(std::optional<Date> time) {
    if (!assign(processingStartTime_, time))
        return;
    Q_EMIT processingStartTimeChanged();
    Q_EMIT progressTextsChanged();
}

}  // namespace korvane
