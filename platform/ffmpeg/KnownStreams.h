// What was learned of a file's streams by decoding some of them. An index does not say how far pictures are
// decoded ahead of being shown, so finding that out costs as much as ten pictures; who opens the file again
// need not do it again. Immutable; shared between threads.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "platform/ffmpeg/Handles.h"

namespace korvane {

class KnownStreams {
  public:
    /// Of a file whose streams have been looked at. Null where that would not spare anybody anything: other
    /// files than ISO media are looked through anew each time.
    static std::shared_ptr<const KnownStreams> of(const AVFormatContext& format,
                                                  const std::filesystem::path& path);

    /// Tells a file just opened what is known. \return false, and nothing has changed, when it is another
    /// file by now, or has other streams.
    bool tell(AVFormatContext& format, const std::filesystem::path& path) const;

  private:
    /// A file that was changed or replaced is another one.
    struct Identity {
        std::uintmax_t bytes = 0;
        std::filesystem::file_time_type changed;
        friend bool operator==(const Identity&, const Identity&) = default;
    };
    static std::optional<Identity> identityOf(const std::filesystem::path& path);

    struct FreeParameters {
        void operator()(AVCodecParameters* p) const { avcodec_parameters_free(&p); }
    };
    struct Stream {
        std::unique_ptr<AVCodecParameters, FreeParameters> codec;
        std::int64_t start = 0;
        AVRational meanRate{};
        AVRational baseRate{};
        AVRational pixelAspect{};
    };
    Identity file_;
    std::int64_t start_ = 0;
    std::vector<Stream> streams_;
};

}  // namespace korvane
