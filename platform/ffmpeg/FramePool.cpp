#include "platform/ffmpeg/FramePool.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include "platform/ffmpeg/Handles.h"

namespace korvane {
namespace {
constexpr int kAlign = 64;
}

FramePool::FramePool(int width, int height)
    : width_(width),
      height_(height),
      pool_(av_buffer_pool_init(static_cast<std::size_t>(av_image_get_buffer_size(
                                    AV_PIX_FMT_YUV420P, FFALIGN(width, 2 * kAlign), height, kAlign)) +
                                    kAlign,
                                nullptr)) {
    if (!pool_)
        throw std::bad_alloc();
}

FramePool::~FramePool() {
    av_buffer_pool_uninit(&pool_);
}

std::shared_ptr<AVFrame> FramePool::take() {
    std::shared_ptr<AVFrame> frame(makeFrame().release(), [](AVFrame* f) { av_frame_free(&f); });
    frame->buf[0] = av_buffer_pool_get(pool_);
    if (!frame->buf[0])
        throw std::bad_alloc();
    frame->width = width_;
    frame->height = height_;
    frame->format = AV_PIX_FMT_YUV420P;
    auto* start = reinterpret_cast<std::uint8_t*>(
        FFALIGN(reinterpret_cast<std::uintptr_t>(frame->buf[0]->data), kAlign));
    frame->linesize[0] = FFALIGN(width_, 2 * kAlign);
    frame->linesize[1] = frame->linesize[2] = frame->linesize[0] / 2;
    const int chromaRows = (height_ + 1) / 2;
    frame->data[0] = start;
    frame->data[1] = start + static_cast<std::ptrdiff_t>(frame->linesize[0]) * height_;
    frame->data[2] = frame->data[1] + static_cast<std::ptrdiff_t>(frame->linesize[1]) * chromaRows;
    frame->color_range = AVCOL_RANGE_MPEG;
    frame->colorspace = AVCOL_SPC_BT709;
    frame->color_primaries = AVCOL_PRI_BT709;
    frame->color_trc = AVCOL_TRC_BT709;
    frame->chroma_location = AVCHROMA_LOC_LEFT;
    frame->sample_aspect_ratio = {1, 1};
    return frame;
}

}  // namespace korvane
