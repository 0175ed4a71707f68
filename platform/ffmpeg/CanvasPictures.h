// Canvas pictures that come from no source.
#pragma once

#include <memory>

struct AVFrame;

namespace korvane {

/// Planar YUV 4:2:0, 8 bit, BT.709 limited range, black. \throws std::bad_alloc
std::shared_ptr<AVFrame> blackCanvas(int width, int height);

/// A writable copy with the same tags. \throws std::bad_alloc
std::shared_ptr<AVFrame> copyOfCanvas(const std::shared_ptr<const AVFrame>& canvas);

/// Fills a planar 8-bit YUV 4:2:0 picture with limited-range black.
void fillBlack(AVFrame& frame);

}  // namespace korvane
