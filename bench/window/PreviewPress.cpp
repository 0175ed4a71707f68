#include "bench/window/PreviewPress.h"

#include <sys/resource.h>

#include <QElapsedTimer>
#include <atomic>
#include <stdexcept>

namespace korvane::bench {

double processorMs() {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const auto ms = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_usec) / 1e3;
    };
    return ms(used.ru_utime) + ms(used.ru_stime);
}

PlayerView& pictureOf(Desk& desk) {
    auto* picture = desk.window().findChild<PlayerView*>(QStringLiteral("playerView"));
    if (!picture)
        throw std::runtime_error("there is no place for the picture");
    return *picture;
}

Press pressPreview(Desk& desk) {
    ContentView& view = desk.view();
    const PlayerView& picture = pictureOf(desk);
    const std::int64_t before = picture.drawnPictures();
    const auto button = desk.place(desk.item("preview"));
    std::atomic<double> firstMs = -1.0;
    std::atomic<double> processorAtFirst = 0.0;
    const double processorBefore = processorMs();
    QElapsedTimer timer;
    timer.start();
    const auto passed = [&timer] { return static_cast<double>(timer.nsecsElapsed()) / 1e6; };
    const auto connection = QObject::connect(
        &desk.window(), &QQuickWindow::frameSwapped, &desk.window(),
        [&] {
            if (firstMs >= 0.0 || picture.drawnPictures() == before)
                return;
            processorAtFirst = processorMs();
            firstMs = passed();
        },
        Qt::DirectConnection);
    desk.click(button);
    if (!view.isBuildingPreview())
        throw std::runtime_error("Preview does nothing");
    desk.until([&] { return firstMs >= 0.0 || view.hasError(); });
    desk.until([&] { return !view.isBuildingPreview(); });
    const double playing = passed();
    QObject::disconnect(connection);
    if (view.hasError())
        throw std::runtime_error(view.errorText().toStdString());
    if (!view.previewPlayer() || view.previewPlayer()->rate() <= 0.0)
        throw std::runtime_error("the preview does not play");
    return {firstMs, playing, processorAtFirst - processorBefore};
}

void pressClose(Desk& desk) {
    desk.click(desk.place(desk.item("closePreview")));
    if (desk.view().hasPreview())
        throw std::runtime_error("the preview does not close");
}

}  // namespace korvane::bench
