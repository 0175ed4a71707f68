#include "platform/layers/LayerIndex.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace korvane {
namespace {

constexpr double kForever = std::numeric_limits<double>::infinity();

/// A span of time outside of which the layer is surely invisible; a microsecond wider than the truth at
/// either end, because the exact test rounds in its own way.
std::pair<double, double> possiblyVisible(const Layer& layer) {
    if (layer.opacity > 0.0)
        return {-kForever, kForever};
    constexpr double kMargin = 1e-6;
    double begin = kForever;
    double end = -kForever;
    for (const auto& [key, animation] : layer.animations) {
        std::visit(
            [&](const auto& a) {
                if (a.keyPath != "opacity")
                    return;
                begin = std::min(begin, a.beginTime - kMargin);
                end = std::max(end, a.beginTime + a.duration + kMargin);
            },
            animation);
    }
    return {begin, end};
}

}  // namespace

LayerIndex::LayerIndex(std::shared_ptr<const Layer> root, const Layer* videoLayer) : root_(std::move(root)) {
    if (!root_)
        return;
    std::vector<const Layer*> path;
    collect(*root_, path, videoLayer);
    indexIntervals();
}

void LayerIndex::collect(const Layer& layer, std::vector<const Layer*>& path, const Layer* videoLayer) {
    path.push_back(&layer);
    if (&layer == videoLayer)
        entries_.clear();  // what was painted so far lies below the video
    if (layer.text)
        entries_.push_back({path});
    for (const auto& sublayer : layer.sublayers) {
        if (sublayer)
            collect(*sublayer, path, videoLayer);
    }
    path.pop_back();
}

void LayerIndex::indexIntervals() {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const auto [begin, end] = possiblyVisible(entries_[i].layer());
        intervals_.push_back({begin, end, end, i});
    }
    std::sort(intervals_.begin(), intervals_.end(),
              [](const Interval& a, const Interval& b) { return a.begin < b.begin; });
    for (std::size_t i = 1; i < intervals_.size(); ++i)
        intervals_[i].latestEndUpToHere = std::max(intervals_[i].end, intervals_[i - 1].latestEndUpToHere);
}

std::vector<std::size_t> LayerIndex::candidatesAt(double seconds) const {
    std::vector<std::size_t> found;
    auto i = std::upper_bound(intervals_.begin(), intervals_.end(), seconds,
                              [](double t, const Interval& interval) { return t < interval.begin; });
    while (i != intervals_.begin()) {
        --i;
        if (i->latestEndUpToHere < seconds)
            break;
        if (i->end >= seconds)
            found.push_back(i->entry);
    }
    std::sort(found.begin(), found.end());
    return found;
}

}  // namespace korvane
