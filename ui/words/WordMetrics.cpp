#include "ui/words/WordMetrics.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

namespace korvane {
namespace {

/// More distinct words than a long transcript has; beyond it old ones are measured again rather than kept for
/// ever.
constexpr qsizetype kMostKnown = 50'000;

bool breaksLine(QChar c) {
    return c == u'\n' || c == u'\r' || c == u'\t' || c == u'\v' || c == u'\f' || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

}  // namespace

QFont WordMetrics::font() {
    QFont font = QGuiApplication::font();
    font.setPixelSize(kFontSize);
    return font;
}

QString WordMetrics::shown(QString text) {
    if (std::any_of(text.cbegin(), text.cend(), breaksLine))
        for (QChar& c : text)
            c = breaksLine(c) ? QChar(u' ') : c;
    return text;
}

QSizeF WordMetrics::tokenSize(const QString& shownText) {
    const auto found = known_.constFind(shownText);
    if (found != known_.cend())
        return *found;
    if (known_.size() >= kMostKnown)
        known_.clear();
    return *known_.insert(shownText, measured(shownText));
}

void WordMetrics::forget() {
    font_ = font();
    known_.clear();
}

QSizeF WordMetrics::measured(const QString& shownText) const {
    QTextLayout layout(shownText, font_);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    // Text drawn from outlines is set without hinting, native text with it.
    option.setUseDesignMetrics(QQuickWindow::textRenderType() != QQuickWindow::NativeTextRendering);
    layout.setTextOption(option);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    const double width = line.isValid() ? line.naturalTextWidth() : 0.0;
    const double height = line.isValid() ? line.height() : QFontMetricsF(font_).height();
    // Whole points keep every border of the line on the pixel grid.
    return {std::ceil(width) + 2.0 * kHorizontalPadding, std::ceil(height) + 2.0 * kVerticalPadding};
}

}  // namespace korvane
