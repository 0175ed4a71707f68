// Finds the picture that a source shows at a time.
#pragma once

#include <filesystem>
#include <memory>
#include <stop_token>

#include "platform/ffmpeg/DecodedPicture.h"
#include "platform/time/MediaTime.h"

namespace korvane {

class KnownStreams;

/// Lives on one thread at a time. Decodes with up to `threads` threads of its own.
class VideoDecoder {
  public:
    /// \param known  what a probe learned of the file, which makes opening quicker.
    /// \throws MediaError when the file can't be opened or no decoder exists for the stream,
    /// CancellationError.
    static std::unique_ptr<VideoDecoder> open(const std::filesystem::path& path, int streamIndex, int threads,
                                              std::stop_token stop,
                                              const std::shared_ptr<const KnownStreams>& known = nullptr);
    virtual ~VideoDecoder() = default;

    /// The last picture whose presentation time is <= `t` (time 0 is the start of the file); before the first
    /// picture, the first; after the last, the last. Which one never depends on what was asked before.
    /// Non-decreasing times are cheap: what lies between is decoded without being shown, or jumped over where
    /// a key picture lies in between. Blocks. \throws MediaError when the file ends before its own end or
    /// nothing in it can be decoded, CancellationError.
    virtual DecodedPicture pictureAt(MediaTime t) = 0;

    /// Pictures decoded since this was opened, whether they were asked for or only lay on the way.
    virtual std::int64_t decodedPictures() const = 0;
};

}  // namespace korvane
