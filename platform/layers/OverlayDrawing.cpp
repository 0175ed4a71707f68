#include "platform/layers/OverlayDrawing.h"

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <array>
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
    QPoint offset;     ///< whole canvas pixels, y down
    QPointF fraction;  ///< what remains of it, -0.5 to 0.5
    int reach;         ///< pixels beyond the text's ink
};

std::optional<ShadowLook> lookOf(const std::optional<Shadow>& shadow, const OverlayPlace& place) {
    if (!shadow)
        return std::nullopt;
    const Color color = shadow->color.inDeviceRgb().value_or(Color::white());
    const auto part = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    const float alpha = part(shadow->opacity) * part(color.alpha);
    if (!(alpha > 0.0F))
        return std::nullopt;
    const auto finite = [](double value) { return std::isfinite(value) ? value : 0.0; };
    const double sigma = std::min(std::max(0.0, finite(shadow->radius)) * place.scale, kLargestSigma);
    const double down = place.yGrowsDown ? shadow->offset.y : -shadow->offset.y;
    // Farther than the canvas is wide and high nothing of it is seen.
    const double farthest = place.canvas.width + place.canvas.height;
    const QPointF offset(std::clamp(finite(shadow->offset.x) * place.scale, -farthest, farthest),
                         std::clamp(finite(down) * place.scale, -farthest, farthest));
    const QPoint whole = offset.toPoint();
    return ShadowLook{part(color.red),
                      part(color.green),
                      part(color.blue),
                      alpha,
                      sigma,
                      whole,
                      offset - whole,
                      static_cast<int>(std::ceil(kBlurReach * sigma)) + 1};
}

bool isSensible(const OverlayPlace& place) {
    for (const double number : {place.center.x, place.center.y, place.box.width, place.box.height,
                                place.scale, place.canvas.width, place.canvas.height}) {
        if (!std::isfinite(number))
            return false;
    }
    return place.scale > 0.0;
}

QImage drawnText(const TextShape& shape, QPointF origin, double scale, const QRect& area) {
    QImage image(area.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    shape.draw(painter, origin - area.topLeft(), scale);
    return image;
}

/// The pixels that `ink` touches and one more around, as far as they lie in `drawable`. Cut while still in
/// doubles: a nonsensical place must not overflow the integers.
QRect pixelsAround(const QRectF& ink, const QRect& drawable) {
    const QRectF cut = ink.adjusted(-1.0, -1.0, 1.0, 1.0).intersected(QRectF(drawable));
    return cut.isEmpty() ? QRect() : cut.toAlignedRect();
}

CoveragePlane coverageOf(const QImage& image, QPoint at, QSize size) {
    CoveragePlane plane{size.width(), size.height(), {}};
    plane.values.assign(static_cast<std::size_t>(plane.width) * static_cast<std::size_t>(plane.height), 0.0F);
    for (int y = 0; y < image.height(); ++y) {
        const auto* source = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        float* target = plane.values.data() +
                        static_cast<std::size_t>(y + at.y()) * static_cast<std::size_t>(plane.width) + at.x();
        for (int x = 0, width = image.width(); x < width; ++x)
            target[x] = static_cast<float>(qAlpha(source[x]));
    }
    return plane;
}

/// The shadow's premultiplied pixel for each 8-bit coverage.
std::array<QRgb, 256> shadowPixels(const ShadowLook& look) {
    std::array<QRgb, 256> pixels{};
    for (int coverage = 0; coverage < 256; ++coverage) {
        const float alpha = static_cast<float>(coverage) * look.alpha;
        const auto part = [alpha](float component) { return static_cast<int>(alpha * component + 0.5F); };
        pixels[static_cast<std::size_t>(coverage)] =
            qRgba(part(look.red), part(look.green), part(look.blue), part(1.0F));
    }
    return pixels;
}

/// A premultiplied pixel x factor / 255, rounded; two components at a time.
QRgb scaledPixel(QRgb pixel, std::uint32_t factor) {
    const auto scaledPair = [factor](std::uint32_t pair) {
        const std::uint32_t product = pair * factor + 0x00800080U;
        return ((product + ((product >> 8) & 0x00FF00FFU)) >> 8) & 0x00FF00FFU;
    };
    return scaledPair(pixel & 0x00FF00FFU) | (scaledPair((pixel >> 8) & 0x00FF00FFU) << 8);
}

/// The shadow of a text's picture that stands at `textArea`; `area` is where it falls.
CoveragePlane shadowCoverage(const QImage& text, const QRect& textArea, const ShadowLook& look, QRect& area) {
    area = textArea.translated(look.offset).adjusted(-look.reach, -look.reach, look.reach, look.reach);
    auto plane = coverageOf(text, QPoint(look.reach, look.reach), area.size());
    gaussianBlur(plane, look.sigma, look.fraction.x(), look.fraction.y());
    return plane;
}

/// Writes the part of the shadow that falls onto `image`, which is empty and stands at `whole`.
void putShadow(QImage& image, const QRect& whole, const CoveragePlane& plane, const QRect& area,
               const ShadowLook& look) {
    const auto pixels = shadowPixels(look);
    const QRect part = area.intersected(whole);
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const float* source = plane.values.data() +
                              static_cast<std::size_t>(y - area.y()) * static_cast<std::size_t>(plane.width) +
                              (part.x() - area.x());
        auto* target = reinterpret_cast<QRgb*>(image.scanLine(y - whole.y())) + (part.x() - whole.x());
        for (int x = 0; x < part.width(); ++x)
            target[x] = pixels[static_cast<std::size_t>(std::min(source[x] + 0.5F, 255.0F))];
    }
}

