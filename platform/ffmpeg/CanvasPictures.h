// Canvas pictures that come from no source.
#pragma once

#include <cstdint>
#include <memory>

struct AVFrame;

namespace korvane {

/// Planar YUV 4:2:0, 8 bit, BT.709 limited range, black. \throws std::bad_alloc
std::shared_ptr<AVFrame> blackCanvas(int width, int height);

/// A writable copy with the same tags. \throws std::bad_alloc
std::shared_ptr<AVFrame> copyOfCanvas(const std::shared_ptr<const AVFrame>& canvas);

/// Fills a planar 8-bit YUV 4:2:0 picture with limited-range black.
void fillBlack(AVFrame& frame);

/// Memory that a canvas picture takes.
std::size_t bytesOf(const AVFrame& canvas);

/// One plane of a canvas picture, for who shows or reads it; valid as long as the picture.
struct CanvasPlane {
    const std::uint8_t* data = nullptr;
    int strideBytes = 0;
    int width = 0;
    int height = 0;
};
/// \param plane  0 luma, 1 Cb, 2 Cr; the colour planes have half the size.
CanvasPlane planeOf(const AVFrame& canvas, int plane);

}  // namespace korvane
