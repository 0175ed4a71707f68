// A screen without a window: services that do what a test tells them, a panel that answers at once, a clock
// that stands, and a record of what the screen announced.
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include "app/ContentView.h"
#include "platform/defaults/MemoryUserDefaults.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/QtMainQueue.h"
#include "tests/app/ScriptedModels.h"
#include "tests/app/ScriptedPlayers.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {

using Words = std::vector<SpeechSegment>;
using OnProgress = std::function<void(double)>;

/// Sets what no workflow sets yet. Setting and dropping are two functions because g++ 12 warns falsely of
/// optionals that are moved on under the sanitizers.
struct ContentViewPeer {
    explicit ContentViewPeer(ContentView& wanted) : view(wanted) {}
    ContentView& view;

    void setWords(Words words) { view.setWords(std::move(words)); }
    void setSelected(std::set<int> indices) { view.setSelectedWordIndices(std::move(indices)); }
    /// As it can only be after a mistake.
    void setSelectedUnchecked(std::set<int> indices) { view.selectedWordIndices_ = std::move(indices); }
    void setProcessing(bool on) { view.setIsProcessing(on); }
    void setBuildingPreview(bool on) { view.setIsBuildingPreview(on); }
    void setExporting(bool on) { view.setIsExporting(on); }
    void setProgress(double progress) { view.setOverallProgress(progress); }
    void setStart(std::optional<ContentView::Date> time) { view.setProcessingStartTime(time); }
    void setStatus(const QString& text) { view.setStatusText(text); }
    void setError(std::string text) { view.setErrorMessage(std::move(text)); }
    void dropError() { view.setErrorMessage(std::nullopt); }
    void setBundle(ExportBundle bundle) { view.setPreviewBundle(std::move(bundle)); }
    void dropBundle() { view.setPreviewBundle(std::nullopt); }
    void setURL(std::filesystem::path url) { view.setSelectedURL(std::move(url)); }
    void dropURL() { view.setSelectedURL(std::nullopt); }
};

/// Where a worker waits until the test, or a stop, lets it go on.
class Gate {
  public:
    /// \throws CancellationError when stopped.
    void pass(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        reached_ = true;
        changed_.notify_all();
        changed_.wait(lock, stop, [this] { return open_; });
        checkCancelled(stop);
    }
    /// As pass(), but deaf to stops.
    void passDeaf() {
        std::unique_lock lock(mutex_);
        reached_ = true;
        changed_.notify_all();
        changed_.wait(lock, [this] { return open_; });
    }
    void open() {
        const std::lock_guard lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }
    bool isReached() {
        const std::lock_guard lock(mutex_);
        return reached_;
    }
    void waitUntilReached() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return reached_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable_any changed_;
    bool reached_ = false;
    bool open_ = false;
};

/// What the services do. Runs on workers; shared, because a service belongs to the screen.
struct Script {
    std::function<void(const std::stop_token&)> permission = [](const std::stop_token&) {};
    std::function<ExtractedAudio(const std::filesystem::path&, const OnProgress&, const std::stop_token&)>
        extract;
    std::function<Words(const std::filesystem::path&, double, const Locale&, const OnProgress&,
                        const std::stop_token&)>
        recognise;
    std::function<ExportBundle(const std::filesystem::path&, const Words&, const SubtitleSettings&,
                               const std::stop_token&)>
        build;
    std::function<void(const std::filesystem::path&, const Words&, const SubtitleSettings&,
                       const std::filesystem::path&, const OnProgress&, const std::stop_token&)>
        write;
};

class ScriptedVideoProcessor final : public VideoProcessor {
  public:
    ScriptedVideoProcessor(MainQueue& queue, std::shared_ptr<Script> script)
        : VideoProcessor(queue), script_(std::move(script)) {}
    ExtractedAudio extractAudio(const std::filesystem::path& from, OnProgress onProgress,
                                std::stop_token stop) const override {
        return script_->extract(from, onProgress, stop);
    }

  private:
    std::shared_ptr<Script> script_;
};

class NeverAsked final : public SpeechAuthorization {
  public:
    void request(std::function<void(SpeechAuthorizationStatus)>) override { FAIL() << "asked"; }
};

class ScriptedSpeechService final : public SpeechService {
  public:
    ScriptedSpeechService(MainQueue& queue, SpeechAuthorization& authorization,
                          SpeechRecognizerRegistry& registry, std::shared_ptr<Script> script)
        : SpeechService(queue, authorization, registry), script_(std::move(script)) {}
    void requestPermission(std::stop_token stop) override { script_->permission(stop); }
    Words transcribe(const std::filesystem::path& audioURL, double audioDuration, const Locale& locale,
                     OnProgress onProgress, std::stop_token stop) override {
        return script_->recognise(audioURL, audioDuration, locale, onProgress, stop);
    }

