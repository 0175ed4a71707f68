#include "platform/time/MediaTime.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace korvane {
namespace {

__extension__ using Wide = __int128;  // the products of two 64-bit numbers

Wide divided(Wide numerator, Wide denominator, Rounding rounding) {
    Wide quotient = numerator / denominator;
    const Wide remainder = numerator % denominator;
    if (remainder == 0)
        return quotient;
    const bool negative = numerator < 0;
    switch (rounding) {
        case Rounding::down:
            return negative ? quotient - 1 : quotient;
        case Rounding::up:
            return negative ? quotient : quotient + 1;
        case Rounding::nearestHalfAway: {
            const Wide twice = (negative ? -remainder : remainder) * 2;
            if (twice < denominator)
                return quotient;
            return negative ? quotient - 1 : quotient + 1;
        }
    }
    return quotient;
}

std::int64_t narrowed(Wide value) {
    if (value > std::numeric_limits<std::int64_t>::max() || value < std::numeric_limits<std::int64_t>::min())
        throw TimeOverflowError("MediaTime: the result does not fit 64 bits");
    return static_cast<std::int64_t>(value);
}

Wide magnitude(Wide v) {
    return v < 0 ? -v : v;
}

/// numerator / denominator as a MediaTime, exact if the reduced denominator is a timescale, else rounded to
/// nearest at `fallbackTimescale`.
MediaTime fromFraction(Wide numerator, Wide denominator, std::int32_t exactTimescale,
                       std::int32_t fallbackTimescale) {
    if (exactTimescale > 0 && (numerator * exactTimescale) % denominator == 0)
        return {narrowed(numerator * exactTimescale / denominator), exactTimescale};
    Wide a = magnitude(numerator);
    Wide b = denominator;
    while (b != 0) {
        const Wide r = a % b;
        a = b;
        b = r;
    }
    const Wide reduced = denominator / (a == 0 ? 1 : a);
    if (reduced <= std::numeric_limits<std::int32_t>::max()) {
        const Wide scale = reduced;
        return {narrowed(numerator * scale / denominator), static_cast<std::int32_t>(scale)};
    }
    return {narrowed(divided(numerator * fallbackTimescale, denominator, Rounding::nearestHalfAway)),
            fallbackTimescale};
}

}  // namespace

MediaTime MediaTime::fromSeconds(double seconds, std::int32_t timescale) {
    if (!std::isfinite(seconds))
        throw std::invalid_argument("MediaTime: seconds must be finite");
    const double units = std::round(seconds * timescale);
    if (units >= 9.2233720368547758e18 || units <= -9.2233720368547758e18)
        throw TimeOverflowError("MediaTime: too many seconds");
    return {static_cast<std::int64_t>(units), timescale};
}

double MediaTime::seconds() const {
    const std::int64_t common = std::gcd(value_, static_cast<std::int64_t>(timescale_));
    const std::int64_t numerator = value_ / common;
    const std::int64_t denominator = timescale_ / common;
    // Whole and fraction apart keep values beyond 2^53 as near as a double can be.
    if (magnitude(numerator) < (std::int64_t{1} << 53))
        return static_cast<double>(numerator) / static_cast<double>(denominator);
    return static_cast<double>(static_cast<long double>(numerator) / static_cast<long double>(denominator));
}

MediaTime MediaTime::rescaled(std::int32_t timescale, Rounding rounding) const {
    return {toUnits(timescale, rounding), timescale};
}

std::int64_t MediaTime::toUnits(std::int32_t rateHz, Rounding rounding) const {
    return narrowed(divided(static_cast<Wide>(value_) * rateHz, timescale_, rounding));
}

std::string MediaTime::toString() const {
    return std::to_string(value_) + "/" + std::to_string(timescale_);
}

MediaTime operator+(MediaTime a, MediaTime b) {
    if (a.timescale_ == b.timescale_)
        return {narrowed(static_cast<Wide>(a.value_) + b.value_), a.timescale_};
    const std::int64_t common =
        std::lcm(static_cast<std::int64_t>(a.timescale_), static_cast<std::int64_t>(b.timescale_));
    const Wide sum = static_cast<Wide>(a.value_) * (common / a.timescale_) +
                     static_cast<Wide>(b.value_) * (common / b.timescale_);
    if (common <= std::numeric_limits<std::int32_t>::max())
        return {narrowed(sum), static_cast<std::int32_t>(common)};
    return fromFraction(sum, common, 0, std::max(a.timescale_, b.timescale_));
}

MediaTime operator-(MediaTime a, MediaTime b) {
    return a + (-b);
}

MediaTime multipliedByRatio(MediaTime a, std::int32_t multiplier, std::int32_t divisor) {
    if (divisor <= 0)
        throw std::invalid_argument("MediaTime: the divisor must be positive");
    return fromFraction(static_cast<Wide>(a.value_) * multiplier, static_cast<Wide>(a.timescale_) * divisor,
                        a.timescale_, a.timescale_);
}

std::strong_ordering operator<=>(MediaTime a, MediaTime b) {
    const Wide left = static_cast<Wide>(a.value_) * b.timescale_;
    const Wide right = static_cast<Wide>(b.value_) * a.timescale_;
    if (left < right)
        return std::strong_ordering::less;
    if (left > right)
        return std::strong_ordering::greater;
    return std::strong_ordering::equal;
}

}  // namespace korvane
