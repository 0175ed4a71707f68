#include "platform/ffmpeg/ColorDescription.h"

extern "C" {
#include <libavutil/mastering_display_metadata.h>
}

#include <algorithm>

namespace korvane {
namespace {

constexpr double kHlgPeakNits = 1000.0;        // nominal HLG display, ITU-R BT.2100
constexpr double kUnknownPqPeakNits = 1000.0;  // what most PQ pictures are graded to

zimg_matrix_coefficients_e matrixOf(const AVFrame& frame) {
    switch (frame.colorspace) {
        case AVCOL_SPC_BT709:
            return ZIMG_MATRIX_BT709;
        case AVCOL_SPC_FCC:
            return ZIMG_MATRIX_FCC;
        case AVCOL_SPC_BT470BG:
        case AVCOL_SPC_SMPTE170M:
            return ZIMG_MATRIX_ST170_M;
        case AVCOL_SPC_SMPTE240M:
            return ZIMG_MATRIX_ST240_M;
        case AVCOL_SPC_YCGCO:
            return ZIMG_MATRIX_YCGCO;
        case AVCOL_SPC_BT2020_NCL:
            return ZIMG_MATRIX_BT2020_NCL;
        case AVCOL_SPC_BT2020_CL:
            return ZIMG_MATRIX_BT2020_CL;
        case AVCOL_SPC_ICTCP:
            return ZIMG_MATRIX_ICTCP;
        default:
            break;
    }
    if (frame.color_trc == AVCOL_TRC_SMPTE2084 || frame.color_trc == AVCOL_TRC_ARIB_STD_B67)
        return ZIMG_MATRIX_BT2020_NCL;
    // Files that say nothing follow the custom of their size.
    const bool standardDefinition =
        std::max(frame.width, frame.height) < 1280 && std::min(frame.width, frame.height) < 720;
    return standardDefinition ? ZIMG_MATRIX_ST170_M : ZIMG_MATRIX_BT709;
}

/// Only wide gamuts are converted; the small differences between the television primaries are left alone, as
/// everything that shows such files does.
zimg_color_primaries_e primariesOf(const AVFrame& frame, bool highDynamicRange) {
    switch (frame.color_primaries) {
        case AVCOL_PRI_BT2020:
            return ZIMG_PRIMARIES_BT2020;
        case AVCOL_PRI_SMPTE431:
            return ZIMG_PRIMARIES_ST431_2;
        case AVCOL_PRI_SMPTE432:
            return ZIMG_PRIMARIES_ST432_1;
        case AVCOL_PRI_UNSPECIFIED:
            return highDynamicRange ? ZIMG_PRIMARIES_BT2020 : ZIMG_PRIMARIES_BT709;
        default:
            return ZIMG_PRIMARIES_BT709;
    }
}

double pqPeakNits(const AVFrame& frame) {
    if (const AVFrameSideData* side = av_frame_get_side_data(&frame, AV_FRAME_DATA_CONTENT_LIGHT_LEVEL)) {
        const auto* level = reinterpret_cast<const AVContentLightMetadata*>(side->data);
        if (level->MaxCLL > 0)
            return level->MaxCLL;
    }
    if (const AVFrameSideData* side =
            av_frame_get_side_data(&frame, AV_FRAME_DATA_MASTERING_DISPLAY_METADATA)) {
        const auto* display = reinterpret_cast<const AVMasteringDisplayMetadata*>(side->data);
        if (display->has_luminance && display->max_luminance.num > 0)
            return av_q2d(display->max_luminance);
    }
    return kUnknownPqPeakNits;
}

zimg_chroma_location_e chromaOf(AVChromaLocation location) {
    switch (location) {
        case AVCHROMA_LOC_CENTER:
            return ZIMG_CHROMA_CENTER;
        case AVCHROMA_LOC_TOPLEFT:
            return ZIMG_CHROMA_TOP_LEFT;
        case AVCHROMA_LOC_TOP:
            return ZIMG_CHROMA_TOP;
        case AVCHROMA_LOC_BOTTOMLEFT:
            return ZIMG_CHROMA_BOTTOM_LEFT;
        case AVCHROMA_LOC_BOTTOM:
            return ZIMG_CHROMA_BOTTOM;
        default:
            return ZIMG_CHROMA_LEFT;
    }
}

bool isFullRangeFormat(int format) {
    return format == AV_PIX_FMT_YUVJ420P || format == AV_PIX_FMT_YUVJ422P || format == AV_PIX_FMT_YUVJ444P ||
           format == AV_PIX_FMT_YUVJ440P || format == AV_PIX_FMT_YUVJ411P;
}

}  // namespace

ColorDescription describeColors(const AVFrame& frame) {
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    ColorDescription colors;
    const bool pq = frame.color_trc == AVCOL_TRC_SMPTE2084;
    const bool hlg = frame.color_trc == AVCOL_TRC_ARIB_STD_B67;
    colors.highDynamicRange = pq || hlg;
    if (pq) {
        colors.transfer = ZIMG_TRANSFER_ST2084;
        colors.peak = std::clamp(pqPeakNits(frame), kReferenceWhiteNits, 10000.0) / kReferenceWhiteNits;
    }
    if (hlg) {
        colors.transfer = ZIMG_TRANSFER_ARIB_B67;
        colors.peak = kHlgPeakNits / kReferenceWhiteNits;
    }
    colors.primaries = primariesOf(frame, colors.highDynamicRange);
    colors.chroma = chromaOf(frame.chroma_location);
    const bool rgb = format && (format->flags & AV_PIX_FMT_FLAG_RGB) != 0;
    const bool gray = format && format->nb_components <= 2 && !rgb;
    if (rgb) {
        colors.family = ZIMG_COLOR_RGB;
        colors.matrix = ZIMG_MATRIX_RGB;
        colors.range = frame.color_range == AVCOL_RANGE_MPEG ? ZIMG_RANGE_LIMITED : ZIMG_RANGE_FULL;
        return colors;
    }
    colors.matrix = matrixOf(frame);
    const bool full = frame.color_range == AVCOL_RANGE_JPEG || isFullRangeFormat(frame.format) ||
                      (gray && frame.color_range == AVCOL_RANGE_UNSPECIFIED);
    colors.range = full ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
    return colors;
}

}  // namespace korvane
