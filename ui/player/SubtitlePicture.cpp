#include "ui/player/SubtitlePicture.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/fonts/InstalledFontManager.h"
#include "platform/layers/OverlayDrawing.h"
#include "platform/layers/TextShape.h"
#include "ui/controls/ContinuousCorner.h"

namespace korvane {
namespace {

// The exported picture, which every size of a style refers to.
constexpr double kReelWidth = 1080.0;
constexpr double kReelHeight = 1920.0;
constexpr double kMargin = 72.0;
constexpr double kBoxHeightInFontSizes = 4.0;
constexpr double kBoxWidthFraction = 0.86;

// The preview's own shadow, in points of the screen.
constexpr double kShadowOpacity = 0.85;
constexpr double kShadowRadius = 6.0;
constexpr Point kShadowOffset{0.0, 2.0};

// What a line that starts small shows of itself beyond the frame, as a part of the frame.
constexpr double kBeyondFrame = 0.2;

TextContent contentOf(const QString& text, const SubtitleSettings& settings) {
    TextContent content;
    content.text = text.toStdString();
    content.fontPostScriptName = settings.fontPostscriptName;
    content.fontSize = settings.fontSize;
    content.foregroundColor = settings.textColor();
    return content;
}

/// \param pixels  of the screen for each unit of the exported picture.
std::optional<Shadow> shadowOf(const SubtitleSettings& settings, double pixels, qreal ratio) {
    if (!settings.hasShadow)
        return std::nullopt;
    const double units = ratio / pixels;  // for each point
    return Shadow{Color::black(),
                  kShadowOpacity,
                  kShadowRadius * units,
                  {kShadowOffset.x * units, kShadowOffset.y * units}};
}

/// Shares the bitmap's memory and keeps it.
QImage imageOf(const std::shared_ptr<const OverlayBitmap>& bitmap) {
    using Kept = std::shared_ptr<const OverlayBitmap>;
    const auto letGo = [](void* kept) { delete static_cast<Kept*>(kept); };
    return {bitmap->pixels.data(),
            bitmap->width,
            bitmap->height,
            bitmap->strideBytes,
            QImage::Format_ARGB32_Premultiplied,
            letGo,
            new Kept(bitmap)};
}

}  // namespace

QPointF subtitleCenter(const QSizeF& frame, const SubtitleSettings& settings) {
    const double unit = frame.height() / kReelHeight;
    const double margin = kMargin * unit;
    const double band = kBoxHeightInFontSizes * settings.fontSize * unit;
    const double usable = frame.height() - 2.0 * margin - band;
    return {frame.width() / 2.0, margin + settings.verticalPosition * usable + band / 2.0};
}

QImage withinRoundFrame(const SubtitlePicture& picture, const QSize& frame, double radius, double scale,
                        const QPointF& center) {
    if (picture.image.isNull() || radius <= 0.0 || scale <= 0.0)
        return picture.image;
    QTransform toFrame;
    toFrame.translate(center.x(), center.y());
    toFrame.scale(scale, scale);
    toFrame.translate(picture.topLeft.x() - center.x(), picture.topLeft.y() - center.y());
    const QRectF shown = toFrame.mapRect(QRectF(picture.image.rect()));
    const QRectF whole{QPointF(), QSizeF(frame)};
    const double extent =
        std::min(continuousCornerExtent(radius), std::min(whole.width(), whole.height()) / 2);
    const QSizeF corner(extent, extent);
    const QPointF far(whole.width() - extent, whole.height() - extent);
    const QRectF corners[] = {
        {{0.0, 0.0}, corner}, {{far.x(), 0.0}, corner}, {{0.0, far.y()}, corner}, {far, corner}};
    if (std::ranges::none_of(corners, [&](const QRectF& c) { return c.intersects(shown); }))
        return picture.image;

    // Odd and even: the corners, and a little more, for pixels that lie across the frame's edge.
    QPainterPath beyond;
    beyond.addRect(whole.adjusted(-2, -2, 2, 2));
    beyond.addPath(continuousRectangle(whole, radius));
    QImage cut = picture.image.copy();
    QPainter painter(&cut);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.setTransform(toFrame.inverted());
    painter.fillPath(beyond, Qt::black);
    return cut;
}

SubtitlePainter::SubtitlePainter() : fonts_(InstalledFontManager::ofThisProcess().lookup()) {
    setEastAsianLanguage("zh-cn");
}

SubtitlePainter::~SubtitlePainter() = default;

void SubtitlePainter::setEastAsianLanguage(const std::string& language) {
    if (language == language_)
        return;
    language_ = language;
    eastAsianFamily_ = FontLookup::familyForLanguage(language);
}

SubtitlePicture SubtitlePainter::draw(const QString& text, const SubtitleSettings& settings,
                                      const QSize& frame, qreal ratio) const {
    if (text.isEmpty() || frame.isEmpty() || fonts_.faces().empty())
        return {};
    const Size box{kReelWidth * kBoxWidthFraction, settings.fontSize * kBoxHeightInFontSizes};
    const TextShape shape(contentOf(text, settings), box, fonts_, eastAsianFamily_);
    const double scale = frame.height() / kReelHeight;
    const int beyondX = static_cast<int>(std::ceil(frame.width() * kBeyondFrame));
    const int beyondY = static_cast<int>(std::ceil(frame.height() * kBeyondFrame));
    const QPointF center = subtitleCenter(QSizeF(frame), settings) + QPointF(beyondX, beyondY);
    const OverlayPlace place{{center.x(), center.y()},
                             box,
                             scale,
                             true,
                             {frame.width() + 2.0 * beyondX, frame.height() + 2.0 * beyondY}};
    const auto overlay = drawOverlay(shape, shadowOf(settings, scale, ratio), place);
    if (!overlay)
        return {{}, {}, shape.lines()};
    return {imageOf(overlay->bitmap), QPoint(overlay->x - beyondX, overlay->y - beyondY), shape.lines()};
}

}  // namespace korvane
