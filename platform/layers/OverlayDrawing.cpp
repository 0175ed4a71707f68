#include "platform/layers/OverlayDrawing.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/layers/GaussianBlur.h"

namespace korvane {
namespace {

/// No larger blur is drawn, so that a nonsensical style can't ask for unbounded memory; at this size the
/// shadow is a haze over the whole picture already.
constexpr double kLargestSigma = 256.0;

struct ShadowLook {
    float red;
    float green;
    float blue;
    float alpha;
    double sigma;
    QPointF offset;  ///< canvas pixels, y down
};

std::optional<ShadowLook> lookOf(const std::optional<Shadow>& shadow, const OverlayPlace& place) {
    if (!shadow)
        return std::nullopt;
    const Color color = shadow->color.inDeviceRgb().value_or(Color::white());
    const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    const float alpha = part(shadow->opacity) * part(color.alpha);
    if (!(alpha > 0.0F))
        return std::nullopt;
    const double radius = std::isfinite(shadow->radius) ? std::max(0.0, shadow->radius) : 0.0;
    const double down = place.yGrowsDown ? shadow->offset.y : -shadow->offset.y;
    return ShadowLook{part(color.red),
                      part(color.green),
                      part(color.blue),
                      alpha,
                      std::min(radius * place.scale, kLargestSigma),
                      QPointF(shadow->offset.x, down) * place.scale};
}

/// Text and shadow are drawn apart: the text's own picture, and its coverage moved by the offset and blurred.
/// The offset is a fraction of a pixel at most scales, so the coverage is drawn at its own exact place.
QImage drawnText(const TextShape& shape, QPointF origin, double scale, const QRect& area) {
    QImage image(area.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    shape.draw(painter, origin - area.topLeft(), scale);
    return image;
}

QRect pixelsAround(const QRectF& rect) {
    return rect.toAlignedRect().adjusted(-1, -1, 1, 1);
}

CoveragePlane coverageOf(const QImage& image, QPoint at, QSize size) {
    CoveragePlane plane{size.width(), size.height(), {}};
    plane.values.assign(static_cast<std::size_t>(plane.width) * static_cast<std::size_t>(plane.height), 0.0F);
    for (int y = 0; y < image.height(); ++y) {
        const auto* source = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        float* target = plane.values.data() +
                        static_cast<std::size_t>(y + at.y()) * static_cast<std::size_t>(plane.width) + at.x();
        for (int x = 0; x < image.width(); ++x)
            target[x] = static_cast<float>(qAlpha(source[x]));
    }
    return plane;
}

std::uint8_t byteOf(float value) {
    return static_cast<std::uint8_t>(std::min(value + 0.5F, 255.0F));
}

void fillWithShadow(QImage& image, const CoveragePlane& plane, const ShadowLook& look) {
    for (int y = 0; y < image.height(); ++y) {
        const float* source =
            plane.values.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(plane.width);
        std::uint8_t* target = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x, target += 4) {
            const float alpha = source[x] * look.alpha;
            target[0] = byteOf(alpha * look.blue);
            target[1] = byteOf(alpha * look.green);
            target[2] = byteOf(alpha * look.red);
            target[3] = byteOf(alpha);
        }
    }
}

/// The shadow's picture, on `area` of the canvas.
QImage drawnShadow(const TextShape& shape, QPointF origin, double scale, const QRectF& ink,
                   const QRect& visible, const ShadowLook& look, QRect& area) {
    const int reach = static_cast<int>(std::ceil(kBlurReach * look.sigma));
    // What lies within the blur's reach of the canvas still darkens it.
    const QRect inked =
        pixelsAround(ink.translated(look.offset)).intersected(visible.adjusted(-reach, -reach, reach, reach));
    if (inked.isEmpty())
        return {};
    area = inked.adjusted(-reach, -reach, reach, reach);
    auto plane =
        coverageOf(drawnText(shape, origin + look.offset, scale, inked), QPoint(reach, reach), area.size());
    gaussianBlur(plane, look.sigma);
    QImage image(area.size(), QImage::Format_ARGB32_Premultiplied);
    fillWithShadow(image, plane, look);
    return image;
}

/// The smallest rectangle that holds every pixel that is not transparent.
QRect inkOf(const QImage& image) {
    int left = image.width();
    int right = -1;
    int top = image.height();
    int bottom = -1;
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        const auto* end = row + image.width();
        const auto* first = std::find_if(row, end, [](QRgb pixel) { return pixel != 0; });
        if (first == end)
            continue;
        const auto* last = end - 1;
        while (*last == 0)
            --last;
        left = std::min(left, static_cast<int>(first - row));
        right = std::max(right, static_cast<int>(last - row));
        top = std::min(top, y);
        bottom = y;
    }
    return {QPoint(left, top), QPoint(right, bottom)};
}

std::shared_ptr<const OverlayBitmap> bitmapOf(const QImage& image, const QRect& part) {
    auto bitmap = std::make_shared<OverlayBitmap>();
    bitmap->width = part.width();
    bitmap->height = part.height();
    bitmap->strideBytes = part.width() * 4;
    bitmap->pixels.resize(static_cast<std::size_t>(bitmap->strideBytes) *
                          static_cast<std::size_t>(part.height()));
    for (int y = 0; y < part.height(); ++y)
        std::copy_n(image.constScanLine(part.y() + y) + part.x() * 4, bitmap->strideBytes,
                    bitmap->pixels.data() +
                        static_cast<std::size_t>(y) * static_cast<std::size_t>(bitmap->strideBytes));
    return bitmap;
}

}  // namespace

std::optional<PlacedOverlay> drawOverlay(const TextShape& shape, const std::optional<Shadow>& shadow,
                                         const OverlayPlace& place) {
    if (shape.isEmpty() || !std::isfinite(place.scale) || place.scale <= 0.0)
        return std::nullopt;
    const QPointF origin(place.center.x - place.box.width / 2.0 * place.scale,
                         place.center.y - place.box.height / 2.0 * place.scale);
    const QRectF ink(origin + shape.bounds().topLeft() * place.scale, shape.bounds().size() * place.scale);
    const QRect canvas(0, 0, static_cast<int>(std::ceil(place.canvas.width)),
                       static_cast<int>(std::ceil(place.canvas.height)));
    const QRect textArea = pixelsAround(ink).intersected(canvas);
    const auto look = lookOf(shadow, place);
    QRect shadowArea;
    QImage shadowImage;
    if (look)
        shadowImage = drawnShadow(shape, origin, place.scale, ink, canvas, *look, shadowArea);
    const QRect whole = textArea.united(shadowArea).intersected(canvas);
    if (whole.isEmpty())
        return std::nullopt;
    QImage picture(whole.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    {
        QPainter painter(&picture);
        if (!shadowImage.isNull())
            painter.drawImage(shadowArea.topLeft() - whole.topLeft(), shadowImage);
        shape.draw(painter, origin - whole.topLeft(), place.scale);
    }
    const QRect tight = inkOf(picture);
    if (tight.isEmpty())
        return std::nullopt;
    return PlacedOverlay{whole.x() + tight.x(), whole.y() + tight.y(), 1.0, bitmapOf(picture, tight)};
}

}  // namespace korvane
