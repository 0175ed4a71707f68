#include "platform/ffmpeg/PlanarForm.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstring>

#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/Handles.h"
#include "platform/ffmpeg/MediaError.h"

namespace korvane {
namespace {

using SharedFrame = std::shared_ptr<AVFrame>;

bool isAligned(const AVFrame& frame) {
    for (int i = 0; i < 3 && frame.data[i]; ++i)
        if (reinterpret_cast<std::uintptr_t>(frame.data[i]) % 32 != 0 || frame.linesize[i] % 32 != 0 ||
            frame.linesize[i] <= 0)
            return false;
    return true;
}

/// Three planes of native-endian whole samples, which is what the scaler reads.
bool isPlanar(const AVPixFmtDescriptor& format) {
    constexpr unsigned kForeign = AV_PIX_FMT_FLAG_BE | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM |
                                  AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BAYER;
    if ((format.flags & kForeign) != 0 || format.nb_components < 3)
        return false;
    const bool isFloat = (format.flags & AV_PIX_FMT_FLAG_FLOAT) != 0;
    bool planes[4] = {};
    for (int i = 0; i < 3; ++i) {
        const AVComponentDescriptor& c = format.comp[i];
        const int bytes = isFloat ? 4 : (c.depth > 8 ? 2 : 1);
        if (c.shift != 0 || c.offset != 0 || c.step != bytes || c.depth > (isFloat ? 32 : 16) ||
            planes[c.plane])
            return false;
        planes[c.plane] = true;
    }
    return planes[0] && planes[1] && planes[2] && format.log2_chroma_w <= 2 && format.log2_chroma_h <= 2;
}

AVPixelFormat planarYuv(int depth, int log2ChromaWidth, int log2ChromaHeight) {
    for (const AVPixFmtDescriptor* d = av_pix_fmt_desc_next(nullptr); d; d = av_pix_fmt_desc_next(d)) {
        const AVPixelFormat id = av_pix_fmt_desc_get_id(d);
        const bool isYuv =
            (d->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_ALPHA | AV_PIX_FMT_FLAG_BE)) == 0 &&
            d->nb_components == 3;
        if (isYuv && isPlanar(*d) && d->comp[0].depth == depth && d->log2_chroma_w == log2ChromaWidth &&
            d->log2_chroma_h == log2ChromaHeight && std::strncmp(d->name, "yuvj", 4) != 0)
            return id;
    }
    return AV_PIX_FMT_NONE;
}

AVPixelFormat planarRgb(int depth) {
    switch (depth) {
        case 9:
            return AV_PIX_FMT_GBRP9;
        case 10:
            return AV_PIX_FMT_GBRP10;
        case 12:
            return AV_PIX_FMT_GBRP12;
        case 14:
            return AV_PIX_FMT_GBRP14;
        default:
            return depth <= 8 ? AV_PIX_FMT_GBRP : AV_PIX_FMT_GBRP16;
    }
}

AVPixelFormat planarFormOf(const AVPixFmtDescriptor& format) {
    int depth = 0;
    for (int i = 0; i < format.nb_components; ++i)
        depth = std::max(depth, format.comp[i].depth);
    if ((format.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BAYER)) != 0)
        return planarRgb(depth);
    if (format.nb_components <= 2)
        return planarYuv(std::max(8, depth), 1, 1);
    for (const int d : {depth, 16}) {
        const AVPixelFormat id = planarYuv(d, format.log2_chroma_w, format.log2_chroma_h);
        if (id != AV_PIX_FMT_NONE)
            return id;
    }
    return AV_PIX_FMT_NONE;
}

SharedFrame allocated(const AVFrame& like, AVPixelFormat format) {
    SharedFrame frame(makeFrame().release(), [](AVFrame* f) { av_frame_free(&f); });
    frame->format = format;
    frame->width = like.width;
    frame->height = like.height;
    if (av_frame_get_buffer(frame.get(), 64) < 0 || av_frame_copy_props(frame.get(), &like) < 0)
        throw std::bad_alloc();
    return frame;
}

void fillNeutral(AVFrame& frame, int plane, int depth) {
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const int rows = AV_CEIL_RSHIFT(frame.height, format->log2_chroma_h);
    const int columns = AV_CEIL_RSHIFT(frame.width, format->log2_chroma_w);
    for (int y = 0; y < rows; ++y) {
        std::uint8_t* row = frame.data[plane] + static_cast<std::ptrdiff_t>(y) * frame.linesize[plane];
        if (depth <= 8)
            std::memset(row, 128, static_cast<std::size_t>(columns));
        else
            std::fill_n(reinterpret_cast<std::uint16_t*>(row), columns,
                        static_cast<std::uint16_t>(1 << (depth - 1)));
    }
}

/// Repeats the last column and row of one plane up to a larger size.
void extendPlane(AVFrame& to, const AVFrame& from, int plane, int width, int height, int newWidth,
                 int newHeight, int bytes) {
    for (int y = 0; y < newHeight; ++y) {
        const std::uint8_t* source =
            from.data[plane] + static_cast<std::ptrdiff_t>(std::min(y, height - 1)) * from.linesize[plane];
        std::uint8_t* target = to.data[plane] + static_cast<std::ptrdiff_t>(y) * to.linesize[plane];
        std::memcpy(target, source, static_cast<std::size_t>(width) * static_cast<std::size_t>(bytes));
        for (int x = width; x < newWidth; ++x)
            std::memcpy(target + x * bytes, source + (width - 1) * bytes, static_cast<std::size_t>(bytes));
    }
}

