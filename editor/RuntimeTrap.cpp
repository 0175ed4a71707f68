#include "editor/RuntimeTrap.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace korvane {

void runtimeTrap(const char* text) {
    std::fprintf(stderr, "Fatal error: %s\n", text);
    std::abort();
}

double clampedToZeroAnd(double value, double upper) {
    if (upper < 0.0)
        runtimeTrap("Range requires lowerBound <= upperBound");
    if (value <= 0.0)  // also makes -0.0 a plain zero
        return 0.0;
    return value > upper ? upper : value;
}

std::int32_t int32FromFloat(float value) {
    constexpr float kTwoTo31 = 2147483648.0F;  // the first float above the range
    if (!std::isfinite(value))
        runtimeTrap("Float value cannot be converted to Int32 because it is either infinite or NaN");
    if (value < -kTwoTo31)
        runtimeTrap(
            "Float value cannot be converted to Int32 because the result would be less than Int32.min");
    if (value >= kTwoTo31)
        runtimeTrap(
            "Float value cannot be converted to Int32 because the result would be greater than Int32.max");
    return static_cast<std::int32_t>(value);
}

std::int64_t int64FromDouble(double value) {
    constexpr double kTwoTo63 = 9223372036854775808.0;  // the first double above the range
    if (!std::isfinite(value))
        runtimeTrap("Double value cannot be converted to Int because it is either infinite or NaN");
    if (value < -kTwoTo63)
        runtimeTrap("Double value cannot be converted to Int because the result would be less than Int.min");
    if (value >= kTwoTo63)
        runtimeTrap(
            "Double value cannot be converted to Int because the result would be greater than Int.max");
    return static_cast<std::int64_t>(value);
}

}  // namespace korvane
