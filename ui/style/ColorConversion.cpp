#include "ui/style/ColorConversion.h"

#include <QRgba64>
#include <algorithm>
#include <cmath>
#include <limits>

namespace korvane {
namespace {

constexpr double kSteps = 65535.0;

quint16 stepsOf(double component) {
    if (std::isnan(component))
        return 0;
    return static_cast<quint16>(std::lround(std::clamp(component, 0.0, 1.0) * kSteps));
}

}  // namespace

QColor toQColor(const Color& color) {
    return QColor::fromRgba64(stepsOf(color.red), stepsOf(color.green), stepsOf(color.blue),
                              stepsOf(color.alpha));
}

Color fromQColor(const QColor& color) {
    if (!color.isValid()) {
        constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
        return {kNone, kNone, kNone, 1.0};
    }
    const QRgba64 steps = color.toRgb().rgba64();
    return {steps.red() / kSteps, steps.green() / kSteps, steps.blue() / kSteps, steps.alpha() / kSteps};
}

}  // namespace korvane
