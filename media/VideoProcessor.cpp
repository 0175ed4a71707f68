#include "media/VideoProcessor.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <system_error>
#include <utility>

#include "media/ProcessingError.h"
#include "platform/tasks/Cancellation.h"
#include "platform/tasks/ProgressReporter.h"

namespace korvane {
namespace {

/// A random (version 4) UUID, RFC 4122, in upper case.
std::string freshUuid() {
    std::random_device random;
    std::array<std::uint32_t, 4> words{random(), random(), random(), random()};
    words[1] = (words[1] & 0xFFFF0FFFU) | 0x00004000U;  // version
    words[2] = (words[2] & 0x3FFFFFFFU) | 0x80000000U;  // variant
    std::array<char, 37> text{};
    std::snprintf(text.data(), text.size(), "%08X-%04X-%04X-%04X-%04X%08X", words[0], words[1] >> 16U,
                  words[1] & 0xFFFFU, words[2] >> 16U, words[2] & 0xFFFFU, words[3]);
    return text.data();
}

std::filesystem::path freshAudioPath() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error)
        throw ProcessingError::exportFailed("There is no usable temporary folder. Check TMPDIR.");
    return folder / (freshUuid() + ".m4a");
}

/// Returns only for a file that was written completely.
void throwUnlessCompleted(const ExportSession& session) {
    switch (static_cast<ExportStatus>(session.status())) {
        case ExportStatus::completed:
            return;
        case ExportStatus::failed:
            if (const std::exception_ptr error = session.error())
                std::rethrow_exception(error);
            throw ProcessingError::exportFailed("Unknown error.");
        case ExportStatus::cancelled:
            throw CancellationError();
        case ExportStatus::unknown:
        case ExportStatus::waiting:
        case ExportStatus::exporting:
            break;
    }
    throw ProcessingError::exportFailed("Unexpected export status.");
}

}  // namespace

VideoProcessor::VideoProcessor(MainQueue& mainQueue, VideoProcessorPlatform platform)
    : mainQueue_(mainQueue), platform_(std::move(platform)) {}

ExtractedAudio VideoProcessor::extractAudio(const std::filesystem::path& from,
                                            std::function<void(double)> onProgress,
                                            std::stop_token stop) const {
    checkCancelled(stop);
    const std::shared_ptr<Asset> asset = platform_.openAsset(from, stop);
    if (asset->loadTracks(MediaType::audio).empty())
        throw ProcessingError::noAudioTrack();
    checkCancelled(stop);
    const double duration = asset->loadDuration().seconds();
    checkCancelled(stop);

    const auto session = platform_.makeSession(asset, ExportPreset::audioM4A);
    if (!session)
        throw ProcessingError::exportFailed("Could not create export session.");
    session->outputPath = freshAudioPath();
    session->outputFileType = FileType::m4a;

    ProgressReporter progress(mainQueue_, std::move(onProgress), stop);
    session->progressObserver = [&progress](float fraction) { progress.report(fraction); };
    {
        // Also fires when the stop was requested before.
        const std::stop_callback cancel(stop, [&session] { session->cancelExport(); });
        session->run();
    }
    session->progressObserver = nullptr;
    throwUnlessCompleted(*session);
    progress.finish();
    return {session->outputPath, duration};
}

}  // namespace korvane
