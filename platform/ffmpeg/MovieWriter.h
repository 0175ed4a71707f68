// Encodes pictures and sound into one MP4 or M4A file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>

#include "platform/ffmpeg/AudioDecoder.h"

struct AVFrame;

namespace korvane {

struct VideoEncoding {
    int width = 0;  ///< pixels, even
    int height = 0;
    int framesPerSecond = 0;  ///< constant
};

/// Lives on one thread at a time; the encoder has threads of its own. Until finish() returns, the destination
/// is not touched; an unfinished writer leaves nothing.
class MovieWriter {
  public:
    /// H.264 High (visually lossless, closed groups of at most 2 s) and AAC, with the index at the front.
    /// \param audio  none: no sound track.
    /// \throws MediaError when the file can't be made or an encoder is missing.
    static std::unique_ptr<MovieWriter> open(const std::filesystem::path& destination,
                                             std::optional<VideoEncoding> video,
                                             std::optional<AudioFormat> audio, std::stop_token stop);
    virtual ~MovieWriter() = default;

    /// Appends one picture (planar YUV 4:2:0, 8 bit, of the given size), shown for 1/framesPerSecond.
    virtual void writeVideo(const std::shared_ptr<AVFrame>& picture) = 0;
    /// Appends interleaved samples.
    virtual void writeAudio(std::span<const float> samples) = 0;
    /// Writes out what the encoders hold back and the index, and gives the file its name.
    virtual void finish() = 0;
    // All three: \throws MediaError (a full disk, say), CancellationError.
};

/// Writes the AAC packets of one stream as they stand into an M4A file, with their times on the file's time
/// line. \param progress  called with the written share of the stream, 0 to 1. \return false, having written
/// nothing, when the stream is not AAC that an M4A file holds as it stands, or when
///         it has gaps that have to be filled.
/// \throws MediaError, CancellationError
bool copyAacTrack(const std::filesystem::path& source, int streamIndex,
                  const std::filesystem::path& destination, const std::function<void(double)>& progress,
                  std::stop_token stop);

}  // namespace korvane
