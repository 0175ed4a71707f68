// Decodes one audio stream to float samples on the file's own time line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <stop_token>

#include "platform/time/MediaTime.h"

namespace korvane {

/// Interleaved float samples, full scale 1.0.
struct AudioFormat {
    int rateHz = 0;
    int channels = 0;  ///< 1 or 2; more channels are mixed down without clipping, mono goes to both of two
    friend bool operator==(const AudioFormat&, const AudioFormat&) = default;
};

/// Lives on one thread at a time. Sample n of the output sounds at n / rateHz seconds after time 0 of the
/// file, exactly: codec delay, edit lists and late starts are accounted for, and gaps are silence. The
/// samples of a position do not depend on what was read before.
class AudioDecoder {
  public:
    /// \param streamIndex  index in the container, -1: the first audio stream.
    /// \throws MediaError when the file can't be opened, has no such stream, or no decoder exists for it.
    static std::unique_ptr<AudioDecoder> open(const std::filesystem::path& path, int streamIndex,
                                              AudioFormat format, std::stop_token stop = {});
    virtual ~AudioDecoder() = default;

    virtual AudioFormat format() const = 0;

    /// Fills `out` (interleaved, a whole number of frames) with the samples from `position` on; what lies
    /// before the first or after the last sound is silence. Going on where the last call ended is cheap,
    /// jumps seek. \return frames of `out` that lie before the end of the track: less than asked for only at
    /// the end. \throws MediaError when the file can't be read any more, CancellationError once the token is
    /// stopped.
    virtual std::int64_t read(std::int64_t position, std::span<float> out) = 0;
};

}  // namespace korvane
