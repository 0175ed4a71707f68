// The one main screen: all its state, what is derived from it, and the actions of the workflow. The QML files
// show it and call it. Everything here lives on the main thread; services do their work on threads of their
// own. Signals come after a change, never without one, and never once destruction has begun.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/PreviewPictures.h"
#include "app/SpeechModels.h"
#include "editor/ExportBundle.h"
#include "editor/VideoEditor.h"
#include "media/SpeechService.h"
#include "media/VideoProcessor.h"
#include "model/Language.h"
#include "model/SpeechSegment.h"
#include "model/SubtitleSettings.h"
#include "platform/av/PreviewPlayer.h"
#include "platform/defaults/UserDefaults.h"
#include "platform/desktop/FilePanels.h"
#include "platform/tasks/MainQueue.h"
#include "platform/tasks/MainTask.h"
#include "ui/style/StyleEditor.h"
#include "ui/words/WordListModel.h"

namespace korvane {

class ContentView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the window's controller")
    // Texts are ready to be shown; what is enabled is decided here.
    Q_PROPERTY(QString fileNameText READ fileNameText NOTIFY selectedURLChanged)
    Q_PROPERTY(bool hasVideo READ hasVideo NOTIFY selectedURLChanged)
    Q_PROPERTY(QStringList languageNames READ languageNames CONSTANT)
    Q_PROPERTY(int selectedLanguageIndex READ selectedLanguageIndex WRITE selectLanguage NOTIFY
                   selectedLanguageChanged)
    Q_PROPERTY(bool isProcessing READ isProcessing NOTIFY isProcessingChanged)
    Q_PROPERTY(bool isAnyActive READ isAnyActive NOTIFY isAnyActiveChanged)
    Q_PROPERTY(bool canTranscribe READ canTranscribe NOTIFY canTranscribeChanged)
    Q_PROPERTY(QString errorText READ errorText NOTIFY errorMessageChanged)
    Q_PROPERTY(bool hasError READ hasError NOTIFY errorMessageChanged)
    Q_PROPERTY(bool modelWouldHelp READ modelWouldHelp NOTIFY errorMessageChanged)
    Q_PROPERTY(double overallProgress READ overallProgress NOTIFY overallProgressChanged)
    Q_PROPERTY(QString statusText READ statusText NOTIFY statusTextChanged)
    Q_PROPERTY(QString etaLabel READ etaLabel NOTIFY progressTextsChanged)
    Q_PROPERTY(QString percentText READ percentText NOTIFY progressTextsChanged)
    Q_PROPERTY(QString phaseText READ phaseText NOTIFY progressTextsChanged)
    Q_PROPERTY(QColor dotColor READ dotColor NOTIFY progressTextsChanged)
    Q_PROPERTY(korvane::WordListModel* words READ words CONSTANT)
    Q_PROPERTY(bool hasWords READ hasWords NOTIFY segmentsChanged)
    Q_PROPERTY(QString wordsTitle READ wordsTitle NOTIFY segmentsChanged)
    Q_PROPERTY(QString emptyStateText READ emptyStateText NOTIFY emptyStateTextChanged)
    Q_PROPERTY(korvane::StyleEditor* styleEditor READ styleEditor CONSTANT)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY selectedWordIndicesChanged)
    Q_PROPERTY(QString exportSummary READ exportSummary NOTIFY selectedWordIndicesChanged)
    Q_PROPERTY(QString exportDurationText READ exportDurationText NOTIFY selectedWordIndicesChanged)
    Q_PROPERTY(bool hasPreview READ hasPreview NOTIFY hasPreviewChanged)
    Q_PROPERTY(korvane::PreviewSource* previewSource READ previewSource CONSTANT)
    Q_PROPERTY(QString currentSubtitle READ currentSubtitle NOTIFY currentSubtitleChanged)
    Q_PROPERTY(QStringList reelTexts READ reelTexts NOTIFY previewBundleChanged)
    Q_PROPERTY(bool isBuildingPreview READ isBuildingPreview NOTIFY isBuildingPreviewChanged)
    Q_PROPERTY(bool isExporting READ isExporting NOTIFY isExportingChanged)
    Q_PROPERTY(bool canPreview READ canPreview NOTIFY canPreviewChanged)
    Q_PROPERTY(bool canExport READ canExport NOTIFY canExportChanged)
    Q_PROPERTY(bool previewOutdated READ isPreviewOutdated NOTIFY previewOutdatedChanged)
    Q_PROPERTY(bool stopVisible READ stopVisible NOTIFY isAnyActiveChanged)
    Q_PROPERTY(bool hasExportedFile READ hasExportedFile NOTIFY exportedFileChanged)
    Q_PROPERTY(bool closeQuestionNeeded READ closeQuestionNeeded NOTIFY closeQuestionNeededChanged)
    Q_PROPERTY(QString closeQuestionText READ closeQuestionText NOTIFY closeQuestionNeededChanged)
    Q_PROPERTY(korvane::SpeechModels* speechModels READ speechModels CONSTANT)

  public:
    using Date = std::chrono::system_clock::time_point;

    /// What the desktop does for a finished export. None of it may wait for anybody.
    struct ExportAnnouncements {
        /// Whether a person has the window before them, and needs nothing else to see how it went.
        std::function<bool()> isInFront = [] { return true; };
        std::function<void(const QString& summary, const QString& body)> notify = [](auto&&...) {};
        std::function<void(const std::filesystem::path& file)> showInFolder = [](auto&&...) {};
    };

    /// What the references stand for must outlive the screen; the queue also every thread that a service may
    /// still report from.
    struct Dependencies {
        MainQueue& mainQueue;
        UserDefaults& defaults;
        FilePanels& filePanels;
        std::unique_ptr<VideoProcessor> videoProcessor;
        std::unique_ptr<SpeechService> speechService;
        std::unique_ptr<VideoEditor> videoEditor;
        std::function<Date()> now = std::chrono::system_clock::now;
        PreviewPlayerMaker makePlayer = {};  ///< without it, every preview fails
        ExportAnnouncements announcements = {};
        std::unique_ptr<SpeechModelServices> speechModels = {};  ///< without it, no models are offered
    };

    explicit ContentView(Dependencies dependencies, QObject* parent = nullptr);
    /// Stops what runs and waits for it. Not from within a signal of the screen: use deleteLater() there.
    ~ContentView() override;

    static const std::vector<Language>& languages() { return languageCatalogue(); }

    // The state.
    const std::optional<std::filesystem::path>& selectedURL() const { return selectedURL_; }
    const Language& selectedLanguage() const { return selectedLanguage_; }
    bool isProcessing() const { return isProcessing_; }
    const std::vector<SpeechSegment>& segments() const { return segments_; }
    const std::optional<std::string>& errorMessage() const { return errorMessage_; }
    const std::optional<TaskHandle>& transcriptionTask() const { return transcriptionTask_; }
    const std::set<int>& selectedWordIndices() const { return selectedWordIndices_; }
    const SubtitleSettings& subtitleSettings() const { return subtitleSettings_; }
    const std::optional<ExportBundle>& previewBundle() const { return previewBundle_; }
    const std::shared_ptr<PreviewPlayer>& previewPlayer() const { return previewPlayer_; }
    bool isBuildingPreview() const { return isBuildingPreview_; }
    const std::optional<TaskHandle>& buildPreviewTask() const { return buildPreviewTask_; }
    bool isExporting() const { return isExporting_; }
    const std::optional<TaskHandle>& exportTask() const { return exportTask_; }
    const QString& currentSubtitle() const { return currentSubtitle_; }
    /// None unless the preview is seen.
    const QTimer* subtitleTimer() const { return subtitleTimer_.get(); }
    double overallProgress() const { return overallProgress_; }
    const QString& statusText() const { return statusText_; }
    const std::optional<Date>& processingStartTime() const { return processingStartTime_; }
    /// The reel that the last operation wrote; none after any other.
    const std::optional<std::filesystem::path>& exportedFile() const { return exportedFile_; }

    // What is derived from it, made anew at each call.
    bool isAnyActive() const { return isProcessing_ || isBuildingPreview_ || isExporting_; }
    bool canTranscribe() const { return hasVideo() && !isAnyActive(); }
    bool hasVideo() const { return selectedURL_.has_value(); }
    bool hasError() const { return errorMessage_.has_value(); }
    /// Whether the error shown is that nothing recognises the language, and a model can be had.
    bool modelWouldHelp() const { return isRecognizerMissing_ && speechModels_.isOffered(); }
    bool hasWords() const { return !segments_.empty(); }
    bool hasSelection() const { return !selectedWordIndices_.empty(); }
    /// Every line of the reel that is previewed.
    QStringList reelTexts() const;
    bool hasPreview() const { return previewPlayer_ && previewBundle_; }
    bool canPreview() const { return hasSelection() && !isAnyActive(); }
    bool canExport() const { return previewBundle_ && !isAnyActive(); }
    /// Whether an export would write other words or another style than those chosen now: it writes what the
    /// reel was built of.
    bool isPreviewOutdated() const;
    bool stopVisible() const { return isBuildingPreview_ || isExporting_; }
    bool hasExportedFile() const { return exportedFile_.has_value(); }
    /// Whether closing the window now would end something that nobody has agreed to end.
    bool closeQuestionNeeded() const { return isBusy() && !mayEndEverything_; }
    /// What closing would do.
    QString closeQuestionText() const;
    /// The time that the running operation still takes; none while nobody can tell.
    std::optional<std::string> etaText() const;
    /// The same, empty for none.
    QString etaLabel() const;
    QString percentText() const;
    QString phaseLabel() const;
    /// phaseLabel() between the beginning and the end of an operation, else empty.
    QString phaseText() const;
    QColor dotColor() const;
    /// Points of a bar of `total` points that are filled.
    Q_INVOKABLE double barWidth(double total) const;
    QString emptyStateText() const;
    QString fileNameText() const;
    QString errorText() const;
    QString wordsTitle() const;
    QString exportSummary() const;
    QString exportDurationText() const;
    QStringList languageNames() const;
    int selectedLanguageIndex() const;
    /// The chosen words in the order of speech.
    std::vector<SpeechSegment> selectedSegments() const;
    /// Seconds of all chosen words, without what lies between them.
    double selectedDuration() const;

    WordListModel* words() { return &words_; }
    StyleEditor* styleEditor() { return &styleEditor_; }
    PreviewSource* previewSource() { return &pictures_; }
    SpeechModels* speechModels() { return &speechModels_; }

    void setSelectedLanguage(const Language& language);
    /// Saves the style too; one that can't be saved counts until the end of the program.
    void setSubtitleSettings(const SubtitleSettings& settings);

    // What a person does. While an operation runs, only its stop, the preview shown and the style do
    // anything.
    /// An index outside of languages() is ignored.
    Q_INVOKABLE void selectLanguage(int index);
    /// Shows the panel; the event loop runs meanwhile.
    Q_INVOKABLE void openFilePicker();
    /// As if the panel had returned the file; one that is no video is refused by an error message only.
    Q_INVOKABLE void openDroppedFile(const QUrl& url);
    /// What was dropped together: one file is opened, several are refused by an error message only.
    Q_INVOKABLE void openDroppedFiles(const QList<QUrl>& urls);
    /// Whether something dropped gets an answer: any local file, also those that will be refused aloud.
    Q_INVOKABLE bool acceptsDrop(const QList<QUrl>& urls) const;
    Q_INVOKABLE void startTranscription();
    /// Requests the end and returns; "Cancelled" comes when the services have let go.
    Q_INVOKABLE void stopTranscription();
    /// Chooses the word, or no longer. Stops the program for an index without a word.
    Q_INVOKABLE void toggleWord(int index);
    Q_INVOKABLE void selectAllWords();
    Q_INVOKABLE void selectNoWords();
    /// Builds the reel of the chosen words and plays it in a loop; a preview that is shown goes first.
    Q_INVOKABLE void startPreview();
    Q_INVOKABLE void closePreview();
    /// Plays or pauses the preview shown; nothing while it is still being made ready.
    Q_INVOKABLE void togglePlayback();
    /// For the view, when the area with the picture comes and goes. What nobody sees is not heard either.
    Q_INVOKABLE void previewAppeared();
    Q_INVOKABLE void previewDisappeared();
    /// Asks where to, then writes exactly what was previewed and gives the preview up. The event loop runs
    /// behind the panel.
    Q_INVOKABLE void exportReel();
    /// Request the end and return, as stopTranscription() does.
    void stopBuildPreview();
    void stopExport();
    Q_INVOKABLE void stopPreviewOrExport();
    /// Opens the file manager at the exported file.
    Q_INVOKABLE void showExportInFolder();
    /// When a person agrees to close the window: requests the end of whatever runs, and closing needs no
    /// question until it has ended. Destroying the screen waits for that.
    Q_INVOKABLE void cancelEverything();

  Q_SIGNALS:
    void selectedURLChanged();
    void selectedLanguageChanged();
    void isProcessingChanged();
    void segmentsChanged();
    void errorMessageChanged();
    void selectedWordIndicesChanged();
    void subtitleSettingsChanged();
    void previewBundleChanged();
    void isBuildingPreviewChanged();
    void isExportingChanged();
    void currentSubtitleChanged();
    void exportedFileChanged();
    void overallProgressChanged();
    void statusTextChanged();
    void processingStartTimeChanged();
    // For derived values: something that they are made from changed.
    void isAnyActiveChanged();
    void canTranscribeChanged();
    void progressTextsChanged();
    void emptyStateTextChanged();
    void hasPreviewChanged();
    void canPreviewChanged();
    void canExportChanged();
    void previewOutdatedChanged();
    void closeQuestionNeededChanged();

  private:
    friend struct ContentViewPeer;  // tests set what no workflow of theirs sets

    /// Asks for permission, takes the sound out, recognises the words.
    MainTask runTranscription();
    void beginTranscription();
    void showTranscript(std::vector<SpeechSegment> words);

    /// Builds the bundle, makes its player ready at the loop point, plays.
    MainTask runBuildPreview();
    void beginBuildingPreview();
    /// The player of the bundle shown, which goes back to the loop point at each end.
    std::shared_ptr<PreviewPlayer> makeLoopingPlayer(const ExportBundle& bundle) const;
    void showCurrentSubtitle();

    MainTask runExport(std::filesystem::path videoURL, std::vector<SpeechSegment> segments,
                       SubtitleSettings subtitleSettings, std::filesystem::path outputURL);
    void beginExporting();
    void announce(const QString& summary, const QString& body) const;

    void loadVideo(const std::filesystem::path& path);
    void setSelectedURL(std::optional<std::filesystem::path> url);
    void setIsProcessing(bool active);
    void setIsBuildingPreview(bool active);
    void setIsExporting(bool active);
    void activityChanged();
    void choiceChanged();
    /// Chooses all of them. Words and choice change together, so that no observer meets an index without a
    /// word; their signals come one after the other.
    void setWords(std::vector<SpeechSegment> words);
    void setSelectedWordIndices(std::set<int> selected);
    /// \param isRecognizerMissing  that nothing recognises the language is what the message says.
    void setErrorMessage(std::optional<std::string> message, bool isRecognizerMissing = false);
    /// A download or a copy of a model is nothing that the screen waits for, but closing would end it.
    bool isBusy() const { return isAnyActive() || speechModels_.isBusy(); }
    void busyChanged();
    /// What no recogniser could do before can be tried again.
    void modelArrived();
    void setPreviewBundle(std::optional<ExportBundle> bundle);
    /// Without a player there is no subtitle and nothing that looks for one.
    void setPreviewPlayer(std::shared_ptr<PreviewPlayer> player);
    void setCurrentSubtitle(const QString& text);
    void setExportedFile(std::optional<std::filesystem::path> file);
    void setOverallProgress(double progress);
    void setStatusText(const QString& text);
    void setProcessingStartTime(std::optional<Date> time);

    MainQueue& mainQueue_;
    UserDefaults& defaults_;
    FilePanels& filePanels_;
    std::function<Date()> now_;
    PreviewPlayerMaker makePlayer_;
    ExportAnnouncements announcements_;

    std::optional<std::filesystem::path> selectedURL_;
    Language selectedLanguage_ = languages().front();
    bool isProcessing_ = false;
    std::vector<SpeechSegment> segments_;
    std::optional<std::string> errorMessage_;
    bool isRecognizerMissing_ = false;
    std::optional<TaskHandle> transcriptionTask_;
    std::set<int> selectedWordIndices_;
    SubtitleSettings subtitleSettings_;
    std::optional<ExportBundle> previewBundle_;
    std::shared_ptr<PreviewPlayer> previewPlayer_;
    bool isBuildingPreview_ = false;
    std::optional<TaskHandle> buildPreviewTask_;
    bool isExporting_ = false;
    std::optional<TaskHandle> exportTask_;
    QString currentSubtitle_;
    std::unique_ptr<QTimer> subtitleTimer_;
    double overallProgress_ = 0.0;
    QString statusText_ = QStringLiteral("Ready");
    std::optional<Date> processingStartTime_;
    std::optional<std::filesystem::path> exportedFile_;
    std::unique_ptr<VideoProcessor> videoProcessor_;
    std::unique_ptr<SpeechService> speechService_;
    std::unique_ptr<VideoEditor> videoEditor_;

    WordListModel words_;
    StyleEditor styleEditor_;
    PreviewPictures pictures_;
    SpeechModels speechModels_;
    bool isPanelOpen_ = false;
    bool mayEndEverything_ = false;
    TaskScope tasks_;  // also tasks that are still unwinding after their handle was given up
};

}  // namespace korvane
