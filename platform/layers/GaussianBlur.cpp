#include "platform/layers/GaussianBlur.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace korvane {
namespace {

/// A blur this wide or wider is done on a picture made smaller: its spectrum has nothing left at the smaller
/// one's Nyquist frequency.
constexpr double kWideSigma = 5.0;

/// Below this nothing is blurred; what remains is a move by a fraction of a pixel, done linearly.
constexpr double kNarrowestSigma = 0.3;

/// The Gaussian's share of everything left of `x`.
double gaussianIntegral(double x, double sigma) {
    return 0.5 * std::erfc(-x / (sigma * std::numbers::sqrt2));
}

double weightAt(double distance, double sigma) {
    if (sigma < kNarrowestSigma)
        return std::max(0.0, 1.0 - std::abs(distance));
    return gaussianIntegral(distance + 0.5, sigma) - gaussianIntegral(distance - 0.5, sigma);
}

/// Weights for the sources at -reach to +reach; they sum up to 1. Each is the Gaussian's integral over a
/// pixel, not its value in the middle, so that edges between pixels fade exactly as they should.
std::vector<float> shiftedKernel(double sigma, double shift) {
    const int reach = std::max(1, static_cast<int>(std::ceil(3.5 * sigma + std::abs(shift))));
    std::vector<double> weights;
    double sum = 0.0;
    for (int k = -reach; k <= reach; ++k) {
        // A picture moved to the right takes its values from the left.
        weights.push_back(weightAt(k + shift, sigma));
        sum += weights.back();
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

/// A plane and its smaller stand-in; the way there and the way back are linear both, which keeps everything
/// exactly where it is.
class Resizing {
  public:
    Resizing(const CoveragePlane& plane, int factor)
        : factor_(factor),
          small_{(plane.width + factor - 1) / factor, (plane.height + factor - 1) / factor, {}},
          columns_(positions(plane.width, small_.width, factor)),
          rows_(positions(plane.height, small_.height, factor)) {}

    CoveragePlane shrunk(const CoveragePlane& plane) const {
        // Whole rows first: that is quick, and leaves few rows to narrow.
        const auto width = static_cast<std::size_t>(plane.width);
        std::vector<float> lowered(width * static_cast<std::size_t>(small_.height), 0.0F);
        for (int y = 0; y < plane.height; ++y) {
            const auto& row = rows_[static_cast<std::size_t>(y)];
            const float* source = plane.values.data() + static_cast<std::size_t>(y) * width;
            addScaled(lowered.data() + static_cast<std::size_t>(row.first) * width, source, 1.0F - row.share,
                      width);
            addScaled(lowered.data() + static_cast<std::size_t>(row.second) * width, source, row.share,
                      width);
        }
        CoveragePlane small = small_;
        const auto smallWidth = static_cast<std::size_t>(small.width);
        small.values.assign(smallWidth * static_cast<std::size_t>(small.height), 0.0F);
        const float weight = 1.0F / static_cast<float>(factor_ * factor_);
        for (std::size_t y = 0; y < static_cast<std::size_t>(small.height); ++y) {
            float* target = small.values.data() + y * smallWidth;
            for (std::size_t x = 0; x < width; ++x) {
                const auto& column = columns_[x];
                const float value = lowered[y * width + x] * weight;
                target[column.first] += value * (1.0F - column.share);
                target[column.second] += value * column.share;
            }
        }
        return small;
    }

    void enlarge(const CoveragePlane& small, CoveragePlane& plane) const {
        const auto smallWidth = static_cast<std::size_t>(small.width);
        std::vector<float> mixed(smallWidth);
        for (int y = 0; y < plane.height; ++y) {
            const auto& row = rows_[static_cast<std::size_t>(y)];
            const float* upper = small.values.data() + static_cast<std::size_t>(row.first) * smallWidth;
            const float* lower = small.values.data() + static_cast<std::size_t>(row.second) * smallWidth;
            for (std::size_t x = 0; x < smallWidth; ++x)
                mixed[x] = upper[x] + (lower[x] - upper[x]) * row.share;
            float* target = plane.values.data() + static_cast<std::size_t>(y) * columns_.size();
            for (std::size_t x = 0; x < columns_.size(); ++x) {
                const float left = mixed[static_cast<std::size_t>(columns_[x].first)];
                const float right = mixed[static_cast<std::size_t>(columns_[x].second)];
                target[x] = left + (right - left) * columns_[x].share;
            }
        }
    }

  private:
    static void addScaled(float* target, const float* source, float weight, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            target[i] += source[i] * weight;
    }

    int factor_;
    CoveragePlane small_;  ///< its size only
    std::vector<Between> columns_;
    std::vector<Between> rows_;
};

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
    const Resizing resizing(plane, factor);
    auto small = resizing.shrunk(plane);
    // Linear both ways blurs too, by a variance of factor^2 / 6 + 1 / 12 each time, and so does the kernel's
    // integrating over pixels, by 1 / 12 of the small ones.
    const double ratio = sigma / factor;
    const double already = 1.0 / 3.0 + 1.0 / (6.0 * factor * factor) + 1.0 / 12.0;
    blurDirectly(small, std::sqrt(ratio * ratio - already), shiftX / factor, shiftY / factor);
    resizing.enlarge(small, plane);
}

}  // namespace korvane
