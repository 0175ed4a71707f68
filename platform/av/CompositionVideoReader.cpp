#include <algorithm>
#include <cmath>
#include <list>
#include <map>

#include "platform/av/CompositionReader.h"
#include "platform/ffmpeg/CanvasPictures.h"
#include "platform/ffmpeg/OverlayBlending.h"
#include "platform/ffmpeg/PictureConverter.h"
#include "platform/ffmpeg/VideoDecoder.h"
#include "platform/layers/LayerRenderer.h"

namespace korvane {
namespace {

// Overlays whose conversion is kept: the lines of now, and the one before.
constexpr std::size_t kKeptOverlays = 4;

int evenPixels(double length) {
    return std::max(2, 2 * static_cast<int>(std::lround(length / 2.0)));
}

/// The segment that contains t; null in a gap or behind the end.
const TrackSegment* segmentAt(const CompositionTrack& track, MediaTime t) {
    const auto& segments = track.segments();
    const auto after =
        std::ranges::upper_bound(segments, t, {}, [](const TrackSegment& s) { return s.target.start; });
    if (after == segments.begin())
        return nullptr;
    const TrackSegment& segment = *std::prev(after);
    return segment.target.contains(t) ? &segment : nullptr;
}

struct KeptOverlay {
    PlacedOverlay placed;
    BlendPlanes planes;
};

bool samePlace(const PlacedOverlay& a, const PlacedOverlay& b) {
    return a.bitmap == b.bitmap && a.x == b.x && a.y == b.y && a.opacity == b.opacity;
}

}  // namespace

struct CompositionVideoReader::State {
    std::shared_ptr<const Composition> composition;
    VideoComposition video;
    double scale = 0.0;
    int threads = 1;
    std::stop_token stop;
    int width = 0;
    int height = 0;

    // First step.
    const CompositionTrack* track = nullptr;
    std::map<std::pair<std::filesystem::path, int>, std::unique_ptr<VideoDecoder>> decoders;

    // Second step.
    std::map<std::pair<std::filesystem::path, int>, std::unique_ptr<PictureConverter>> converters;
    std::unique_ptr<LayerRenderer> layers;
    std::list<KeptOverlay> overlays;
    std::weak_ptr<const AVFrame> last;  ///< not held: pictures of large sources are heavy
    int repeats = 0;
    std::shared_ptr<AVFrame> clean;  ///< the last picture without layers, once it has been shown twice

    void setScale(double canvasScale) {
        scale = canvasScale;
        width = evenPixels(video.renderSize.width * scale);
        height = evenPixels(video.renderSize.height * scale);
        converters.clear();
        overlays.clear();
        clean = nullptr;
        repeats = 0;
        last.reset();
        if (video.animationTool)
            layers = std::make_unique<LayerRenderer>(
                video.animationTool->parentLayer, video.animationTool->videoLayer, video.renderSize, scale);
    }

    AffineTransform transformFor(MediaTime t, int trackID) const {
        for (const auto& instruction : video.instructions)
            for (const auto& layer : instruction.layerInstructions)
                if (instruction.timeRange.contains(t) && layer.trackID == trackID)
                    return layer.transform;
        return {};
    }

    PictureConverter& converterFor(const TimedPicture& p) {
        auto& converter = converters[{p.segment->track.path, p.segment->track.streamIndex}];
        if (!converter) {
            const AffineTransform placed =
                transformFor(p.time, track->trackID())
                    .concatenating(AffineTransform::scale(width / video.renderSize.width,
                                                          height / video.renderSize.height));
            converter = std::make_unique<PictureConverter>(
                PicturePlacement{p.segment->track.naturalSize, placed, width, height});
        }
        return *converter;
    }

    /// A picture of the caller's own, without layers. Sources slower than the output show a picture again and
    /// again; that must not cost a conversion each time.
    std::shared_ptr<AVFrame> base(const TimedPicture& p) {
        if (!p.picture)
            return blackCanvas(width, height);
        const bool repeated = last.lock() == p.picture.frame;
        repeats = repeated ? repeats + 1 : 0;
        last = p.picture.frame;
        if (repeats == 0)
            clean = nullptr;
        if (clean)
            return copyOfCanvas(clean);
        auto converted = converterFor(p).convert(p.picture);
        if (repeats == 0)
            return converted;
        clean = converted;
        return copyOfCanvas(clean);
    }

    const BlendPlanes& planesOf(const PlacedOverlay& placed) {
        const auto kept =
            std::ranges::find_if(overlays, [&](const KeptOverlay& k) { return samePlace(k.placed, placed); });
        if (kept != overlays.end()) {
            overlays.splice(overlays.begin(), overlays, kept);
            return overlays.front().planes;
        }
        const OverlayBitmap& b = *placed.bitmap;
        overlays.push_front({placed, BlendPlanes(b.pixels.data(), b.width, b.height, b.strideBytes, placed.x,
                                                 placed.y, placed.opacity)});
        if (overlays.size() > kKeptOverlays)
            overlays.pop_back();
        return overlays.front().planes;
    }
};

CompositionVideoReader::CompositionVideoReader(std::shared_ptr<const Composition> composition,
                                               VideoComposition videoComposition, double canvasScale,
                                               int decodingThreads, std::stop_token stop)
    : state_(std::make_unique<State>()) {
    State& s = *state_;
    s.composition = std::move(composition);
    s.video = std::move(videoComposition);
    s.threads = decodingThreads;
    s.stop = std::move(stop);
    const auto tracks = s.composition->tracks(MediaType::video);
    s.track = tracks.empty() ? nullptr : tracks.front();
    s.setScale(canvasScale);
}

CompositionVideoReader::~CompositionVideoReader() = default;

void CompositionVideoReader::setCanvasScale(double canvasScale) {
    if (canvasScale != state_->scale)
        state_->setScale(canvasScale);
}

int CompositionVideoReader::width() const {
    return state_->width;
}
int CompositionVideoReader::height() const {
    return state_->height;
}

TimedPicture CompositionVideoReader::pictureAt(MediaTime t) {
    State& s = *state_;
    TimedPicture result{t, {}, s.track ? segmentAt(*s.track, t) : nullptr};
    if (!result.segment)
        return result;
    const AssetTrack& source = result.segment->track;
    auto& decoder = s.decoders[{source.path, source.streamIndex}];
    if (!decoder)
        decoder = VideoDecoder::open(source.path, source.streamIndex, s.threads, s.stop, source.known);
    result.picture = decoder->pictureAt(result.segment->source.start + (t - result.segment->target.start));
    return result;
}

std::int64_t CompositionVideoReader::decodedPictures() const {
    std::int64_t sum = 0;
    for (const auto& [source, decoder] : state_->decoders)
        sum += decoder->decodedPictures();
    return sum;
}

std::shared_ptr<AVFrame> CompositionVideoReader::render(const TimedPicture& picture) {
    State& s = *state_;
    auto canvas = s.base(picture);
    if (!s.layers)
        return canvas;
    for (const PlacedOverlay& placed : s.layers->overlaysAt(picture.time.seconds()))
        s.planesOf(placed).blendOnto(*canvas);
    return canvas;
}

}  // namespace korvane
