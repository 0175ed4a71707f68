#include "platform/ffmpeg/PictureConverter.h"

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include "platform/ffmpeg/CanvasPictures.h"
#include "platform/ffmpeg/ColorDescription.h"
#include "platform/ffmpeg/FramePool.h"
#include "platform/ffmpeg/Handles.h"
#include "platform/ffmpeg/MediaError.h"
#include "platform/ffmpeg/PictureTurning.h"
#include "platform/ffmpeg/PlanarForm.h"
#include "platform/ffmpeg/ScalingGraph.h"
#include "platform/ffmpeg/ToneMapper.h"

namespace korvane {
namespace {

using SharedFrame = std::shared_ptr<AVFrame>;

/// Where a source of one size goes: which part of it is seen, how it is turned, and which part of the canvas
/// it covers.
struct Plan {
    Rect seen;  ///< source pixels, before turning
    Turning turning;
    int x = 0;  ///< canvas pixels, even
    int y = 0;
    int width = 0;
    int height = 0;
    bool coversCanvas(const PicturePlacement& p) const {
        return x == 0 && y == 0 && width == p.canvasWidth && height == p.canvasHeight;
    }
};

struct Span {
    double from = 0.0;
    double to = 0.0;
};

/// Source interval shown on canvas [0, length) when canvas = factor * source + shift, within the source's [0,
/// extent).
Span seenSpan(double factor, double shift, double length, double extent) {
    const double a = (0.0 - shift) / factor;
    const double b = (length - shift) / factor;
    return {std::clamp(std::min(a, b), 0.0, extent), std::clamp(std::max(a, b), 0.0, extent)};
}

/// Canvas interval that the seen source interval covers, to whole pixel pairs.
std::pair<int, int> coveredPixels(double factor, double shift, Span seen, int length) {
    const double a = factor * seen.from + shift;
    const double b = factor * seen.to + shift;
    const int from = 2 * static_cast<int>(std::lround(std::clamp(std::min(a, b), 0.0, double(length)) / 2.0));
    const int to = 2 * static_cast<int>(std::lround(std::clamp(std::max(a, b), 0.0, double(length)) / 2.0));
    return {from, std::min(to, length)};
}

std::optional<Plan> planFor(const AVFrame& frame, const PicturePlacement& p) {
    const int width = frame.width - static_cast<int>(frame.crop_right);
    const int height = frame.height - static_cast<int>(frame.crop_bottom);
    const AffineTransform t =
        AffineTransform::scale(p.naturalSize.width / width, p.naturalSize.height / height)
            .concatenating(p.transform);
    Plan plan;
    plan.turning.transposed = std::abs(t.b) + std::abs(t.c) > std::abs(t.a) + std::abs(t.d);
    const double acrossFactor = plan.turning.transposed ? t.c : t.a;  // what runs along the canvas' width
    const double downFactor = plan.turning.transposed ? t.b : t.d;
    if (!std::isfinite(acrossFactor) || !std::isfinite(downFactor) || acrossFactor == 0.0 ||
        downFactor == 0.0)
        return std::nullopt;
    plan.turning.mirroredAcross = acrossFactor < 0.0;
    plan.turning.mirroredDown = downFactor < 0.0;
    const double acrossExtent = plan.turning.transposed ? height : width;
    const double downExtent = plan.turning.transposed ? width : height;
    const Span across = seenSpan(acrossFactor, t.tx, p.canvasWidth, acrossExtent);
    const Span down = seenSpan(downFactor, t.ty, p.canvasHeight, downExtent);
    const auto [left, right] = coveredPixels(acrossFactor, t.tx, across, p.canvasWidth);
    const auto [top, bottom] = coveredPixels(downFactor, t.ty, down, p.canvasHeight);
    plan.x = left;
    plan.y = top;
    plan.width = right - left;
    plan.height = bottom - top;
    const Span& u = plan.turning.transposed ? down : across;
    const Span& v = plan.turning.transposed ? across : down;
    plan.seen = {u.from, v.from, u.to - u.from, v.to - v.from};
    if (plan.width <= 0 || plan.height <= 0 || plan.seen.width <= 0.0 || plan.seen.height <= 0.0)
        return std::nullopt;
    return plan;
}

}  // namespace

struct PictureConverter::State {
    explicit State(PicturePlacement p) : placement(p), canvases(p.canvasWidth, p.canvasHeight) {}

    PicturePlacement placement;
    FramePool canvases;
    PlanarForm planar;
    // What the plan below was made for.
    int width = 0;
    int height = 0;
    int format = -1;
    std::optional<ColorDescription> colors;

