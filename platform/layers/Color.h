// A colour as a person picks it: sRGB components, 0 to 1, with opacity.
#pragma once

#include <cmath>
#include <optional>

namespace korvane {

struct Color {
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;
    double alpha = 1.0;

    static constexpr Color white() { return {1.0, 1.0, 1.0, 1.0}; }
    static constexpr Color black() { return {0.0, 0.0, 0.0, 1.0}; }

    /// The colour in device RGB, or none when it has no such form (a component that is not a number).
    std::optional<Color> inDeviceRgb() const {
        if (!std::isfinite(red) || !std::isfinite(green) || !std::isfinite(blue) || !std::isfinite(alpha))
            return std::nullopt;
        return *this;
    }
    friend bool operator==(const Color&, const Color&) = default;
};

}  // namespace korvane
