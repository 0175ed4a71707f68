// One decoded picture of a source, in whatever form its codec gave it. Cheap to copy; the pixels are shared
// and never written to.
#pragma once

#include <cstdint>
#include <memory>

struct AVFrame;

namespace korvane {

struct DecodedPicture {
    std::shared_ptr<const AVFrame> frame;
    /// Presentation ticks of the source stream; together with the stream it names the picture.
    std::int64_t ticks = 0;
    explicit operator bool() const { return frame != nullptr; }
};

}  // namespace korvane
