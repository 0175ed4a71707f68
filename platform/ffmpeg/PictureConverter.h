// Turns decoded pictures of any format, size, orientation and colour into canvas pictures: crops first, then
// scales, then turns.
#pragma once

#include <memory>

#include "platform/ffmpeg/DecodedPicture.h"
#include "platform/geometry/Geometry.h"

namespace korvane {

/// How a source is to be understood and placed.
struct PicturePlacement {
    Size naturalSize;  ///< units that `transform` starts from
    AffineTransform
        transform;        ///< natural size units to canvas pixels, y down; turns by quarters, mirrors, scales
    int canvasWidth = 0;  ///< pixels, even
    int canvasHeight = 0;  ///< pixels, even
};

/// Lives on one thread at a time. Keeps its scaling plan while the source's form stays the same.
class PictureConverter {
  public:
    explicit PictureConverter(PicturePlacement placement);
    ~PictureConverter();

    /// \return planar YUV 4:2:0, 8 bit, BT.709, limited range, left chroma siting, canvas size; nothing else
    /// holds
    ///         it. Black where the source does not reach. High dynamic range is tone-mapped.
    /// \throws MediaError when the picture's format can't be converted, std::bad_alloc.
    std::shared_ptr<AVFrame> convert(const DecodedPicture& picture);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace korvane
