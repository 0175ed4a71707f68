// The few broken promises that stop the program: values that no source can have and that no later step could
// make sense of.
#pragma once

#include <cstdint>

namespace korvane {

/// Writes "Fatal error: <text>" to standard error and aborts.
[[noreturn]] void runtimeTrap(const char* text);

/// min(max(value, 0), upper); a value that is not a number stays one. Traps when upper < 0.
double clampedToZeroAnd(double value, double upper);

/// Drops the fraction. Traps for a value that is not finite or does not fit.
std::int32_t int32FromFloat(float value);
std::int64_t int64FromDouble(double value);

}  // namespace korvane
