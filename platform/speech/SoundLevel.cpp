#include "platform/speech/SoundLevel.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace korvane {

double levelDb(double meanSquare) {
    return meanSquare > 1e-10 ? 10.0 * std::log10(meanSquare) : silenceDb;
}

RumbleFilter::RumbleFilter(int rateHz) {
    const double k = std::tan(std::numbers::pi * 150.0 / rateHz);
    const double norm = 1.0 / (1.0 + std::numbers::sqrt2 * k + k * k);
    b_ = norm;
    a1_ = 2.0 * (k * k - 1.0) * norm;
    a2_ = (1.0 - std::numbers::sqrt2 * k + k * k) * norm;
}

double RumbleFilter::next(double sample) {
    const double x = std::isfinite(sample) ? std::clamp(sample, -1.0, 1.0) : 0.0;
    const double y = b_ * (x - 2.0 * x1_ + x2_) - a1_ * y1_ - a2_ * y2_;
    x2_ = x1_;
    x1_ = x;
    y2_ = y1_;
    y1_ = y;
    return y;
}

LevelCurve LevelCurve::of(std::span<const float> samples, int rateHz) {
    LevelCurve curve{rateHz / 200, rateHz / 100, {}};
    RumbleFilter filter(rateHz);
    std::vector<double> energy;  // of each step
    const auto step = static_cast<std::size_t>(curve.step);
    for (std::size_t begin = 0; begin + step <= samples.size(); begin += step) {
        double sum = 0.0;
        for (const float sample : samples.subspan(begin, step)) {
            const double y = filter.next(sample);
            sum += y * y;
        }
        energy.push_back(sum);
    }
    for (std::size_t i = 0; i + 1 < energy.size(); ++i)
        curve.db.push_back(levelDb((energy[i] + energy[i + 1]) / static_cast<double>(curve.window)));
    return curve;
}

}  // namespace korvane
