// Writes an asset or a composition to one file. One session writes once. The file appears at its destination
// only when it is complete: until then it has no name there, and a stop or failure leaves nothing.
#pragma once

#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/av/Asset.h"
#include "platform/av/AudioMix.h"
#include "platform/av/Composition.h"
#include "platform/av/VideoComposition.h"

namespace korvane {

enum class ExportPreset {
    audioM4A,        ///< every audio track mixed to one AAC track; copied as it stands where that is possible
    highestQuality,  ///< H.264 High + AAC, visually lossless
};

enum class FileType { mp4, m4a };
/// Uniform type identifier, e.g. "public.mpeg-4".
std::string fileTypeIdentifier(FileType type);

enum class ExportStatus { unknown = 0, waiting = 1, exporting = 2, completed = 3, failed = 4, cancelled = 5 };

/// What VideoProcessor and VideoEditor need of a session; tests put their own in its place.
class ExportSession {
  public:
    virtual ~ExportSession() = default;

    virtual std::vector<FileType> supportedFileTypes() const = 0;

    // Configuration, before run().
    std::filesystem::path outputPath;
    FileType outputFileType = FileType::mp4;
    std::optional<AudioMix> audioMix;
    std::optional<VideoComposition> videoComposition;
    std::optional<TimeRange> timeRange;  ///< none: everything
    /// Called on each change of progress (0 to 1, never falling) from the session's threads.
    std::function<void(float)> progressObserver;

    /// Blocks until the file is written, failed, or cancelled. Never throws; status() and error() tell.
    virtual void run() = 0;
    /// Makes a running or later run() end as cancelled. Any thread, any number of times.
    virtual void cancelExport() = 0;

    /// The raw value of an ExportStatus, so that a value outside the enumeration can be told.
    virtual int status() const = 0;
    /// The error of a failed run, else null. May be null for a failed run too.
    virtual std::exception_ptr error() const = 0;
};

/// \return null when the preset can't be applied to the source (no tracks).
std::unique_ptr<ExportSession> makeExportSession(std::shared_ptr<Asset> asset, ExportPreset preset);
std::unique_ptr<ExportSession> makeExportSession(std::shared_ptr<const Composition> composition,
                                                 ExportPreset preset);

}  // namespace korvane
