// A text laid out once in its box: outlines and colour glyphs with their exact places, to be drawn at any
// scale without being laid out anew. Immutable; a QGuiApplication must exist; any one thread at a time.
#pragma once

#include <QColor>
#include <QGlyphRun>
#include <QPainterPath>
#include <QRectF>
#include <QStringList>
#include <optional>
#include <vector>

#include "platform/fonts/FontLookup.h"
#include "platform/geometry/Geometry.h"
#include "platform/layers/Layer.h"

class QPainter;

namespace korvane {

class TextShape {
  public:
    /// \param box  size of the text's box, in the units of content.fontSize.
    /// \param eastAsianFamily  drawn with where the font itself has no Chinese or Japanese characters.
    /// \throws FontError when no font is installed.
    TextShape(const TextContent& content, Size box, const FontLookup& fonts,
              const std::optional<std::string>& eastAsianFamily);

    /// Nothing to see: no text, only blanks, or no size.
    bool isEmpty() const { return outlines_.empty() && colorRuns_.empty(); }
    int lineCount() const { return static_cast<int>(lines_.size()); }
    /// What stands on each line, from the top, without blanks at its ends.
    const QStringList& lines() const { return lines_; }
    /// Everything drawn lies within, in the box's units from its top left corner, y down.
    const QRectF& bounds() const { return bounds_; }

    /// Draws with the box's top left corner at the painter's origin, one unit of the box being `scale`
    /// pixels.
    void draw(QPainter& painter, QPointF origin, double scale) const;

  private:
    struct ColorRun {
        QGlyphRun glyphs;  ///< at the layout's size
        QRectF bounds;
    };
    void addRun(const QGlyphRun& run, double unit);

    /// One a glyph, in the box's units: the rasteriser is quicker with many short outlines than with a long
    /// one.
    std::vector<QPainterPath> outlines_;
    std::vector<ColorRun> colorRuns_;
    QRectF bounds_;
    QColor color_;
    double unit_ = 1.0;  ///< box units per layout pixel
    QStringList lines_;
};

}  // namespace korvane
