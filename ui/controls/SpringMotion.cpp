#include "SpringMotion.h"

#include <cassert>
#include <cmath>
#include <numbers>

namespace korvane {

namespace {

// Closer to 1 than this the two exponentials of the general solution differ by rounding alone.
constexpr double criticalBand = 1e-4;

}  // namespace

SpringMotion::SpringMotion(double response, double damping)
    : omega_(2 * std::numbers::pi / response), zeta_(damping) {
    assert(response > 0 && damping >= 0);
}

SpringMotion::State SpringMotion::after(const State& start, double seconds) const {
    if (std::abs(zeta_ - 1) < criticalBand) {
        return critical(start, seconds);
    }
    return zeta_ < 1 ? underdamped(start, seconds) : overdamped(start, seconds);
}

SpringMotion::State SpringMotion::underdamped(const State& start, double seconds) const {
    const double decay = zeta_ * omega_;
    const double swing = omega_ * std::sqrt(1 - zeta_ * zeta_);
    const double envelope = std::exp(-decay * seconds);
    const double c = std::cos(swing * seconds);
    const double s = std::sin(swing * seconds);
    const double b = (start.velocity + decay * start.position) / swing;
    return {envelope * (start.position * c + b * s),
            envelope * (start.velocity * c - (swing * start.position + decay * b) * s)};
}

SpringMotion::State SpringMotion::critical(const State& start, double seconds) const {
    const double envelope = std::exp(-omega_ * seconds);
    const double b = start.velocity + omega_ * start.position;
    return {envelope * (start.position + b * seconds),
            envelope * (b - omega_ * (start.position + b * seconds))};
}

SpringMotion::State SpringMotion::overdamped(const State& start, double seconds) const {
    const double root = std::sqrt(zeta_ * zeta_ - 1);
    const double slow = -omega_ * (zeta_ - root);
    const double fast = -omega_ * (zeta_ + root);
    const double b = (start.velocity - slow * start.position) / (fast - slow);
    const double a = start.position - b;
    const double slowPart = a * std::exp(slow * seconds);
    const double fastPart = b * std::exp(fast * seconds);
    return {slowPart + fastPart, slow * slowPart + fast * fastPart};
}

bool SpringMotion::isSettled(const State& state, double tolerance) const {
    return std::abs(state.position) < tolerance && std::abs(state.velocity) < tolerance * omega_;
}

}  // namespace korvane
