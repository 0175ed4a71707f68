// How values look in diagnostic lines. Locale-independent.
#pragma once

#include <exception>
#include <string>
#include <vector>

#include "platform/geometry/Geometry.h"
#include "platform/time/MediaTime.h"

namespace korvane {

/// The shortest decimal that reads back as the same number, always recognisable as a fraction: "3.0",
/// "0.25", "1e-05", "1e+16", "-0.0", "inf", "nan". Exponents below 0.0001 and where whole numbers are no
/// longer exact.
std::string formatDecimal(double value);
std::string formatDecimal(float value);

/// The time as seconds, in the form above.
std::string formatSeconds(MediaTime time);
/// "(1080.0, 1920.0)"
std::string formatSize(Size size);
/// "[a, b, c, d, tx, ty]"
std::string formatTransform(const AffineTransform& transform);
/// "true" or "false"
std::string formatBool(bool value);
/// ["one", "two"]
std::string formatStringList(const std::vector<std::string>& strings);
/// The user's words of an exception; "unknown error" when it has none.
std::string describeError(const std::exception_ptr& error);

}  // namespace korvane
