#include "platform/layers/TextShape.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextCharFormat>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "platform/layers/EmojiRuns.h"

namespace korvane {
namespace {

/// Texts are laid out at this size, whatever theirs is: font sizes are whole pixels and positions are
/// multiples of 1/64 there, so that a big one keeps fractional sizes exact.
constexpr int kLayoutPixelsPerEm = 200;

/// Of a larger letter nothing but a part of a stroke is seen on any canvas, and the rasteriser's coordinates
/// end.
constexpr double kLargestFontSize = 16384.0;

/// The text engine's fixed-point numbers end a little above.
constexpr double kWidestLayout = 1 << 24;

/// One text with line separators; blanks at a line's ends would push it off its centre.
QString displayText(const std::string& utf8) {
    QString text = QString::fromStdString(utf8);
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (QChar& c : text) {
        if (c == QLatin1Char('\r') || c == QChar::ParagraphSeparator || c == QChar::LineSeparator)
            c = QLatin1Char('\n');
        else if (c.category() == QChar::Other_Control && c != QLatin1Char('\n'))
            c = QLatin1Char(' ');
    }
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines)
        line = line.trimmed();
    return lines.join(QChar::LineSeparator);
}

QColor toQColor(const Color& color) {
    const Color rgb = color.inDeviceRgb().value_or(Color::white());
    const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(part(rgb.red), part(rgb.green), part(rgb.blue), part(rgb.alpha));
}

QList<QTextLayout::FormatRange> emojiFormats(const std::vector<TextRun>& emoji, const QFont& font,
                                             const FontLookup& fonts) {
    QList<QTextLayout::FormatRange> formats;
    if (!fonts.emojiFamily())
        return formats;
    QTextCharFormat format;
    QFont emojiFont = font;
    emojiFont.setFamilies(QStringList(QString::fromStdString(*fonts.emojiFamily())) + font.families());
    emojiFont.setStyleName(QString());
    // A picture has one weight and stands upright; asking for others would get it smeared and slanted.
    emojiFont.setWeight(QFont::Normal);
    emojiFont.setItalic(false);
    format.setFont(emojiFont);
    for (const auto& run : emoji)
        formats.push_back({run.start, run.length, format});
    return formats;
}

/// A colour font's glyphs can't be had as outlines.
bool hasColorGlyphs(const QRawFont& font) {
    for (const char* table : {"CBDT", "sbix", "COLR", "SVG "}) {
        if (!font.fontTable(table).isEmpty())
            return true;
    }
    return false;
}

/// The same for every line, from the text's own font: a fallback font's taller or lower letters don't push
/// lines apart or make them dance.
double lineHeightOf(const QFont& font) {
    const QFontMetricsF metrics(font);
    return std::max(metrics.height() + std::max(0.0, metrics.leading()), double(kLayoutPixelsPerEm));
}

/// Breaks into lines, with the block centred at `boxHeight / 2`.
void layOut(QTextLayout& layout, const QFont& font, double boxWidth, double boxHeight, bool wrapped) {
    QTextOption option(Qt::AlignHCenter);
    option.setWrapMode(wrapped ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::ManualWrap);
    option.setUseDesignMetrics(true);
    // The first letter that has a direction decides for the whole line.
    option.setTextDirection(layout.text().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    layout.setTextOption(option);
    layout.setCacheEnabled(true);
    layout.beginLayout();
    std::vector<QTextLine> lines;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(boxWidth);
        lines.push_back(line);
    }
    layout.endLayout();
    const QFontMetricsF metrics(font);
    const double height = lineHeightOf(font);
    const double ownHeight = metrics.ascent() + metrics.descent();
    double top = (boxHeight - height * static_cast<double>(lines.size())) / 2.0;
    for (auto& line : lines) {
        // A line stands on its baseline, which is its own ascent below its position.
        const double baseline = top + (height - ownHeight) / 2.0 + metrics.ascent();
        line.setPosition(QPointF(0.0, baseline - line.ascent()));
        top += height;
    }
}

}  // namespace

TextShape::TextShape(const TextContent& content, Size box, const FontLookup& fonts,
                     const std::optional<std::string>& eastAsianFamily)
    : color_(toQColor(content.foregroundColor)) {
    const QString text = displayText(content.text);
    if (!std::isfinite(content.fontSize) || content.fontSize <= 0.0 || text.trimmed().isEmpty())
        return;
    unit_ = std::min(content.fontSize, kLargestFontSize) / kLayoutPixelsPerEm;
    QFont font = fonts.font(content.fontPostScriptName, kLayoutPixelsPerEm);
    if (eastAsianFamily)
        font.setFamilies(font.families() << QString::fromStdString(*eastAsianFamily));
    const auto marked = fonts.emojiFamily() ? markEmoji(text) : EmojiText{text, {}};
    QTextLayout layout(marked.text, font);
    layout.setFormats(emojiFormats(marked.emoji, font, fonts));
    layOut(layout, font, std::clamp(box.width / unit_, 1.0, kWidestLayout),
           std::clamp(box.height / unit_, 0.0, kWidestLayout), content.wrapped);
    for (int i = 0; i < layout.lineCount(); ++i) {
        const QTextLine line = layout.lineAt(i);
        lines_ << marked.text.mid(line.textStart(), line.textLength()).trimmed();
    }
    for (const auto& run : layout.glyphRuns())
        addRun(run, unit_);
}

void TextShape::addRun(const QGlyphRun& run, double unit) {
    const QRawFont font = run.rawFont();
    if (hasColorGlyphs(font)) {
        const QRectF around = run.boundingRect();
        const QRectF inBox(around.topLeft() * unit, around.size() * unit);
        colorRuns_.push_back({run, inBox});
        bounds_ |= inBox;
        return;
    }
    const auto glyphs = run.glyphIndexes();
    const auto positions = run.positions();
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
        const QTransform place(unit, 0.0, 0.0, unit, positions[i].x() * unit, positions[i].y() * unit);
        QPainterPath outline = place.map(font.pathForGlyph(glyphs[i]));
        if (outline.isEmpty())
            continue;
        outline.setFillRule(Qt::WindingFill);
        bounds_ |= outline.controlPointRect();
        outlines_.push_back(std::move(outline));
    }
}

void TextShape::draw(QPainter& painter, QPointF origin, double scale) const {
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                           QPainter::SmoothPixmapTransform);
    painter.translate(origin);
    painter.scale(scale, scale);
    for (const auto& outline : outlines_)
        painter.fillPath(outline, color_);
    painter.setOpacity(color_.alphaF());
    painter.setPen(color_);
    painter.scale(unit_, unit_);
    for (const auto& run : colorRuns_)
        painter.drawGlyphRun(QPointF(), run.glyphs);
    painter.restore();
}

}  // namespace korvane