/// The scaler wants every colour sample whole.
std::shared_ptr<const AVFrame> grownToWholeColorSamples(const std::shared_ptr<const AVFrame>& frame) {
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame->format));
    const int width = FFALIGN(frame->width, 1 << format->log2_chroma_w);
    const int height = FFALIGN(frame->height, 1 << format->log2_chroma_h);
    if (width == frame->width && height == frame->height)
        return frame;
    SharedFrame grown(makeFrame().release(), [](AVFrame* f) { av_frame_free(&f); });
    grown->format = frame->format;
    grown->width = width;
    grown->height = height;
    if (av_frame_get_buffer(grown.get(), 64) < 0 || av_frame_copy_props(grown.get(), frame.get()) < 0)
        throw std::bad_alloc();
    const int bytes = format->comp[0].step;
    for (int i = 0; i < 3; ++i) {
        const int shiftX = i == 0 ? 0 : format->log2_chroma_w;
        const int shiftY = i == 0 ? 0 : format->log2_chroma_h;
        extendPlane(*grown, *frame, i, AV_CEIL_RSHIFT(frame->width, shiftX),
                    AV_CEIL_RSHIFT(frame->height, shiftY), width >> shiftX, height >> shiftY, bytes);
    }
    grown->crop_right = static_cast<std::size_t>(width - frame->width);
    grown->crop_bottom = static_cast<std::size_t>(height - frame->height);
    return grown;
}

}  // namespace

struct PlanarForm::State {
    Scaler scaler;
    int width = 0;
    int height = 0;
    int from = -1;
};

PlanarForm::PlanarForm() : state_(std::make_unique<State>()) {}
PlanarForm::~PlanarForm() = default;

std::shared_ptr<const AVFrame> PlanarForm::firstField(const std::shared_ptr<const AVFrame>& frame) {
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame->format));
    if (!frame->interlaced_frame || !format || frame->height % (2 << format->log2_chroma_h) != 0)
        return frame;
    SharedFrame field(owned<Frame>(av_frame_clone(frame.get())).release(),
                      [](AVFrame* f) { av_frame_free(&f); });
    field->height /= 2;
    field->interlaced_frame = 0;
    for (int i = 0; i < AV_NUM_DATA_POINTERS && field->data[i]; ++i) {
        if (!frame->top_field_first)
            field->data[i] += field->linesize[i];
        field->linesize[i] *= 2;
    }
    return field;
}

std::shared_ptr<const AVFrame> PlanarForm::of(const std::shared_ptr<const AVFrame>& frame) {
    return grownToWholeColorSamples(planes(frame));
}

std::shared_ptr<const AVFrame> PlanarForm::planes(const std::shared_ptr<const AVFrame>& frame) {
    const auto from = static_cast<AVPixelFormat>(frame->format);
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(from);
    if (!format)
        throw MediaError("The video has pictures of an unknown format.");
    if (isPlanar(*format) && isAligned(*frame))
        return frame;
    if (isPlanar(*format)) {
        SharedFrame copy = allocated(*frame, from);
        if (av_frame_copy(copy.get(), frame.get()) < 0)
            throw std::bad_alloc();
        return copy;
    }
    const AVPixelFormat to = planarFormOf(*format);
    if (to == AV_PIX_FMT_NONE)
        throw MediaError(std::string("The video has pictures of a format that can't be converted (") +
                         format->name + ").");
    SharedFrame result = allocated(*frame, to);
    const bool plainGray = format->nb_components == 1 &&
                           (format->flags & (AV_PIX_FMT_FLAG_BE | AV_PIX_FMT_FLAG_PAL |
                                             AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_BAYER)) == 0;
    if (plainGray && format->comp[0].depth <= 16) {
        const int depth = std::max(8, format->comp[0].depth);
        av_image_copy_plane(result->data[0], result->linesize[0], frame->data[0], frame->linesize[0],
                            frame->width * (depth > 8 ? 2 : 1), frame->height);
        fillNeutral(*result, 1, depth);
        fillNeutral(*result, 2, depth);
        // The library calls grey full range unless told; keep what was said or meant.
        if (frame->color_range == AVCOL_RANGE_UNSPECIFIED)
            result->color_range = AVCOL_RANGE_JPEG;
        return result;
    }
    if (!state_->scaler || state_->from != from || state_->width != frame->width ||
        state_->height != frame->height) {
        state_->scaler.reset(sws_getContext(frame->width, frame->height, from, frame->width, frame->height,
                                            to, SWS_POINT | SWS_FULL_CHR_H_INP | SWS_ACCURATE_RND, nullptr,
                                            nullptr, nullptr));
        if (!state_->scaler)
            throw MediaError(std::string("The video has pictures of a format that can't be converted (") +
                             format->name + ").");
        // Values must not change: same range on both sides.
        const int* table = sws_getCoefficients(SWS_CS_DEFAULT);
        sws_setColorspaceDetails(state_->scaler.get(), table, 1, table, 1, 0, 1 << 16, 1 << 16);
        state_->from = from;
        state_->width = frame->width;
        state_->height = frame->height;
    }
    const int rows = sws_scale(state_->scaler.get(), frame->data, frame->linesize, 0, frame->height,
                               result->data, result->linesize);
    if (rows < 0)
        throwMediaError(rows, "Converting the picture of", "the video");
    return result;
}

}  // namespace korvane
