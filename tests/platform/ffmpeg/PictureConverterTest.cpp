#include "platform/ffmpeg/PictureConverter.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/ffmpeg/Handles.h"

namespace korvane {
namespace {

using SharedFrame = std::shared_ptr<AVFrame>;

SharedFrame picture(int width, int height, AVPixelFormat format) {
    SharedFrame frame(makeFrame().release(), [](AVFrame* f) { av_frame_free(&f); });
    frame->width = width;
    frame->height = height;
    frame->format = format;
    frame->colorspace = AVCOL_SPC_BT709;
    frame->color_range = AVCOL_RANGE_MPEG;
    frame->chroma_location = AVCHROMA_LOC_LEFT;
    if (av_frame_get_buffer(frame.get(), 64) < 0)
        throw std::bad_alloc();
    return frame;
}

/// Fills each plane with f(plane, x, y), x and y in pixels of the plane.
template <class F>
SharedFrame painted(int width, int height, AVPixelFormat format, F f) {
    SharedFrame frame = picture(width, height, format);
    const int shift = format == AV_PIX_FMT_YUV420P ? 1 : 0;
    for (int i = 0; i < 3; ++i)
        for (int y = 0; y < height >> (i ? shift : 0); ++y)
            for (int x = 0; x < width >> (i ? shift : 0); ++x)
                frame->data[i][y * frame->linesize[i] + x] = static_cast<std::uint8_t>(f(i, x, y));
    return frame;
}

int sample(const AVFrame& frame, int plane, int x, int y) {
    return frame.data[plane][y * frame.linesize[plane] + x];
}

TEST(PictureConverter, aPictureOfCanvasSizeGoesThroughUnchanged) {
    const auto source = painted(128, 256, AV_PIX_FMT_YUV420P,
                                [](int i, int x, int y) { return 40 + ((x * 3 + y * 5 + i * 31) % 160); });
    PictureConverter converter({{128, 256}, {}, 128, 256});
    const auto canvas = converter.convert({source, 0});
    for (int i = 0; i < 3; ++i)
        for (int y = 0; y < 256 >> (i ? 1 : 0); y += 3)
            for (int x = 0; x < 128 >> (i ? 1 : 0); ++x)
                ASSERT_EQ(sample(*canvas, i, x, y), sample(*source, i, x, y));
}

TEST(PictureConverter, theCropFallsBetweenPixelsWhereTheNumbersSaySo) {
    // A ramp across: the canvas' left edge must stand at the exact fraction of the source.
    const auto source =
        painted(256, 64, AV_PIX_FMT_YUV420P, [](int i, int x, int) { return i ? 128 : 16 + x * 200 / 256; });
    const double shift = -70.25;
    PictureConverter converter({{256, 64}, {1.0, 0.0, 0.0, 1.0, shift, 0.0}, 64, 64});
    const auto canvas = converter.convert({source, 0});
    for (int x = 4; x < 60; ++x) {
        const double expected = 16 + (x - shift) * 200 / 256;
        EXPECT_NEAR(sample(*canvas, 0, x, 32), expected, 1.2) << x;
    }
}

TEST(PictureConverter, quarterTurnsKeepColourOnItsPixels) {
    // A colour edge with the same edge in brightness: after turning, colour must still change where
    // brightness does.
    const auto upright = painted(128, 128, AV_PIX_FMT_YUV444P, [](int i, int, int y) {
        return i == 0 ? (y < 63 ? 60 : 180) : (y < 63 ? 90 : 170);
    });
    // The same scene as a turned recording: columns instead of rows.
    const auto lying = painted(128, 128, AV_PIX_FMT_YUV444P, [](int i, int x, int) {
        return i == 0 ? (x < 63 ? 60 : 180) : (x < 63 ? 90 : 170);
    });
    PictureConverter direct({{128, 128}, {}, 128, 128});
    PictureConverter turned({{128, 128}, {0.0, 1.0, 1.0, 0.0, 0.0, 0.0}, 128, 128});
    const auto a = direct.convert({upright, 0});
    const auto b = turned.convert({lying, 0});
    for (int i = 0; i < 3; ++i)
        for (int y = 0; y < 128 >> (i ? 1 : 0); ++y)
            EXPECT_NEAR(sample(*a, i, 20, y), sample(*b, i, 20, y), 2) << "plane " << i << " row " << y;
}

class Mirrors : public testing::TestWithParam<int> {};

TEST_P(Mirrors, colourStaysOnItsPixelsInEveryOrientation) {
    // Brightness and colour change together along both directions; whatever the orientation, the canvas must
    // show the same.
    const auto scene = [](int i, double across, double down) {
        return std::lround(i == 0 ? 50 + across * 100 + down * 50 : 90 + across * 60 + down * 30);
    };
    const int n = 96;
    const bool swap = (GetParam() & 4) != 0;
    const bool mirrorX = (GetParam() & 2) != 0;
    const bool mirrorY = (GetParam() & 1) != 0;
    AffineTransform t = swap ? AffineTransform{0.0, 1.0, 1.0, 0.0, 0.0, 0.0} : AffineTransform{};
    t = t.concatenating(
        {mirrorX ? -1.0 : 1.0, 0.0, 0.0, mirrorY ? -1.0 : 1.0, mirrorX ? n : 0.0, mirrorY ? n : 0.0});
    const auto source = painted(n, n, AV_PIX_FMT_YUV444P, [&](int i, int x, int y) {
        const Point p = t.apply({x + 0.5, y + 0.5});
        return scene(i, p.x / n, p.y / n);
    });
    PictureConverter converter({{n, n}, t, n, n});
    const auto canvas = converter.convert({source, 0});
    for (int i = 0; i < 3; ++i)
        for (int y = 4; y < (n >> (i ? 1 : 0)) - 4; ++y)
            for (int x = 4; x < (n >> (i ? 1 : 0)) - 4; ++x) {
                // Left siting: a colour sample stands on an even column and between two rows.
                const double px = i ? 2 * x + 0.5 : x + 0.5;
                const double py = i ? 2 * y + 1.0 : y + 0.5;
                ASSERT_NEAR(sample(*canvas, i, x, y), scene(i, px / n, py / n), 1.0)
                    << "plane " << i << " at " << x << "," << y;
            }
}

INSTANTIATE_TEST_SUITE_P(AllEight, Mirrors, testing::Range(0, 8));

TEST(PictureConverter, ofAnInterlacedPictureTheFirstFieldIsShown) {
    for (const bool topFirst : {true, false}) {
        const auto source = painted(64, 64, AV_PIX_FMT_YUV420P,
                                    [](int i, int, int y) { return i ? 128 : (y % 2 == 0 ? 180 : 60); });
        source->interlaced_frame = 1;
        source->top_field_first = topFirst ? 1 : 0;
        PictureConverter converter({{64, 64}, {}, 64, 64});
        const auto canvas = converter.convert({source, 0});
        for (int y = 0; y < 64; ++y)
            ASSERT_EQ(sample(*canvas, 0, 30, y), topFirst ? 180 : 60) << y;
    }
}

TEST(PictureConverter, whereTheSourceDoesNotReachTheCanvasIsBlack) {
    const auto source = painted(64, 64, AV_PIX_FMT_YUV420P, [](int i, int, int) { return i ? 128 : 200; });
    PictureConverter converter({{64, 64}, {1.0, 0.0, 0.0, 1.0, 32.0, 32.0}, 128, 128});
    const auto canvas = converter.convert({source, 0});
    EXPECT_EQ(sample(*canvas, 0, 10, 10), 16);
    EXPECT_EQ(sample(*canvas, 0, 64, 64), 200);
    EXPECT_EQ(sample(*canvas, 0, 100, 64), 16);
    PictureConverter away({{64, 64}, {1.0, 0.0, 0.0, 1.0, 500.0, 0.0}, 128, 128});
    EXPECT_EQ(sample(*away.convert({source, 0}), 0, 64, 64), 16);
}

TEST(PictureConverter, aSourceThatChangesItsSizeAndFormatIsFollowed) {
    PictureConverter converter({{64, 64}, {}, 64, 64});
    for (const int size : {64, 32, 100}) {
        const auto flat =
            painted(size, size, AV_PIX_FMT_YUV420P, [](int i, int, int) { return i ? 140 : 120; });
        EXPECT_EQ(sample(*converter.convert({flat, 0}), 0, 30, 30), 120) << size;
    }
    const auto grey = picture(64, 64, AV_PIX_FMT_GRAY8);
    for (int y = 0; y < 64; ++y)
        std::fill_n(grey->data[0] + y * grey->linesize[0], 64, std::uint8_t{126});
    const auto canvas = converter.convert({grey, 0});
    EXPECT_EQ(sample(*canvas, 0, 30, 30), 126);
    EXPECT_EQ(sample(*canvas, 1, 15, 15), 128);
}

TEST(PictureConverter, halfTransparentAndPackedFormatsAreUnderstood) {
    // A flat grey in many layouts comes out as the same grey.
    for (const AVPixelFormat format :
         {AV_PIX_FMT_RGB24, AV_PIX_FMT_BGRA, AV_PIX_FMT_RGBA64LE, AV_PIX_FMT_GBRP10}) {
        const auto source = picture(64, 64, format);
        source->color_range = AVCOL_RANGE_JPEG;
        source->colorspace = AVCOL_SPC_RGB;
        for (int i = 0; i < 3 && source->data[i]; ++i)
            for (int y = 0; y < 64; ++y) {
                std::uint8_t* row = source->data[i] + y * source->linesize[i];
                if (format == AV_PIX_FMT_GBRP10)
                    std::fill_n(reinterpret_cast<std::uint16_t*>(row), 64, std::uint16_t{512});
                else
                    std::fill_n(row, source->linesize[i], std::uint8_t{128});
            }
        PictureConverter converter({{64, 64}, {}, 64, 64});
        const auto canvas = converter.convert({source, 0});
        EXPECT_NEAR(sample(*canvas, 0, 30, 30), 16 + 219 * 128.0 / 255, 1.0) << format;
        EXPECT_NEAR(sample(*canvas, 1, 15, 15), 128, 1) << format;
    }
}

}  // namespace
}  // namespace korvane
