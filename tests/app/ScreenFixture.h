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

class ScriptedPanels final : public FilePanels {
  public:
    std::optional<std::filesystem::path> answer;
    std::function<void()> meanwhile = [] {};
    std::vector<OpenPanelRequest> requests;

    std::optional<std::filesystem::path> runOpenPanel(const OpenPanelRequest& request) override {
        requests.push_back(request);
        meanwhile();
        return answer;
    }
    std::optional<std::filesystem::path> runSavePanel(const SavePanelRequest&) override { return {}; }
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
        view_ = makeView(defaults_);
    }
    ~Screen() override { view_.reset(); }

    std::unique_ptr<ContentView> makeView(UserDefaults& defaults) {
        return std::make_unique<ContentView>(ContentView::Dependencies{
            .mainQueue = queue_,
            .defaults = defaults,
            .filePanels = panels_,
            .videoProcessor = std::make_unique<ScriptedVideoProcessor>(queue_, script_),
            .speechService =
                std::make_unique<ScriptedSpeechService>(queue_, authorization_, registry_, script_),
            .videoEditor = std::make_unique<VideoEditor>(queue_, silentLog()),
            .now = [this] { return now_; }});
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
    static Words manyWords(std::size_t count) { return wordsOf(std::vector<std::string>(count, "word")); }
    static std::set<int> upTo(int count) {
        std::set<int> all;
        for (int index = 0; index < count; ++index)
            all.insert(index);
        return all;
    }
    static ExportBundle someBundle() { return {nullptr, {}, {}, "video.mp4", {}, MediaTime()}; }

    /// Runs the event loop until it is so, asleep between events; fails after ten seconds.
    static void runUntil(const std::function<bool()>& condition) {
        const QDeadlineTimer deadline(10'000);
        QTimer look;  // for what becomes so on a worker, which wakes nobody
        look.start(5);
        while (!condition()) {
            ASSERT_FALSE(deadline.hasExpired());
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }
    void runUntilIdle() {
        runUntil([this] { return !view_->isProcessing(); });
    }
    void loadVideo() { peer().setURL(folder_.path() / "clip.mp4"); }
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
        note(&ContentView::processingStartTimeChanged, [&v] { return std::string("start"); });
    }
};

}  // namespace korvane
