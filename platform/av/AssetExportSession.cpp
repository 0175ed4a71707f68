#include "platform/av/AssetExportSession.h"

#include <algorithm>

#include "platform/av/SessionBase.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

// A bar shows no smaller step, and an hour of sound has 170,000 packets.
constexpr float kSmallestStep = 0.001F;

}  // namespace

std::string fileTypeIdentifier(FileType type) {
    switch (type) {
        case FileType::mp4:
            return "public.mpeg-4";
        case FileType::m4a:
            return "public.mpeg-4-audio";
    }
    return "";
}

void SessionBase::run() {
    if (status_.exchange(ExportStatus::exporting) != ExportStatus::waiting) {
        status_ = ExportStatus::failed;
        const std::scoped_lock lock(mutex_);
        error_ = std::make_exception_ptr(MediaError("An export session writes only once."));
        return;
    }
    try {
        checkCancelled(stop_.get_token());
        write(stop_.get_token());
        report(1.0);
        status_ = ExportStatus::completed;
    } catch (const CancellationError&) {
        status_ = ExportStatus::cancelled;
    } catch (...) {
        const std::scoped_lock lock(mutex_);
        error_ = std::current_exception();
        status_ = ExportStatus::failed;
    }
}

std::exception_ptr SessionBase::error() const {
    const std::scoped_lock lock(mutex_);
    return error_;
}

void SessionBase::report(double progress) {
    const float value = std::clamp(static_cast<float>(progress), 0.0F, 1.0F);
    const bool visible = value >= reported_ + kSmallestStep || (value >= 1.0F && reported_ < 1.0F);
    if (!visible)
        return;
    reported_ = value;
    if (progressObserver)
        progressObserver(value);
}

std::unique_ptr<ExportSession> makeExportSession(std::shared_ptr<Asset> asset, ExportPreset preset) {
    if (preset != ExportPreset::audioM4A || asset->loadTracks(MediaType::audio).empty())
        return nullptr;
    return makeAudioExportSession(std::move(asset));
}

std::unique_ptr<ExportSession> makeExportSession(std::shared_ptr<const Composition> composition,
                                                 ExportPreset preset) {
    if (preset != ExportPreset::highestQuality || composition->tracks().empty())
        return nullptr;
    return makeMovieExportSession(std::move(composition));
}

}  // namespace korvane
