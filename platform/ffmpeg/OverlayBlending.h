// Lays a picture with transparency over a canvas picture, in the canvas' own colour space.
#pragma once

#include <cstdint>
#include <vector>

struct AVFrame;

namespace korvane {

/// A premultiplied BGRA picture, 8 bit, as Y'CbCr BT.709 limited range with coverage for each plane; its
/// colour planes are averaged at the places where 4:2:0 with left siting has its samples. Made once, laid
/// over many pictures.
class BlendPlanes {
  public:
    /// \param x,y  place of the top left corner on the canvas, may be negative.
    /// \param opacity  multiplies everything, 0 to 1.
    BlendPlanes(const std::uint8_t* bgra, int width, int height, int strideBytes, int x, int y,
                double opacity);

    /// Writes into `canvas` (planar YUV 4:2:0, 8 bit, writable) where the two overlap.
    void blendOnto(AVFrame& canvas) const;

  private:
    struct Plane {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        std::vector<std::uint16_t> coverage;  ///< 0 to 32768
        std::vector<std::uint16_t> value;     ///< premultiplied, x 128
    };
    static void blend(const Plane& plane, std::uint8_t* target, int stride, int columns, int rows);
    Plane planes_[3];
};

}  // namespace korvane
