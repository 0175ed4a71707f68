#include "ui/words/WordPlaces.h"

#include <algorithm>
#include <cmath>

namespace korvane {

WordPlaces::WordPlaces(const WordFlowLayout& layout, const QRectF& bounds, std::span<const QSizeF> sizes)
    : bottom_(bounds.top()) {
    const std::vector<QPointF> corners = layout.placeSubviews(bounds, sizes);
    rects_.reserve(corners.size());
    for (std::size_t i = 0; i < corners.size(); ++i) {
        const QRectF rect(corners[i], sizes[i]);
        if (lines_.empty() || rect.top() > lines_.back().top)
            lines_.push_back({static_cast<int>(i), rect.top(), rect.bottom()});
        lines_.back().bottom = std::max(lines_.back().bottom, rect.bottom());
        rects_.push_back(rect);
    }
    if (!lines_.empty())
        bottom_ = lines_.back().bottom;
}

int WordPlaces::lineOf(int index) const {
    const auto after = std::upper_bound(lines_.begin(), lines_.end(), index,
                                        [](int i, const Line& line) { return i < line.first; });
    return static_cast<int>(after - lines_.begin()) - 1;
}

WordPlaces::Range WordPlaces::wordsOf(int line) const {
    const auto at = static_cast<std::size_t>(line);
    return {lines_[at].first, at + 1 < lines_.size() ? lines_[at + 1].first : count()};
}

int WordPlaces::lineBelow(double y) const {
    const auto found = std::upper_bound(lines_.begin(), lines_.end(), y,
                                        [](double v, const Line& line) { return v < line.bottom; });
    return std::min(static_cast<int>(found - lines_.begin()), lineCount() - 1);
}

WordPlaces::Range WordPlaces::wordsBetween(double top, double bottom) const {
    const auto first = std::upper_bound(lines_.begin(), lines_.end(), top,
                                        [](double v, const Line& line) { return v < line.bottom; });
    const auto end = std::lower_bound(first, lines_.end(), bottom,
                                      [](const Line& line, double v) { return line.top < v; });
    if (first == end)
        return {};
    return {first->first, wordsOf(static_cast<int>(end - lines_.begin()) - 1).end};
}

int WordPlaces::wordAt(QPointF point) const {
    const int line = lineBelow(point.y());
    if (line < 0)
        return -1;
    const Range words = wordsOf(line);
    for (int i = words.first; i < words.end; ++i) {
        const QRectF& r = rect(i);
        if (r.left() <= point.x() && point.x() < r.right() && r.top() <= point.y() && point.y() < r.bottom())
            return i;
    }
    return -1;
}

int WordPlaces::nearest(int line, double x) const {
    const Range words = wordsOf(line);
    int best = words.first;
    for (int i = words.first; i < words.end; ++i)
        if (std::abs(rect(i).center().x() - x) < std::abs(rect(best).center().x() - x))
            best = i;
    return best;
}

}  // namespace korvane
