#include "platform/layers/GaussianBlur.h"

#include <algorithm>
#include <cmath>

namespace korvane {
namespace {

/// A blur this wide or wider is done on a picture made smaller: its spectrum has nothing left at the smaller
/// one's Nyquist frequency.
constexpr double kWideSigma = 5.0;

/// One side of the kernel, centre first; the whole sums up to 1.
std::vector<float> halfKernel(double sigma) {
    const int reach = std::max(1, static_cast<int>(std::ceil(3.5 * sigma)));
    std::vector<double> weights;
    double sum = 0.0;
    for (int k = 0; k <= reach; ++k) {
        weights.push_back(std::exp(-0.5 * k * k / (sigma * sigma)));
        sum += k == 0 ? weights.back() : 2.0 * weights.back();
    }
    std::vector<float> kernel;
    for (const double weight : weights)
        kernel.push_back(static_cast<float>(weight / sum));
    return kernel;
}

/// Adds weight * source to target, element by element; the shape that compilers vectorise.
void accumulate(float* target, const float* source, float weight, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        target[i] += weight * source[i];
}

void blurRows(CoveragePlane& plane, const std::vector<float>& kernel) {
    const auto width = static_cast<std::size_t>(plane.width);
    const std::size_t reach = kernel.size() - 1;
    std::vector<float> padded(width + 2 * reach, 0.0F);
    for (int y = 0; y < plane.height; ++y) {
        float* row = plane.values.data() + static_cast<std::size_t>(y) * width;
        std::copy_n(row, width, padded.begin() + static_cast<std::ptrdiff_t>(reach));
        std::fill_n(row, width, 0.0F);
        accumulate(row, padded.data() + reach, kernel[0], width);
        for (std::size_t k = 1; k <= reach; ++k) {
            accumulate(row, padded.data() + reach - k, kernel[k], width);
            accumulate(row, padded.data() + reach + k, kernel[k], width);
        }
    }
}

void blurColumns(CoveragePlane& plane, const std::vector<float>& kernel) {
    const auto width = static_cast<std::size_t>(plane.width);
    const int reach = static_cast<int>(kernel.size()) - 1;
    std::vector<float> result(plane.values.size(), 0.0F);
    for (int y = 0; y < plane.height; ++y) {
        float* target = result.data() + static_cast<std::size_t>(y) * width;
        for (int source = std::max(0, y - reach); source <= std::min(plane.height - 1, y + reach); ++source)
            accumulate(target, plane.values.data() + static_cast<std::size_t>(source) * width,
                       kernel[static_cast<std::size_t>(std::abs(source - y))], width);
    }
    plane.values = std::move(result);
}

void blurDirectly(CoveragePlane& plane, double sigma) {
    const auto kernel = halfKernel(sigma);
    blurRows(plane, kernel);
    blurColumns(plane, kernel);
}

/// Each value is the mean of a factor x factor square.
CoveragePlane shrunk(const CoveragePlane& plane, int factor) {
    CoveragePlane small;
    small.width = (plane.width + factor - 1) / factor;
    small.height = (plane.height + factor - 1) / factor;
    small.values.assign(static_cast<std::size_t>(small.width) * static_cast<std::size_t>(small.height), 0.0F);
    const float weight = 1.0F / static_cast<float>(factor * factor);
    for (int y = 0; y < plane.height; ++y) {
        const float* source =
            plane.values.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(plane.width);
        float* target = small.values.data() +
                        static_cast<std::size_t>(y / factor) * static_cast<std::size_t>(small.width);
        for (int x = 0; x < plane.width; ++x)
            target[x / factor] += weight * source[x];
    }
    return small;
}

/// The two values between which a large plane's pixel lies, and the second one's share.
struct Between {
    int first;
    int second;
    float share;
};

std::vector<Between> positions(int largeCount, int smallCount, int factor) {
    std::vector<Between> result;
    for (int i = 0; i < largeCount; ++i) {
        const double at = (i + 0.5) / factor - 0.5;
        const int first = static_cast<int>(std::floor(at));
        result.push_back({std::max(0, first), std::min(smallCount - 1, first + 1),
                          static_cast<float>(at - std::floor(at))});
    }
    return result;
}

/// The inverse of shrunk(): linear between the squares' centres.
void enlarge(const CoveragePlane& small, int factor, CoveragePlane& plane) {
    const auto columns = positions(plane.width, small.width, factor);
    const auto rows = positions(plane.height, small.height, factor);
    const auto smallWidth = static_cast<std::size_t>(small.width);
    std::vector<float> mixed(smallWidth);
    for (int y = 0; y < plane.height; ++y) {
        const auto& row = rows[static_cast<std::size_t>(y)];
        const float* upper = small.values.data() + static_cast<std::size_t>(row.first) * smallWidth;
        const float* lower = small.values.data() + static_cast<std::size_t>(row.second) * smallWidth;
        for (std::size_t x = 0; x < smallWidth; ++x)
            mixed[x] = upper[x] + (lower[x] - upper[x]) * row.share;
        float* target =
            plane.values.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(plane.width);
        for (std::size_t x = 0; x < columns.size(); ++x) {
            const float left = mixed[static_cast<std::size_t>(columns[x].first)];
            const float right = mixed[static_cast<std::size_t>(columns[x].second)];
            target[x] = left + (right - left) * columns[x].share;
        }
    }
}

}  // namespace

void gaussianBlur(CoveragePlane& plane, double sigma) {
    if (sigma <= 0.02 || plane.values.empty())
        return;
    int factor = 1;
    while (sigma / factor >= kWideSigma)
        factor *= 2;
    if (factor == 1) {
        blurDirectly(plane, sigma);
        return;
    }
    auto small = shrunk(plane, factor);
    // Averaging squares and going back linearly blur too, by a variance of factor^2 / 4 together.
    const double ratio = sigma / factor;
    blurDirectly(small, std::sqrt(ratio * ratio - 0.25));
    enlarge(small, factor, plane);
}

}  // namespace korvane
