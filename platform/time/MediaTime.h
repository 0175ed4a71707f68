// Exact rational media time. A MediaTime is a plain value; arithmetic and comparison are exact across
// timescales (128-bit intermediates). Doubles appear only at the two named crossings, fromSeconds and
// seconds.
#pragma once

#include <compare>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace korvane {

/// The timescale of every media time the product makes from seconds.
inline constexpr std::int32_t kProductTimescale = 600;

/// How an inexact conversion picks between its two neighbours.
enum class Rounding { nearestHalfAway, down, up };

/// A result that does not fit 64 bits over a 32-bit timescale.
struct TimeOverflowError : std::overflow_error {
    using std::overflow_error::overflow_error;
};

/// value / timescale seconds. Always a number: there is no invalid or indefinite time; where a time may be
/// missing, std::optional says so.
class MediaTime {
  public:
    constexpr MediaTime() = default;
    /// \param timescale  units per second, > 0. \throws std::invalid_argument otherwise.
    constexpr MediaTime(std::int64_t value, std::int32_t timescale) : value_(value), timescale_(timescale) {
        if (timescale <= 0)
            throw std::invalid_argument("MediaTime: the timescale must be positive");
    }

    /// The one place where seconds become time: value = seconds x timescale, to nearest, halves away from
    /// zero. \throws std::invalid_argument when seconds is not finite; TimeOverflowError when it does not
    /// fit.
    static MediaTime fromSeconds(double seconds, std::int32_t timescale = kProductTimescale);

    constexpr std::int64_t value() const { return value_; }
    constexpr std::int32_t timescale() const { return timescale_; }
    /// The double nearest to value / timescale; equal times give the same double.
    double seconds() const;

    /// The time in other units. \throws TimeOverflowError.
    MediaTime rescaled(std::int32_t timescale, Rounding rounding = Rounding::nearestHalfAway) const;
    /// Units of 1/rateHz s at this time, e.g. the sample position of an audio boundary. \throws
    /// TimeOverflowError.
    std::int64_t toUnits(std::int32_t rateHz, Rounding rounding = Rounding::nearestHalfAway) const;

    /// "value/timescale", for logs and test failures.
    std::string toString() const;

    /// Exact where the common timescale fits 32 bits; else rounded to nearest at the larger of the two.
    friend MediaTime operator+(MediaTime a, MediaTime b);
    friend MediaTime operator-(MediaTime a, MediaTime b);
    friend constexpr MediaTime operator-(MediaTime a) { return {-a.value_, a.timescale_}; }
    /// a x multiplier / divisor, exact where it can be. \param divisor  > 0.
    friend MediaTime multipliedByRatio(MediaTime a, std::int32_t multiplier, std::int32_t divisor);

    friend std::strong_ordering operator<=>(MediaTime a, MediaTime b);
    friend bool operator==(MediaTime a, MediaTime b) { return (a <=> b) == 0; }

  private:
    std::int64_t value_ = 0;
    std::int32_t timescale_ = kProductTimescale;
};

inline constexpr MediaTime kZeroTime{};

/// [start, start + duration). Half-open, like every range here.
struct TimeRange {
    MediaTime start;
    MediaTime duration;

    MediaTime end() const { return start + duration; }
    bool contains(MediaTime t) const { return t >= start && t < end(); }
    bool isEmpty() const { return duration <= kZeroTime; }
    friend bool operator==(const TimeRange&, const TimeRange&) = default;
};

}  // namespace korvane
