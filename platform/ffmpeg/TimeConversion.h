// Between the libraries' ticks and MediaTime. Rounding is named at each call.
#pragma once

extern "C" {
#include <libavutil/rational.h>
}

#include <limits>
#include <stdexcept>

#include "platform/time/MediaTime.h"

namespace korvane {

namespace detail {
__extension__ using WideTicks = __int128;
}

/// Ticks of `base` at or before `t`: a picture is shown at t when its ticks are <= this.
inline std::int64_t ticksAtOrBefore(MediaTime t, AVRational base) {
    const detail::WideTicks numerator = static_cast<detail::WideTicks>(t.value()) * base.den;
    const detail::WideTicks denominator = static_cast<detail::WideTicks>(t.timescale()) * base.num;
    detail::WideTicks ticks = numerator / denominator;
    if (numerator % denominator != 0 && numerator < 0)
        --ticks;
    if (ticks > std::numeric_limits<std::int64_t>::max() || ticks < std::numeric_limits<std::int64_t>::min())
        throw TimeOverflowError("a time does not fit the file's time base");
    return static_cast<std::int64_t>(ticks);
}

/// The exact time where the time base allows it, which is for every base of 1/n s.
inline MediaTime timeOfTicks(std::int64_t ticks, AVRational base) {
    return multipliedByRatio(MediaTime(ticks, 1), base.num, base.den);
}

/// Sample position at rateHz nearest to `ticks`.
inline std::int64_t samplesAtTicks(std::int64_t ticks, AVRational base, int rateHz) {
    const detail::WideTicks numerator = static_cast<detail::WideTicks>(ticks) * base.num * rateHz;
    const detail::WideTicks twice = numerator * 2 + (numerator < 0 ? -base.den : base.den);
    return static_cast<std::int64_t>(twice / (2 * static_cast<detail::WideTicks>(base.den)));
}

}  // namespace korvane
