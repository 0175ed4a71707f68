#include "ui/words/WordFlowLayout.h"

#include <algorithm>

namespace korvane {
namespace {

constexpr double kWidthWithoutProposal = 400.0;

}  // namespace

QSizeF WordFlowLayout::sizeThatFits(std::optional<double> proposedWidth,
                                    std::span<const QSizeF> sizes) const {
    const double maxWidth = proposedWidth.value_or(kWidthWithoutProposal);
    double x = 0.0;
    double y = 0.0;
    double rowHeight = 0.0;
    for (const QSizeF& size : sizes) {
        if (x + size.width() > maxWidth && x > 0.0) {
            y += rowHeight + vSpacing;
            x = 0.0;
            rowHeight = 0.0;
        }
        x += size.width() + hSpacing;
        rowHeight = std::max(rowHeight, size.height());
    }
    return {maxWidth, y + rowHeight};
}

std::vector<QPointF> WordFlowLayout::placeSubviews(const QRectF& bounds,
                                                   std::span<const QSizeF> sizes) const {
    std::vector<QPointF> places;
    places.reserve(sizes.size());
    double x = bounds.left();
    double y = bounds.top();
    double rowHeight = 0.0;
    for (const QSizeF& size : sizes) {
        if (x + size.width() > bounds.right() && x > bounds.left()) {
            y += rowHeight + vSpacing;
            x = bounds.left();
            rowHeight = 0.0;
        }
        places.emplace_back(x, y);
        x += size.width() + hSpacing;
        rowHeight = std::max(rowHeight, size.height());
    }
    return places;
}

}  // namespace korvane
