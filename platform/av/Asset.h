// A source file as the product sees it: tracks on one time line that starts at 0. An Asset is opened on the
// first load, read-only, and safe to use from one thread at a time; its tracks are plain values.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <stop_token>
#include <vector>

#include "platform/geometry/Geometry.h"
#include "platform/time/MediaTime.h"

namespace korvane {

class KnownStreams;

enum class MediaType { video, audio };

/// "vide" or "soun", the four-character names of ISO base media handlers.
const char* mediaTypeName(MediaType type);

/// One track of a source. Built by Asset; tests may build their own.
struct AssetTrack {
    std::filesystem::path path;
    MediaType mediaType = MediaType::video;
    int streamIndex = 0;  ///< index in the container
    TimeRange timeRange;  ///< where the track has content, on the asset's time line

    // Video only.
    Size naturalSize;  ///< stored size with the pixel aspect applied to the width, before orientation
    AffineTransform preferredTransform;  ///< stored orientation, in natural size units, moved to the origin
    float nominalFrameRate = 0.0F;       ///< frames/s; 0 when unknown
    std::shared_ptr<const KnownStreams> known;  ///< makes opening quicker; may be null

    // Audio only.
    int sampleRateHz = 0;
    int channels = 0;
};

class Asset {
  public:
    /// \param stop  ends a load that takes long (a file whose headers don't know its length is read as a
    /// whole).
    explicit Asset(std::filesystem::path path, std::stop_token stop = {});
    virtual ~Asset();
    Asset(const Asset&) = delete;
    Asset& operator=(const Asset&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// True when the file opens as media and has at least one track. Never throws.
    virtual bool isReadable();
    /// True when every first track can be decoded here. Never throws.
    virtual bool isPlayable();

    /// Tracks in the container's order; attached pictures are not video tracks, and sound that can't be
    /// decoded here is left out where there is other sound. Blocks. \throws MediaError when the file can't be
    /// opened or understood; CancellationError, like loadDuration.
    virtual std::vector<AssetTrack> loadTracks(MediaType type);

    /// From time 0 to the end of the longest track; read from the packets where the container has no
    /// trustworthy duration. Never negative. Blocks. \throws MediaError
    virtual MediaTime loadDuration();

  private:
    struct Contents;
    /// What the file holds; with only sound in mind, from a quicker look. Kept.
    const Contents& contents(bool soundOnly);

    std::filesystem::path path_;
    std::stop_token stop_;
    std::mutex mutex_;
    std::unique_ptr<Contents> contents_;
    std::unique_ptr<Contents> soundContents_;
};

}  // namespace korvane