    std::optional<Plan> plan;
    std::unique_ptr<ScalingGraph> scaling;      ///< source to output, or to linear light
    std::unique_ptr<ToneMapper> toneMapper;     ///< high dynamic range only
    std::unique_ptr<ScalingGraph> encoding;     ///< tone-mapped linear light to output
    std::unique_ptr<ScalingGraph> subsampling;  ///< 4:4:4 to 4:2:0 after mirroring
    std::unique_ptr<FramePool> parts;           ///< covered part, where that is not the whole canvas

    void prepare(const AVFrame& frame);
};

void PictureConverter::State::prepare(const AVFrame& frame) {
    const ColorDescription description = describeColors(frame);
    if (width == frame.width && height == frame.height && format == frame.format && colors == description)
        return;
    colors = description;
    width = frame.width;
    height = frame.height;
    format = frame.format;
    scaling.reset();
    encoding.reset();
    subsampling.reset();
    toneMapper.reset();
    parts.reset();
    plan = planFor(frame, placement);
    if (!plan)
        return;
    const bool swap = plan->turning.transposed;
    const int beforeWidth = swap ? plan->height : plan->width;  // before turning
    const int beforeHeight = swap ? plan->width : plan->height;
    const ImageForm source = ImageForm::of(frame, description).cropped(plan->seen);
    // Mirroring across would put the colour samples on the other side of their pixels; then they are thinned
    // out last.
    const bool thinLast = plan->turning.mirroredAcross && !swap;
    ImageForm output = thinLast ? ImageForm::yuv444(beforeWidth, beforeHeight)
                                : ImageForm::yuv420(beforeWidth, beforeHeight);
    if (swap)
        output.colors.chroma = plan->turning.mirroredAcross ? ZIMG_CHROMA_BOTTOM : ZIMG_CHROMA_TOP;
    if (description.highDynamicRange) {
        const ImageForm linear = ImageForm::linearRgb(beforeWidth, beforeHeight);
        scaling = std::make_unique<ScalingGraph>(source, linear);
        toneMapper = std::make_unique<ToneMapper>(beforeWidth, beforeHeight, description.peak);
        encoding = std::make_unique<ScalingGraph>(linear, output);
    } else {
        scaling = std::make_unique<ScalingGraph>(source, output);
    }
    if (thinLast)
        subsampling = std::make_unique<ScalingGraph>(ImageForm::yuv444(plan->width, plan->height),
                                                     ImageForm::yuv420(plan->width, plan->height));
    if (!plan->coversCanvas(placement))
        parts = std::make_unique<FramePool>(plan->width, plan->height);
}

PictureConverter::PictureConverter(PicturePlacement placement) : state_(std::make_unique<State>(placement)) {}
PictureConverter::~PictureConverter() = default;

std::shared_ptr<AVFrame> PictureConverter::convert(const DecodedPicture& picture) {
    State& s = *state_;
    const std::shared_ptr<const AVFrame> source = s.planar.of(PlanarForm::firstField(picture.frame));
    s.prepare(*source);
    SharedFrame canvas = s.canvases.take();
    if (!s.plan) {
        fillBlack(*canvas);
        return canvas;
    }
    const SharedFrame target = s.parts ? s.parts->take() : canvas;

    // One step after the other, each into what the next one reads; the last one writes into the target.
    const bool turns = !s.plan->turning.isIdentity();
    SharedFrame scaled = turns ? nullptr : target;
    if (s.toneMapper) {
        const SharedFrame linear = s.scaling->run(*source, nullptr);
        const SharedFrame mapped = s.toneMapper->map(linear);
        scaled = s.encoding->run(*mapped, scaled);
    } else {
        scaled = s.scaling->run(*source, scaled);
    }
    if (turns && s.subsampling) {
        const SharedFrame turned = s.subsampling->inputFrame();
        turn(*scaled, s.plan->turning, *turned);
        s.subsampling->run(*turned, target);
    } else if (turns) {
        turn(*scaled, s.plan->turning, *target);
    }
    if (target != canvas) {
        fillBlack(*canvas);
        for (int i = 0; i < 3; ++i) {
            const int shift = i == 0 ? 0 : 1;
            av_image_copy_plane(canvas->data[i] +
                                    static_cast<std::ptrdiff_t>(s.plan->y >> shift) * canvas->linesize[i] +
                                    (s.plan->x >> shift),
                                canvas->linesize[i], target->data[i], target->linesize[i],
                                s.plan->width >> shift, s.plan->height >> shift);
        }
    }
    return canvas;
}

}  // namespace korvane