  private:
    std::shared_ptr<Script> script_;
};

class ScriptedVideoEditor final : public VideoEditor {
  public:
    ScriptedVideoEditor(MainQueue& queue, std::shared_ptr<Script> script)
        : VideoEditor(queue, silentLog()), script_(std::move(script)) {}
    ExportBundle buildBundle(const std::filesystem::path& video, const Words& words,
                             const SubtitleSettings& style, std::stop_token stop) const override {
        return script_->build(video, words, style, stop);
    }
    void exportVideo(const std::filesystem::path& video, const Words& words, const SubtitleSettings& style,
                     const std::filesystem::path& output, OnProgress onProgress,
                     std::stop_token stop) const override {
        script_->write(video, words, style, output, onProgress, stop);
    }

  private:
    std::shared_ptr<Script> script_;
};

class ScriptedPanels final : public FilePanels {
  public:
    std::optional<std::filesystem::path> answer;
    std::function<void()> meanwhile = [] {};
    std::vector<OpenPanelRequest> requests;
    std::vector<SavePanelRequest> saveRequests;

    std::optional<std::filesystem::path> runOpenPanel(const OpenPanelRequest& request) override {
        requests.push_back(request);
        meanwhile();
        return answer;
    }
    std::optional<std::filesystem::path> runSavePanel(const SavePanelRequest& request) override {
        saveRequests.push_back(request);
        meanwhile();
        return answer;
    }
};

class Screen : public testing::Test {
  protected:
    TemporaryFolder folder_;
    QtMainQueue queue_;
    MemoryUserDefaults defaults_;
    ScriptedPanels panels_;
    NeverAsked authorization_;
    SpeechRecognizerRegistry registry_{{}};
    ContentView::Date now_{std::chrono::seconds(1'000'000)};
    std::shared_ptr<Script> script_ = std::make_shared<Script>();
    PlayerScript players_;
    std::shared_ptr<ModelsScript> modelsScript_ = std::make_shared<ModelsScript>();
    bool isInFront_ = true;
    std::filesystem::path audio_ = folder_.path() / "audio.m4a";
    std::unique_ptr<ContentView> view_;
    std::vector<std::string> log_;

    Screen() {
        script_->extract = [audio = audio_](const auto&, const auto&, const auto&) {
            std::ofstream(audio) << "sound";
            return ExtractedAudio{audio, 12.5};
        };
        script_->recognise = [](const auto&, double, const auto&, const auto&, const auto&) {
            return wordsOf({"one", "two", "three"});
        };
        script_->build = [](const auto& video, const Words& words, const auto& style, const auto&) {
            return bundleOf(video, words, style);
        };
        script_->write = [](const auto&, const auto&, const auto&, const auto& output, const auto&,
                            const auto&) { std::ofstream(output) << "reel"; };
        players_.note = [this](const std::string& line) { log_.push_back(line); };
        view_ = makeView(defaults_);
    }
    ~Screen() override { view_.reset(); }

    std::unique_ptr<ContentView> makeView(UserDefaults& defaults) {
        return makeView(defaults, [this](const std::shared_ptr<PlayerItem>& item) {
            return std::make_shared<ScriptedPlayer>(players_, item);
        });
    }
    std::unique_ptr<ContentView> makeView(UserDefaults& defaults, PreviewPlayerMaker makePlayer) {
        return std::make_unique<ContentView>(ContentView::Dependencies{
            .mainQueue = queue_,
            .defaults = defaults,
            .filePanels = panels_,
            .videoProcessor = std::make_unique<ScriptedVideoProcessor>(queue_, script_),
            .speechService =
                std::make_unique<ScriptedSpeechService>(queue_, authorization_, registry_, script_),
            .videoEditor = std::make_unique<ScriptedVideoEditor>(queue_, script_),
            .now = [this] { return now_; },
            .makePlayer = std::move(makePlayer),
            .announcements = {
                .isInFront = [this] { return isInFront_; },
                .notify =
                    [this](const QString& summary, const QString& body) {
                        log_.push_back("notify " + summary.toStdString() + ": " + body.toStdString());
                    },
                .showInFolder = [this](const auto& file) { log_.push_back("show " + file.string()); }},
            .speechModels = std::make_unique<ScriptedModels>(modelsScript_)});
    }

