#include "platform/ffmpeg/CanvasPictures.h"

extern "C" {
#include <libavutil/frame.h>
}

#include <cstring>
#include <new>

#include "platform/ffmpeg/FramePool.h"

namespace korvane {

void fillBlack(AVFrame& frame) {
    const int chromaRows = (frame.height + 1) / 2;
    std::memset(frame.data[0], 16,
                static_cast<std::size_t>(frame.linesize[0]) * static_cast<std::size_t>(frame.height));
    for (int i = 1; i < 3; ++i)
        std::memset(frame.data[i], 128,
                    static_cast<std::size_t>(frame.linesize[i]) * static_cast<std::size_t>(chromaRows));
}

std::shared_ptr<AVFrame> blackCanvas(int width, int height) {
    auto frame = FramePool(width, height).take();
    fillBlack(*frame);
    return frame;
}

std::shared_ptr<AVFrame> copyOfCanvas(const std::shared_ptr<const AVFrame>& canvas) {
    auto copy = FramePool(canvas->width, canvas->height).take();
    if (av_frame_copy(copy.get(), canvas.get()) < 0)
        throw std::bad_alloc();
    return copy;
}

std::size_t bytesOf(const AVFrame& canvas) {
    return static_cast<std::size_t>(canvas.linesize[0] + canvas.linesize[1]) *
           static_cast<std::size_t>(canvas.height);
}

CanvasPlane planeOf(const AVFrame& canvas, int plane) {
    const int shift = plane == 0 ? 0 : 1;
    return {canvas.data[plane], canvas.linesize[plane], (canvas.width + shift) >> shift,
            (canvas.height + shift) >> shift};
}

}  // namespace korvane
