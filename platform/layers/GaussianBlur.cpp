#include "platform/layers/GaussianBlur.h"

#include <algorithm>
#include <cmath>

namespace korvane {
namespace {

/// A blur this wide or wider is done on a picture made smaller: its spectrum has nothing left at the smaller
/// one's Nyquist frequency.
constexpr double kWideSigma = 5.0;

/// Below this the samples of the bell are too few to stand for it; what remains is the move.
constexpr double kNarrowestSigma = 0.3;

/// Weights for the sources at -reach to +reach; they sum up to 1.
std::vector<float> shiftedKernel(double sigma, double shift) {
    const int reach = std::max(1, static_cast<int>(std::ceil(3.5 * sigma + std::abs(shift))));
    std::vector<double> weights;
    double sum = 0.0;
    for (int k = -reach; k <= reach; ++k) {
        // A picture moved to the right takes its values from the left.
        const double distance = k + shift;
        const double weight = sigma < kNarrowestSigma
                                  ? std::max(0.0, 1.0 - std::abs(distance))
                                  : std::exp(-0.5 * distance * distance / (sigma * sigma));
        weights.push_back(weight);
        sum += weight;
    }
    std::vector<float> kernel;
    for (const double weight : weights)
        kernel.push_back(static_cast<float>(weight / sum));
    return kernel;
}

/// target[i] += a * first[i] + b * second[i]; the shape that compilers vectorise.
void accumulate(float* target, const float* first, float a, const float* second, float b, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        target[i] += a * first[i] + b * second[i];
}

/// Sums up kernel-weighted rows of floats, two at a time: half the passes over the target.
template <typename SourceAt>
void weightedSum(float* target, const std::vector<float>& kernel, std::size_t count, SourceAt sourceAt) {
    std::fill_n(target, count, 0.0F);
    std::size_t k = 0;
    for (; k + 1 < kernel.size(); k += 2)
        accumulate(target, sourceAt(k), kernel[k], sourceAt(k + 1), kernel[k + 1], count);
    if (k < kernel.size())
        accumulate(target, sourceAt(k), kernel[k], sourceAt(k), 0.0F, count);
}

void blurRows(CoveragePlane& plane, const std::vector<float>& kernel) {
    const auto width = static_cast<std::size_t>(plane.width);
    const std::size_t reach = kernel.size() / 2;
    std::vector<float> padded(width + 2 * reach, 0.0F);
    for (int y = 0; y < plane.height; ++y) {
        float* row = plane.values.data() + static_cast<std::size_t>(y) * width;
        std::copy_n(row, width, padded.begin() + static_cast<std::ptrdiff_t>(reach));
        weightedSum(row, kernel, width, [&](std::size_t k) { return padded.data() + k; });
    }
}

void blurColumns(CoveragePlane& plane, const std::vector<float>& kernel) {
    const auto width = static_cast<std::size_t>(plane.width);
    const int reach = static_cast<int>(kernel.size()) / 2;
    const std::vector<float> nothing(width, 0.0F);
    std::vector<float> result(plane.values.size());
    for (int y = 0; y < plane.height; ++y) {
        weightedSum(result.data() + static_cast<std::size_t>(y) * width, kernel, width, [&](std::size_t k) {
            const int source = y + static_cast<int>(k) - reach;
            if (source < 0 || source >= plane.height)
                return nothing.data();
            return static_cast<const float*>(plane.values.data()) + static_cast<std::size_t>(source) * width;
        });
    }
    plane.values = std::move(result);
}

void blurDirectly(CoveragePlane& plane, double sigma, double shiftX, double shiftY) {
    blurRows(plane, shiftedKernel(sigma, shiftX));
    blurColumns(plane, shiftedKernel(sigma, shiftY));
}

/// Each value is the mean of a factor x factor square.
CoveragePlane shrunk(const CoveragePlane& plane, int factor) {
    const int smallWidth = (plane.width + factor - 1) / factor;
    const int smallHeight = (plane.height + factor - 1) / factor;
    const auto width = static_cast<std::size_t>(plane.width);
    const auto step = static_cast<std::size_t>(factor);
    CoveragePlane small{smallWidth, smallHeight, {}};
    small.values.reserve(static_cast<std::size_t>(smallWidth) * static_cast<std::size_t>(smallHeight));
    const float weight = 1.0F / static_cast<float>(factor * factor);
    std::vector<float> column(static_cast<std::size_t>(smallWidth) * step);
    for (int top = 0; top < plane.height; top += factor) {
        std::fill(column.begin(), column.end(), 0.0F);
        for (int y = top; y < std::min(top + factor, plane.height); ++y) {
            const float* source = plane.values.data() + static_cast<std::size_t>(y) * width;
            for (std::size_t x = 0; x < width; ++x)
                column[x] += source[x];
        }
        for (std::size_t x = 0; x < column.size(); x += step) {
            float sum = 0.0F;
            for (std::size_t i = 0; i < step; ++i)
                sum += column[x + i];
            small.values.push_back(sum * weight);
        }
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

void gaussianBlur(CoveragePlane& plane, double sigma, double shiftX, double shiftY) {
    if (plane.values.empty())
        return;
    int factor = 1;
    while (sigma / factor >= kWideSigma)
        factor *= 2;
    if (factor == 1) {
        blurDirectly(plane, sigma, shiftX, shiftY);
        return;
    }
    auto small = shrunk(plane, factor);
    // Averaging squares and going back linearly blur too, by a variance of factor^2 / 4 together.
    const double ratio = sigma / factor;
    blurDirectly(small, std::sqrt(ratio * ratio - 0.25), shiftX / factor, shiftY / factor);
    enlarge(small, factor, plane);
}

}  // namespace korvane
