#include "tests/ui/player/PlayedPictures.h"

namespace korvane {

PlayerFrame pictureOf(const QSize& size, const std::function<QColor(int x, int y)>& colorAt) {
    const int stride = (size.width() * 4 + 63) / 64 * 64;
    // What lies between the rows must never be shown.
    auto pixels = std::make_shared<std::vector<std::uint8_t>>(
        static_cast<std::size_t>(stride) * static_cast<std::size_t>(size.height() + 1), std::uint8_t{99});
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const QColor color = colorAt(x, y);
            std::uint8_t* pixel = pixels->data() + static_cast<std::ptrdiff_t>(y) * stride + x * 4;
            pixel[0] = static_cast<std::uint8_t>(color.blue());
            pixel[1] = static_cast<std::uint8_t>(color.green());
            pixel[2] = static_cast<std::uint8_t>(color.red());
            pixel[3] = 255;
        }
    }
    auto* picture = new DisplayPicture{pixels->data(), size.width(), size.height(), stride};
    return {
        std::shared_ptr<const DisplayPicture>(picture, [pixels](const DisplayPicture* gone) { delete gone; }),
        MediaTime{}};
}

PlayerFrame pictureOf(const QSize& size, const QColor& color) {
    return pictureOf(size, [&](int, int) { return color; });
}

}  // namespace korvane