    ContentViewPeer peer() { return ContentViewPeer(*view_); }
    ContentView& view() { return *view_; }

    /// Half a second each, back to back.
    static Words wordsOf(const std::vector<std::string>& texts) {
        Words words;
        for (const std::string& text : texts) {
            const double start = 0.5 * static_cast<double>(words.size());
            words.emplace_back(text, start, start + 0.5);
        }
        return words;
    }
    static std::vector<std::string> textsOf(const Words& words) {
        std::vector<std::string> texts;
        for (const SpeechSegment& word : words)
            texts.push_back(word.text());
        return texts;
    }
    static Words manyWords(std::size_t count) { return wordsOf(std::vector<std::string>(count, "word")); }
    static std::set<int> upTo(int count) {
        std::set<int> all;
        for (int index = 0; index < count; ++index)
            all.insert(index);
        return all;
    }
    static ExportBundle someBundle() { return {nullptr, {}, {}, "video.mp4", {}, MediaTime()}; }
    /// A lead-in of 0.25 s and two lines.
    static ExportBundle bundleOf(const std::filesystem::path& video, const Words& words,
                                 const SubtitleSettings& style, MediaTime preroll = {150, 600}) {
        auto item =
            std::make_shared<PlayerItem>(std::make_shared<Composition>(), VideoComposition(), std::nullopt);
        return {std::move(item), {{0.25, 1.2, "A"}, {1.2, 2.0, "B"}}, style, video, words, preroll};
    }

    /// Runs the event loop until it is so, asleep between events; fails after a minute, as an export on a
    /// machine with much other work takes more than ten seconds.
    static void runUntil(const std::function<bool()>& condition) {
        const QDeadlineTimer deadline(60'000);
        QTimer look;  // for what becomes so on a worker, which wakes nobody
        look.start(5);
        while (!condition()) {
            ASSERT_FALSE(deadline.hasExpired());
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    void runUntilIdle() {
        runUntil([this] { return !view_->isAnyActive(); });
    }
    void loadVideo() { peer().setURL(folder_.path() / "clip.mp4"); }
    /// A video with three words, all chosen.
    void loadWords() {
        loadVideo();
        peer().setWords(wordsOf({"one", "two", "three"}));
    }
    void showPreview() {
        view_->startPreview();
        runUntilIdle();
    }
    void transcribe() {
        view_->startTranscription();
        runUntilIdle();
    }

    static std::string textOf(bool value) { return value ? "true" : "false"; }

    /// From now on, each announced change of the state is a line.
    void record() {
        const auto note = [this](auto signal, std::function<std::string()> line) {
            QObject::connect(view_.get(), signal, view_.get(),
                             [this, line = std::move(line)] { log_.push_back(line()); });
        };
        const ContentView& v = *view_;
        note(&ContentView::selectedURLChanged,
             [&v] { return "url " + v.selectedURL()->filename().string(); });
        note(&ContentView::isProcessingChanged, [&v] { return "processing " + textOf(v.isProcessing()); });
        note(&ContentView::segmentsChanged,
             [&v] { return "segments " + std::to_string(v.segments().size()); });
        note(&ContentView::selectedWordIndicesChanged,
             [&v] { return "selected " + std::to_string(v.selectedWordIndices().size()); });
        note(&ContentView::errorMessageChanged,
             [&v] { return "error " + v.errorMessage().value_or("none"); });
        note(&ContentView::previewBundleChanged,
             [&v] { return std::string("bundle ") + (v.previewBundle() ? "some" : "none"); });
        note(&ContentView::overallProgressChanged,
             [&v] { return "progress " + QString::number(v.overallProgress()).toStdString(); });
        note(&ContentView::statusTextChanged, [&v] { return "status " + v.statusText().toStdString(); });
        note(&ContentView::isBuildingPreviewChanged,
             [&v] { return "building " + textOf(v.isBuildingPreview()); });
        note(&ContentView::isExportingChanged, [&v] { return "exporting " + textOf(v.isExporting()); });
        note(&ContentView::currentSubtitleChanged,
             [&v] { return "subtitle " + v.currentSubtitle().toStdString(); });
        note(&ContentView::exportedFileChanged, [&v] {
            return "exported " + (v.exportedFile() ? v.exportedFile()->filename().string() : "none");
        });
        QObject::connect(view_->previewSource(), &PreviewSource::sourceChanged, view_.get(), [this] {
            log_.push_back(std::string("player ") + (view_->previewPlayer() ? "some" : "none"));
        });
        note(&ContentView::processingStartTimeChanged, [&v] { return std::string("start"); });
    }
};

}  // namespace korvane
