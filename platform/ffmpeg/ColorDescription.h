// What colours a decoded picture means, with everything that its file leaves open decided.
#pragma once

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
}

#include <zimg.h>

namespace korvane {

struct ColorDescription {
    zimg_color_family_e family = ZIMG_COLOR_YUV;
    zimg_matrix_coefficients_e matrix = ZIMG_MATRIX_BT709;
    zimg_transfer_characteristics_e transfer = ZIMG_TRANSFER_BT709;
    zimg_color_primaries_e primaries = ZIMG_PRIMARIES_BT709;
    zimg_pixel_range_e range = ZIMG_RANGE_LIMITED;
    zimg_chroma_location_e chroma = ZIMG_CHROMA_LEFT;
    bool highDynamicRange = false;
    /// Brightest the picture can be, in units of reference white (203 cd/m2, ITU-R BT.2408).
    double peak = 1.0;
    bool operator==(const ColorDescription&) const = default;
};

/// Reference white of high dynamic range pictures, cd/m2 (ITU-R BT.2408).
inline constexpr double kReferenceWhiteNits = 203.0;

ColorDescription describeColors(const AVFrame& frame);

}  // namespace korvane