void putTextOver(QImage& image, const QRect& whole, const QImage& text, const QRect& textArea) {
    const QRect part = textArea.intersected(whole);
    const auto width = part.width();
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const auto* source =
            reinterpret_cast<const QRgb*>(text.constScanLine(y - textArea.y())) + (part.x() - textArea.x());
        auto* target = reinterpret_cast<QRgb*>(image.scanLine(y - whole.y())) + (part.x() - whole.x());
        for (int x = 0; x < width; ++x)
            target[x] = source[x] + scaledPixel(target[x], 255U - (source[x] >> 24));
    }
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
    if (shape.isEmpty() || !isSensible(place))
        return std::nullopt;
    const QPointF origin(place.center.x - place.box.width / 2.0 * place.scale,
                         place.center.y - place.box.height / 2.0 * place.scale);
    const QRectF ink(origin + shape.bounds().topLeft() * place.scale, shape.bounds().size() * place.scale);
    const QRect canvas(0, 0, static_cast<int>(std::ceil(place.canvas.width)),
                       static_cast<int>(std::ceil(place.canvas.height)));
    const auto look = lookOf(shadow, place);
    // Text beyond the canvas still throws its shadow onto it.
    QRect drawable = canvas;
    if (look)
        drawable |=
            canvas.translated(-look->offset).adjusted(-look->reach, -look->reach, look->reach, look->reach);
    const QRect textArea = pixelsAround(ink, drawable);
    if (textArea.isEmpty())
        return std::nullopt;
    const QImage text = drawnText(shape, origin, place.scale, textArea);
    QRect whole = textArea;
    QImage picture = text;
    if (look) {
        QRect shadowArea;
        const auto plane = shadowCoverage(text, textArea, *look, shadowArea);
        whole = textArea.united(shadowArea).intersected(canvas);
        if (whole.isEmpty())
            return std::nullopt;
        picture = QImage(whole.size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        putShadow(picture, whole, plane, shadowArea, *look);
        putTextOver(picture, whole, text, textArea);
    }
    const QRect tight = inkOf(picture);
    if (tight.isEmpty())
        return std::nullopt;
    return PlacedOverlay{whole.x() + tight.x(), whole.y() + tight.y(), 1.0, bitmapOf(picture, tight)};
}

}  // namespace korvane
