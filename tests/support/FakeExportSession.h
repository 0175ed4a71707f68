// An export session that does what a test scripts and leaves a record of what was asked of it.
#pragma once

#include <atomic>
#include <condition_variable>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "platform/av/AssetExportSession.h"

namespace korvane {

/// What a session will do and what it saw; outlives the session.
struct SessionScript {
    std::vector<FileType> supportedFileTypes{FileType::mp4};
    std::vector<float> progress;                 ///< reported one after the other by run()
    std::function<void()> whileRunning = [] {};  ///< after the progress
    bool waitsForCancel = false;                 ///< run() returns only once it is cancelled
    std::optional<int> endStatus;                ///< none: completed, or cancelled when it was
    std::exception_ptr error;

    bool ran = false;
    int cancelCalls = 0;
    std::filesystem::path outputPath;
    FileType outputFileType = FileType::mp4;
    std::optional<AudioMix> audioMix;
    std::optional<VideoComposition> videoComposition;
    std::optional<TimeRange> timeRange;
};

class FakeExportSession final : public ExportSession {
  public:
    explicit FakeExportSession(std::shared_ptr<SessionScript> script) : script_(std::move(script)) {}

    std::vector<FileType> supportedFileTypes() const override { return script_->supportedFileTypes; }

    void run() override {
        script_->ran = true;
        script_->outputPath = outputPath;
        script_->outputFileType = outputFileType;
        script_->audioMix = audioMix;
        script_->videoComposition = videoComposition;
        script_->timeRange = timeRange;
        for (const float fraction : script_->progress)
            progressObserver(fraction);
        script_->whileRunning();
        std::unique_lock lock(mutex_);
        if (script_->waitsForCancel)
            changed_.wait(lock, [this] { return cancelled_; });
        status_ = cancelled_ ? static_cast<int>(ExportStatus::cancelled)
                             : script_->endStatus.value_or(static_cast<int>(ExportStatus::completed));
    }

    void cancelExport() override {
        const std::lock_guard lock(mutex_);
        ++script_->cancelCalls;
        cancelled_ = true;
        changed_.notify_all();
    }

    int status() const override { return status_; }
    std::exception_ptr error() const override { return script_->error; }

  private:
    std::shared_ptr<SessionScript> script_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool cancelled_ = false;
    int status_ = static_cast<int>(ExportStatus::waiting);
};

}  // namespace korvane
