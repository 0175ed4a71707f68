// What both export sessions share: status, error, progress, and stopping.
#pragma once

#include <atomic>
#include <exception>
#include <mutex>
#include <stop_token>

#include "platform/av/AssetExportSession.h"

namespace korvane {

class SessionBase : public ExportSession {
  public:
    void run() final;
    void cancelExport() final { stop_.request_stop(); }
    int status() const final { return static_cast<int>(status_.load()); }
    std::exception_ptr error() const final;

  protected:
    /// Writes the file. Throws what went wrong, CancellationError when `stop` was requested.
    virtual void write(const std::stop_token& stop) = 0;
    /// Tells the observer, unless the change is too small to see. Values never fall. Any one thread at a
    /// time.
    void report(double progress);

  private:
    std::stop_source stop_;
    std::atomic<ExportStatus> status_ = ExportStatus::waiting;
    mutable std::mutex mutex_;
    std::exception_ptr error_;
    float reported_ = 0.0F;
};

std::unique_ptr<ExportSession> makeAudioExportSession(std::shared_ptr<Asset> asset);
std::unique_ptr<ExportSession> makeMovieExportSession(std::shared_ptr<const Composition> composition);

}  // namespace korvane
