#include "platform/ffmpeg/PictureTurning.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace korvane {
namespace {

constexpr int kBlock = 16;  // columns of a block stay in the first-level cache while they are read across

struct Plane {
    const std::uint8_t* from;
    std::ptrdiff_t fromStride;
    std::uint8_t* to;
    std::ptrdiff_t toStride;
    int width;  // of the result
    int height;
};

void mirrorRows(const Plane& p, Turning turning) {
    for (int y = 0; y < p.height; ++y) {
        const std::uint8_t* source = p.from + (turning.mirroredDown ? p.height - 1 - y : y) * p.fromStride;
        std::uint8_t* target = p.to + y * p.toStride;
        if (turning.mirroredAcross)
            std::reverse_copy(source, source + p.width, target);
        else
            std::memcpy(target, source, static_cast<std::size_t>(p.width));
    }
}

/// result(x, y) = source(row x', column y'), with x' and y' mirrored as wanted.
void transposeBlock(const Plane& p, Turning turning, int left, int top, int columns, int rows) {
    std::uint8_t block[kBlock][kBlock];
    for (int x = 0; x < columns; ++x) {
        const int sourceRow = turning.mirroredAcross ? p.width - 1 - (left + x) : left + x;
        const int sourceColumn = turning.mirroredDown ? p.height - top - rows : top;
        const std::uint8_t* source = p.from + sourceRow * p.fromStride + sourceColumn;
        for (int y = 0; y < rows; ++y)
            block[y][x] = source[turning.mirroredDown ? rows - 1 - y : y];
    }
    for (int y = 0; y < rows; ++y)
        std::memcpy(p.to + (top + y) * p.toStride + left, block[y], static_cast<std::size_t>(columns));
}

void transpose(const Plane& p, Turning turning) {
    for (int top = 0; top < p.height; top += kBlock)
        for (int left = 0; left < p.width; left += kBlock)
            transposeBlock(p, turning, left, top, std::min(kBlock, p.width - left),
                           std::min(kBlock, p.height - top));
}

}  // namespace

void turn(const AVFrame& from, Turning turning, AVFrame& to) {
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(to.format));
    for (int i = 0; i < 3; ++i) {
        const int shiftX = i == 0 ? 0 : format->log2_chroma_w;
        const int shiftY = i == 0 ? 0 : format->log2_chroma_h;
        const Plane plane{from.data[i],
                          from.linesize[i],
                          to.data[i],
                          to.linesize[i],
                          AV_CEIL_RSHIFT(to.width, shiftX),
                          AV_CEIL_RSHIFT(to.height, shiftY)};
        if (turning.transposed)
            transpose(plane, turning);
        else
            mirrorRows(plane, turning);
    }
}

}  // namespace korvane
