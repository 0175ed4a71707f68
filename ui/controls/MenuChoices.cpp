#include "MenuChoices.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>

namespace korvane {

namespace {

constexpr qint64 pauseMs = 1000;

QString front(const QString& label) {
    const auto letter =
        std::find_if(label.begin(), label.end(), [](QChar c) { return c.isLetterOrNumber(); });
    return label.mid(static_cast<int>(letter - label.begin()));
}

}  // namespace

void MenuChoices::setLabels(const QStringList& labels) {
    if (labels == labels_) {
        return;
    }
    labels_ = labels;
    Q_EMIT labelsChanged();
    measure();
}

void MenuChoices::setFont(const QFont& font) {
    if (font == font_) {
        return;
    }
    font_ = font;
    Q_EMIT fontChanged();
    measure();
}

void MenuChoices::measure() {
    const QFontMetricsF metrics(font_);
    qreal widest = 0;
    for (const QString& label : labels_) {
        widest = std::max(widest, std::ceil(metrics.horizontalAdvance(label)));
    }
    if (widest == widest_) {
        return;
    }
    widest_ = widest;
    Q_EMIT widestChanged();
}

int MenuChoices::typed(const QString& text, int current) {
    if (text.isEmpty() || !text.at(0).isPrint() || labels_.isEmpty()) {
        return -1;
    }
    const bool anew = !sinceLetter_.isValid() || sinceLetter_.elapsed() > pauseMs;
    sinceLetter_.start();
    if (anew) {
        prefix_.clear();
    }
    const bool again = prefix_.size() == 1 && prefix_.compare(text, Qt::CaseInsensitive) == 0;
    if (!again) {
        prefix_ += text;
    }
    // A first letter leads on from where one stands; more letters may stay there.
    const int count = static_cast<int>(labels_.size());
    const int start = std::max(0, current) + (prefix_.size() == 1 && current >= 0 ? 1 : 0);
    for (int i = 0; i < count; ++i) {
        const int index = (start + i) % count;
        if (front(labels_.at(index)).startsWith(prefix_, Qt::CaseInsensitive)) {
            return index;
        }
    }
    return -1;
}

}  // namespace korvane
