// Which layers of a tree have something to draw, in the order they are painted, and which of them may be
// visible at a time: found in logarithmic time, because a long reel has thousands of lines. Immutable.
#pragma once

#include <memory>
#include <vector>

#include "platform/layers/Layer.h"

namespace korvane {

class LayerIndex {
  public:
    /// Everything with content that is painted after `videoLayer`; the whole tree when it is not in there.
    LayerIndex(std::shared_ptr<const Layer> root, const Layer* videoLayer);

    struct Entry {
        std::vector<const Layer*> path;  ///< root first, the layer itself last
        const Layer& layer() const { return *path.back(); }
    };

    /// Bottom to top.
    const std::vector<Entry>& entries() const { return entries_; }

    /// Indices into entries(), ascending: all that are visible then, and possibly a few that are not.
    std::vector<std::size_t> candidatesAt(double seconds) const;

  private:
    struct Interval {
        double begin;
        double end;
        double latestEndUpToHere;  ///< of this interval and all before it in the order of begins
        std::size_t entry;
    };
    void collect(const Layer& layer, std::vector<const Layer*>& path, const Layer* videoLayer);
    void indexIntervals();

    std::shared_ptr<const Layer> root_;
    std::vector<Entry> entries_;
    std::vector<Interval> intervals_;
};

}  // namespace korvane
