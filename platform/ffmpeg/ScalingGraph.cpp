#include "platform/ffmpeg/ScalingGraph.h"

#include <zimg.h>

#include <string>

#include "platform/ffmpeg/Handles.h"
#include "platform/ffmpeg/MediaError.h"

namespace korvane {
namespace {

struct FreeGraph {
    void operator()(zimg_filter_graph* graph) const { zimg_filter_graph_free(graph); }
};
struct FreeAligned {
    void operator()(void* memory) const { av_free(memory); }
};

std::string scalerText() {
    char text[512] = {};
    zimg_get_last_error(text, sizeof text);
    return text;
}

zimg_image_format zimgFormat(const ImageForm& form) {
    const AVPixFmtDescriptor* d = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(form.format));
    zimg_image_format result;
    zimg_image_format_default(&result, ZIMG_API_VERSION);
    result.width = static_cast<unsigned>(form.width);
    result.height = static_cast<unsigned>(form.height);
    const bool isFloat = (d->flags & AV_PIX_FMT_FLAG_FLOAT) != 0;
    result.pixel_type =
        isFloat ? ZIMG_PIXEL_FLOAT : (d->comp[0].depth > 8 ? ZIMG_PIXEL_WORD : ZIMG_PIXEL_BYTE);
    result.subsample_w = d->log2_chroma_w;
    result.subsample_h = d->log2_chroma_h;
    result.color_family = form.colors.family;
    result.matrix_coefficients = form.colors.matrix;
    result.transfer_characteristics = form.colors.transfer;
    result.color_primaries = form.colors.primaries;
    result.depth = static_cast<unsigned>(d->comp[0].depth);
    result.pixel_range = form.colors.range;
    result.field_parity = ZIMG_FIELD_PROGRESSIVE;
    result.chroma_location = form.colors.chroma;
    if (form.seen) {
        result.active_region.left = form.seen->x;
        result.active_region.top = form.seen->y;
        result.active_region.width = form.seen->width;
        result.active_region.height = form.seen->height;
    }
    return result;
}

/// The scaler's plane order for RGB is R, G, B; the media libraries keep G, B, R.
int planeOf(const ImageForm& form, int component) {
    if (form.colors.family != ZIMG_COLOR_RGB)
        return component;
    const AVPixFmtDescriptor* d = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(form.format));
    return d->comp[component].plane;
}

std::shared_ptr<AVFrame> frameOf(const ImageForm& form) {
    std::shared_ptr<AVFrame> frame(makeFrame().release(), [](AVFrame* f) { av_frame_free(&f); });
    frame->format = form.format;
    frame->width = form.width;
    frame->height = form.height;
    if (av_frame_get_buffer(frame.get(), 64) < 0)
        throw std::bad_alloc();
    return frame;
}

}  // namespace

ImageForm ImageForm::of(const AVFrame& frame, const ColorDescription& colors) {
    ImageForm form;
    form.width = frame.width;
    form.height = frame.height;
    form.format = frame.format;
    form.colors = colors;
    return form;
}

ImageForm ImageForm::yuv420(int width, int height) {
    ImageForm form;
    form.width = width;
    form.height = height;
    form.format = AV_PIX_FMT_YUV420P;
    return form;
}

ImageForm ImageForm::yuv444(int width, int height) {
    ImageForm form = yuv420(width, height);
    form.format = AV_PIX_FMT_YUV444P;
    return form;
}

ImageForm ImageForm::linearRgb(int width, int height) {
    ImageForm form = yuv420(width, height);
    form.format = AV_PIX_FMT_GBRPF32;
    form.colors.family = ZIMG_COLOR_RGB;
    form.colors.matrix = ZIMG_MATRIX_RGB;
    form.colors.transfer = ZIMG_TRANSFER_LINEAR;
    form.colors.range = ZIMG_RANGE_FULL;
    return form;
}

ImageForm ImageForm::cropped(Rect part) const {
    ImageForm form = *this;
    form.seen = part;
    return form;
}

struct ScalingGraph::State {
    ImageForm from;
    ImageForm to;
    std::unique_ptr<zimg_filter_graph, FreeGraph> graph;
    std::unique_ptr<void, FreeAligned> scratch;
    std::shared_ptr<AVFrame> own;
    std::shared_ptr<AVFrame> input;
};

ScalingGraph::ScalingGraph(const ImageForm& from, const ImageForm& to) : state_(std::make_unique<State>()) {
    state_->from = from;
    state_->to = to;
    const zimg_image_format source = zimgFormat(from);
    const zimg_image_format target = zimgFormat(to);
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.resample_filter = ZIMG_RESIZE_LANCZOS;
    params.filter_param_a = 3.0;
    params.resample_filter_uv = ZIMG_RESIZE_BICUBIC;
    params.dither_type = ZIMG_DITHER_NONE;
    params.cpu_type = ZIMG_CPU_AUTO;
    params.nominal_peak_luminance = kReferenceWhiteNits;
    params.allow_approximate_gamma = 1;
    state_->graph.reset(zimg_filter_graph_build(&source, &target, &params));
    std::size_t bytes = 0;
    if (!state_->graph || zimg_filter_graph_get_tmp_size(state_->graph.get(), &bytes) != ZIMG_ERROR_SUCCESS)
        throw MediaError("The colors or the size of the video can't be converted: " + scalerText() + ".");
    state_->scratch.reset(av_malloc(bytes + 64));
    if (!state_->scratch)
        throw std::bad_alloc();
}

ScalingGraph::~ScalingGraph() = default;

std::shared_ptr<AVFrame> ScalingGraph::inputFrame() {
    if (!state_->input)
        state_->input = frameOf(state_->from);
    return state_->input;
}

std::shared_ptr<AVFrame> ScalingGraph::run(const AVFrame& from, std::shared_ptr<AVFrame> to) {
    if (!to) {
        if (!state_->own)
            state_->own = frameOf(state_->to);
        to = state_->own;
    }
    zimg_image_buffer_const source{};
    zimg_image_buffer target{};
    source.version = target.version = ZIMG_API_VERSION;
    for (int i = 0; i < 3; ++i) {
        const int s = planeOf(state_->from, i);
        const int t = planeOf(state_->to, i);
        source.plane[i] = {from.data[s], from.linesize[s], ZIMG_BUFFER_MAX};
        target.plane[i] = {to->data[t], to->linesize[t], ZIMG_BUFFER_MAX};
    }
    const auto result = zimg_filter_graph_process(state_->graph.get(), &source, &target,
                                                  state_->scratch.get(), nullptr, nullptr, nullptr, nullptr);
    if (result != ZIMG_ERROR_SUCCESS)
        throw MediaError("The picture can't be converted: " + scalerText() + ".");
    return to;
}

}  // namespace korvane
