#include "platform/ffmpeg/PictureTurning.h"

#include <gtest/gtest.h>

#include "platform/ffmpeg/Handles.h"

namespace korvane {
namespace {

Frame numbered(int width, int height, AVPixelFormat format) {
    Frame frame = makeFrame();
    frame->width = width;
    frame->height = height;
    frame->format = format;
    if (av_frame_get_buffer(frame.get(), 64) < 0)
        throw std::bad_alloc();
    return frame;
}

class Turns : public testing::TestWithParam<int> {};

TEST_P(Turns, everySampleLandsWhereTheTurningPutsIt) {
    const Turning turning{(GetParam() & 4) != 0, (GetParam() & 2) != 0, (GetParam() & 1) != 0};
    // Sizes that are no multiple of a block.
    const int width = 37;
    const int height = 53;
    const Frame from = numbered(turning.transposed ? height : width, turning.transposed ? width : height,
                                AV_PIX_FMT_YUV444P);
    const Frame to = numbered(width, height, AV_PIX_FMT_YUV444P);
    for (int y = 0; y < from->height; ++y)
        for (int x = 0; x < from->width; ++x)
            for (int i = 0; i < 3; ++i)
                from->data[i][y * from->linesize[i] + x] =
                    static_cast<std::uint8_t>((x * 7 + y * 13 + i * 50) & 255);
    turn(*from, turning, *to);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int u = turning.mirroredAcross ? width - 1 - x : x;
            const int v = turning.mirroredDown ? height - 1 - y : y;
            const int sourceX = turning.transposed ? v : u;
            const int sourceY = turning.transposed ? u : v;
            for (int i = 0; i < 3; ++i)
                ASSERT_EQ(to->data[i][y * to->linesize[i] + x], (sourceX * 7 + sourceY * 13 + i * 50) & 255)
                    << x << "," << y;
        }
}

INSTANTIATE_TEST_SUITE_P(AllEight, Turns, testing::Range(0, 8));

}  // namespace
}  // namespace korvane
