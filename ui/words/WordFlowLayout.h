// Wraps children into left-aligned lines, like words in a paragraph. A plain value: two gaps and no other
// state, so the same children and bounds always come out the same.
#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <optional>
#include <span>
#include <vector>

namespace korvane {

struct WordFlowLayout {
    double hSpacing = 0.0;  ///< points between neighbours on a line
    double vSpacing = 0.0;  ///< points between lines

    /// What all children need at a proposed width.
    ///
    /// The width that comes back is the proposed one, however little of it is used: what surrounds the words
    /// must not change its width with them.
    /// \param proposedWidth  points; without one, 400.
    /// \param sizes  the children's ideal sizes, in order.
    QSizeF sizeThatFits(std::optional<double> proposedWidth, std::span<const QSizeF> sizes) const;

    /// The top left corner of each child inside `bounds`. A child begins a new line when it would end to the
    /// right of the bounds; on an empty line it stays and reaches beyond them. The bounds' height plays no
    /// part.
    std::vector<QPointF> placeSubviews(const QRectF& bounds, std::span<const QSizeF> sizes) const;
};

}  // namespace korvane
