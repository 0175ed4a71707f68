#include "platform/ffmpeg/ToneMapper.h"

extern "C" {
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/pixdesc.h>
}

#include <cstdio>
#include <cstring>

#include "platform/ffmpeg/ErrorTranslation.h"
#include "platform/ffmpeg/Handles.h"

namespace korvane {
namespace {

// The curve is straight up to this value and bends above it: faces and skies keep their contrast, only
// highlights are pressed together.
constexpr double kStraightPart = 0.5;

void check(int result) {
    if (result < 0)
        throwMediaError(result, "Mapping the brightness of", "the video");
}

}  // namespace

struct ToneMapper::State {
    FilterGraph graph = owned<FilterGraph>(avfilter_graph_alloc());
    AVFilterContext* source = nullptr;
    AVFilterContext* sink = nullptr;
    std::int64_t count = 0;
};

ToneMapper::ToneMapper(int width, int height, double peak) : state_(std::make_unique<State>()) {
    AVFilterGraph* graph = state_->graph.get();
    graph->nb_threads = 1;
    char text[160];
    std::snprintf(text, sizeof text, "video_size=%dx%d:pix_fmt=%s:time_base=1/1000", width, height,
                  av_get_pix_fmt_name(AV_PIX_FMT_GBRPF32));
    check(avfilter_graph_create_filter(&state_->source, avfilter_get_by_name("buffer"), "in", text, nullptr,
                                       graph));
    AVFilterContext* mapper = nullptr;
    std::snprintf(text, sizeof text, "tonemap=mobius:param=%.3f:desat=0:peak=%.4f", kStraightPart, peak);
    check(
        avfilter_graph_create_filter(&mapper, avfilter_get_by_name("tonemap"), "map", text, nullptr, graph));
    check(avfilter_graph_create_filter(&state_->sink, avfilter_get_by_name("buffersink"), "out", nullptr,
                                       nullptr, graph));
    check(avfilter_link(state_->source, 0, mapper, 0));
    check(avfilter_link(mapper, 0, state_->sink, 0));
    check(avfilter_graph_config(graph, nullptr));
}

ToneMapper::~ToneMapper() = default;

std::shared_ptr<AVFrame> ToneMapper::map(const std::shared_ptr<AVFrame>& linear) {
    // A reference of its own makes the filter copy instead of writing into the scaler's picture.
    Frame input = owned<Frame>(av_frame_clone(linear.get()));
    input->color_trc = AVCOL_TRC_LINEAR;
    input->color_primaries = AVCOL_PRI_BT709;
    input->colorspace = AVCOL_SPC_RGB;
    input->color_range = AVCOL_RANGE_JPEG;
    input->pts = state_->count++;
    check(av_buffersrc_add_frame_flags(state_->source, input.get(), AV_BUFFERSRC_FLAG_KEEP_REF));
    std::shared_ptr<AVFrame> result(makeFrame().release(), [](AVFrame* f) { av_frame_free(&f); });
    check(av_buffersink_get_frame(state_->sink, result.get()));
    return result;
}

}  // namespace korvane
