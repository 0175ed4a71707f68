// Gaussian blur of one plane of coverage. Pure.
#pragma once

#include <vector>

namespace korvane {

/// Row after row, width x height values; outside it everything is 0.
struct CoveragePlane {
    int width = 0;
    int height = 0;
    std::vector<float> values;
};

/// Beyond this many standard deviations an edge's blur has fallen below half of 1/255.
inline constexpr double kBlurReach = 3.0;

/// Blurs in place with standard deviation `sigma` in pixels and moves the result by a fraction of a pixel,
/// -0.5 to 0.5 to the right and down. The caller leaves a border of kBlurReach x sigma, rounded up, plus one
/// around what it wants to see fade out whole.
void gaussianBlur(CoveragePlane& plane, double sigma, double shiftX = 0.0, double shiftY = 0.0);

}  // namespace korvane
