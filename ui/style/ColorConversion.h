// Between the screen's colours, which count in 65,535ths, and the style's, which are doubles. Exact both ways
// for every colour that a person can pick.
#pragma once

#include <QColor>

#include "platform/layers/Color.h"

namespace korvane {

/// Components outside 0 to 1 are clamped: a screen shows no others.
QColor toQColor(const Color& color);

/// Keeps the opacity. What is no RGB colour is converted to it; an invalid colour is not a number.
Color fromQColor(const QColor& color);

}  // namespace korvane
