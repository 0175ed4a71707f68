// Our symbols as vector shapes of one weight in a box of 24 units. Pure; any thread.
#pragma once

#include <QColor>
#include <QPainter>
#include <QStringList>

namespace korvane {

constexpr qreal iconBox = 24;

/// Every name that drawIcon knows.
QStringList iconNames();

/// Draws the symbol into (0, 0, 24, 24) of `painter`, whose picture must be transparent there: holes are cut
/// out. \return false for an unknown name, with nothing drawn.
bool drawIcon(QPainter& painter, const QString& name, const QColor& color);

}  // namespace korvane
