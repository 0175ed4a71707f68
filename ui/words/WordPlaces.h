// Where every token stands: rectangles by index and lines by height, so that what is on the screen, under the
// pointer or one line further is found without looking at all words. A value, made anew for every width.
#pragma once

#include <QRectF>
#include <span>
#include <vector>

#include "ui/words/WordFlowLayout.h"

namespace korvane {

class WordPlaces {
  public:
    /// A half-open range of indices.
    struct Range {
        int first = 0;
        int end = 0;
        bool contains(int index) const { return first <= index && index < end; }
    };

    WordPlaces() = default;
    WordPlaces(const WordFlowLayout& layout, const QRectF& bounds, std::span<const QSizeF> sizes);

    int count() const { return static_cast<int>(rects_.size()); }
    int lineCount() const { return static_cast<int>(lines_.size()); }
    double bottom() const { return bottom_; }  ///< of the lowest token; the bounds' top without any

    /// \param index  in [0, count)
    const QRectF& rect(int index) const { return rects_[static_cast<std::size_t>(index)]; }
    int lineOf(int index) const;

    /// \param line  in [0, lineCount)
    Range wordsOf(int line) const;
    double top(int line) const { return lines_[static_cast<std::size_t>(line)].top; }
    double bottom(int line) const { return lines_[static_cast<std::size_t>(line)].bottom; }

    /// The first line that reaches below y, the last one if none does; -1 without lines.
    int lineBelow(double y) const;
    /// The words of all lines that reach into [top, bottom).
    Range wordsBetween(double top, double bottom) const;
    /// The word under a point, -1 between words.
    int wordAt(QPointF point) const;
    /// The word of a line whose middle is nearest to x.
    int nearest(int line, double x) const;

  private:
    struct Line {
        int first;
        double top;
        double bottom;
    };
    std::vector<QRectF> rects_;
    std::vector<Line> lines_;
    double bottom_ = 0.0;
};

}  // namespace korvane
