#include "platform/layers/LayerRenderer.h"

#include <algorithm>
#include <deque>
#include <unordered_map>

#include "platform/fonts/FontLookup.h"
#include "platform/layers/EastAsianText.h"
#include "platform/layers/LayerEvaluation.h"
#include "platform/layers/LayerIndex.h"
#include "platform/layers/OverlayDrawing.h"
#include "platform/layers/TextShape.h"

namespace korvane {
namespace {

/// A pop has about twenty scales at 60 frames a second; a layer whose scale never rests must not fill the
/// memory.
constexpr std::size_t kBitmapsPerLayer = 32;

const char* eastAsianLanguage(const LayerIndex& index) {
    EastAsianText texts;
    for (const auto& entry : index.entries())
        texts.add(entry.layer().text->text);
    return texts.language();
}

struct DrawnLayer {
    explicit DrawnLayer(TextShape laidOut) : shape(std::move(laidOut)) {}

    TextShape shape;
    struct Picture {
        OverlayPlace place;
        std::optional<PlacedOverlay> overlay;
    };
    std::deque<Picture> pictures;
};

}  // namespace

struct LayerRenderer::State {
    State(std::shared_ptr<const Layer> parent, std::shared_ptr<const Layer> video, Size size, double scale)
        : index(std::move(parent), video.get()), renderSize(size), canvasScale(scale) {
        if (index.entries().empty())
            return;
        fonts.emplace();
        eastAsianFamily = FontLookup::familyForLanguage(eastAsianLanguage(index));
    }

    DrawnLayer& drawnLayer(std::size_t entry) {
        const auto found = drawn.find(entry);
        if (found != drawn.end())
            return found->second;
        const Layer& layer = index.entries()[entry].layer();
        const Size box{layer.frame.width, layer.frame.height};
        return drawn.emplace(entry, DrawnLayer(TextShape(*layer.text, box, *fonts, eastAsianFamily)))
            .first->second;
    }

    /// The layer's picture at a place, drawn only if it isn't there yet.
    const std::optional<PlacedOverlay>& picture(std::size_t entry, const OverlayPlace& place) {
        auto& layer = drawnLayer(entry);
        const auto same = std::find_if(layer.pictures.begin(), layer.pictures.end(),
                                       [&](const auto& picture) { return picture.place == place; });
        if (same != layer.pictures.end())
            return same->overlay;
        if (layer.pictures.size() == kBitmapsPerLayer)
            layer.pictures.pop_front();
        layer.pictures.push_back(
            {place, drawOverlay(layer.shape, index.entries()[entry].layer().shadow, place)});
        return layer.pictures.back().overlay;
    }

    OverlayPlace placeOf(const EvaluatedLayer& evaluated, const Layer& layer) const {
        return {{evaluated.center.x * canvasScale, evaluated.center.y * canvasScale},
                {layer.frame.width, layer.frame.height},
                evaluated.scale * canvasScale,
                evaluated.yGrowsDown,
                {renderSize.width * canvasScale, renderSize.height * canvasScale}};
    }

    LayerIndex index;
    Size renderSize;
    double canvasScale;
    std::optional<FontLookup> fonts;  ///< there when there is something to write
    std::optional<std::string> eastAsianFamily;
    std::unordered_map<std::size_t, DrawnLayer> drawn;  ///< by index entry; only what was visible last
};

LayerRenderer::LayerRenderer(std::shared_ptr<const Layer> parentLayer,
                             std::shared_ptr<const Layer> videoLayer, Size renderSize, double canvasScale)
    : state_(
          std::make_unique<State>(std::move(parentLayer), std::move(videoLayer), renderSize, canvasScale)) {}

LayerRenderer::~LayerRenderer() = default;

std::vector<PlacedOverlay> LayerRenderer::overlaysAt(double seconds) {
    std::vector<PlacedOverlay> overlays;
    std::vector<std::size_t> visible;
    for (const std::size_t entry : state_->index.candidatesAt(seconds)) {
        const auto& path = state_->index.entries()[entry].path;
        const auto evaluated = evaluatedAt(path, state_->renderSize, seconds);
        if (!(evaluated.opacity > 0.0))
            continue;
        visible.push_back(entry);
        auto overlay = state_->picture(entry, state_->placeOf(evaluated, *path.back()));
        if (!overlay)
            continue;
        overlay->opacity = evaluated.opacity;
        overlays.push_back(std::move(*overlay));
    }
    std::erase_if(state_->drawn, [&](const auto& item) {
        return !std::binary_search(visible.begin(), visible.end(), item.first);
    });
    return overlays;
}

}  // namespace korvane
